scan_add_gui_test(test_app_preview
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_preview.cpp
  LIBS app)

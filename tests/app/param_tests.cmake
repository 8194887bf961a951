scan_add_gui_test(test_app_param
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_param_dlg.cpp
  LIBS app)

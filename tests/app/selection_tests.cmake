# The dialogs that choose what to scan: the database selector, the drawing
# selector and the manual list.
scan_add_gui_test(test_app_selection
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_drawing_selector.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_manual_list_dlg.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_db_selector.cpp
  LIBS app)

# The station's main window and its selection buttons, driven on a real session,
# with the questions of the scan loop answered.
scan_add_gui_test(test_app_window
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_menu_button.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_station_window.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_questions.cpp
  LIBS app)

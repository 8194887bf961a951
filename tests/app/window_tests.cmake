# The station's main window and its selection buttons, driven on a real session.
scan_add_gui_test(test_app_window
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_menu_button.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_station_window.cpp
  LIBS app)

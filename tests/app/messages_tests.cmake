# The report box of the station's message object.
scan_add_gui_test(app_messages_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_report_dialog.cpp
  LIBS app)

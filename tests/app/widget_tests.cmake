# The station's widgets on their own: the parameter panel, the scan views,
# the report box of the message object and the selection button.
scan_add_gui_test(test_app_widgets
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_param_dlg.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_preview.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_report_dialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_menu_button.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_file_name_validators.cpp
  LIBS app)

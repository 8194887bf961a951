# Tests of the workflow library on the scripted window: the session record,
# the drawing list, the scan loop, optical registration and the database
# binding.
scan_add_test(workflow_tests
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_config.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_loop.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_optical_register.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_manual_list_syntax.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_drawing_list.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_database_binding.cpp
  LIBS workflow)

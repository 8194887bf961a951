# Tests of the workflow library: config.
scan_add_test(workflow_session_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_scan_config.cpp ${CMAKE_CURRENT_LIST_DIR}/test_scan_loop.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_optical_register.cpp
  LIBS workflow)

# Tests of the workflow library: seam.
scan_add_test(workflow_database_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_database_binding.cpp ${CMAKE_CURRENT_LIST_DIR}/test_connect_database.cpp
  LIBS workflow)

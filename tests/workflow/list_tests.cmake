# Tests of the workflow library: list.
scan_add_test(workflow_list_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_manual_list_syntax.cpp
          ${CMAKE_CURRENT_LIST_DIR}/test_drawing_list.cpp
  LIBS workflow)

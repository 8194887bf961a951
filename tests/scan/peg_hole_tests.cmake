# Tests of the peg hole search.
scan_add_test(test_peg_holes SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_peg_holes.cpp LIBS scan)

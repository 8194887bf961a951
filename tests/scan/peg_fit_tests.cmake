# Tests of the peg fit and optical registration.
scan_add_test(test_peg_fit SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_peg_fit.cpp LIBS scan)

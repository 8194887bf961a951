# Tests of the peg geometry of a scan and the keyword reader of scan information.
scan_add_test(test_peg_info
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_peg_info.cpp
  LIBS vectorize)

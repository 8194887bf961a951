# Tests of the pixel leaves and kernels.
scan_add_test(test_suite_cel_pixels
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_cel_pixmap.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_cel_algo.cpp
  LIBS suite_cel)

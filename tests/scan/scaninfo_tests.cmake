# Tests of pixel shapes and scan information.
scan_add_test(test_scan_scaninfo
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_basic_pixel_shape.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_vector_scaninfo.cpp
  LIBS scan)

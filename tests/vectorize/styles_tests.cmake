# Tests of the reading of the station's vectorization styles.
scan_add_test(test_vectorization_styles
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_vectorization_styles.cpp
  LIBS vectorize)

# Tests of the vectorize option record and its four colour settings.
scan_add_test(test_vectorize_options
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_pix2vec_options.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_four_colour_options.cpp
  LIBS vectorize)

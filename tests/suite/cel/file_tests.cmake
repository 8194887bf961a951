# Tests of the image files and the format list.
scan_add_test(test_suite_cel_files
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_celio_roundtrip.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_celio_foreign.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_celio_broken.cpp
  LIBS suite_cel)
find_package(TIFF REQUIRED)
target_link_libraries(test_suite_cel_files PRIVATE TIFF::TIFF)

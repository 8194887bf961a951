# Tests of the drawing record, its file, scan information and pixel shapes.
scan_add_test(test_scan_drawing
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_drawing_file.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_vector_scaninfo.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_basic_pixel_shape.cpp
  LIBS scan)
find_package(TIFF REQUIRED)
target_link_libraries(test_scan_drawing PRIVATE TIFF::TIFF)

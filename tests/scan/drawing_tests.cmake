# Tests of the drawing record, its file, scan information and pixel shapes,
# and scanctl info.
scan_add_test(test_scan_drawing
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_drawing.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_drawing_file.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_vector_scaninfo.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_basic_pixel_shape.cpp
  LIBS scan)
find_package(TIFF REQUIRED)
target_link_libraries(test_scan_drawing PRIVATE TIFF::TIFF)
scan_add_test(test_scanctl_info SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_scanctl_info.cpp LIBS scan)
target_compile_definitions(test_scanctl_info PRIVATE SCANCTL_PATH="$<TARGET_FILE:scanctl>")
add_dependencies(test_scanctl_info scanctl)

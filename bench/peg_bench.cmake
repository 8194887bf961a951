# Benchmark of the peg hole search against OpenCV's contours. The OpenCV
# core and imgproc libraries are the ones rotate_bench.cmake finds.
scan_add_bench(bench_locate_pegs SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_locate_pegs.cpp
  LIBS scan ${OPENCV_IMGPROC_LIB} ${OPENCV_CORE_LIB})
target_include_directories(bench_locate_pegs SYSTEM PRIVATE ${OPENCV_CORE_INCLUDE})

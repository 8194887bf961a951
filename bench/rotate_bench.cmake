# Benchmark of rotation against OpenCV. Debian's OpenCV package config comes
# only with the full libopencv-dev; core and imgproc are found directly.
find_path(OPENCV_CORE_INCLUDE opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
find_library(OPENCV_CORE_LIB opencv_core REQUIRED)
find_library(OPENCV_IMGPROC_LIB opencv_imgproc REQUIRED)
scan_add_bench(bench_rotate SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_rotate.cpp
  LIBS scan ${OPENCV_IMGPROC_LIB} ${OPENCV_CORE_LIB})
target_include_directories(bench_rotate SYSTEM PRIVATE ${OPENCV_CORE_INCLUDE})

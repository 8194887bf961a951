# Benchmark of saving and loading scan files.
scan_add_bench(bench_scan_file SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_scan_file.cpp LIBS scan)

# Benchmark of one drawing through the scan loop against its stages alone.
scan_add_bench(bench_scan_loop SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_scan_loop.cpp LIBS workflow)

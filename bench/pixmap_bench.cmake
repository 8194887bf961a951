# Benchmark of the band loader.
scan_add_bench(bench_band_loader SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_band_loader.cpp LIBS scan)

# Fuzz targets of the scan information parser.
scan_add_fuzzer(fuzz_scaninfo ${CMAKE_CURRENT_LIST_DIR}/fuzz_scaninfo.cpp scan)

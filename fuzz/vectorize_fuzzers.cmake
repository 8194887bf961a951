# Fuzz targets of the vectorize option line.
scan_add_fuzzer(fuzz_option_line ${CMAKE_CURRENT_LIST_DIR}/fuzz_option_line.cpp vectorize)

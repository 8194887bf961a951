# Fuzz targets of the vectorize option line.
scan_add_fuzzer(fuzz_option_line ${CMAKE_CURRENT_LIST_DIR}/fuzz_option_line.cpp vectorize)
# The keyword reading of scan information by the peg geometry.
scan_add_fuzzer(fuzz_peg_info ${CMAKE_CURRENT_LIST_DIR}/fuzz_peg_info.cpp vectorize)

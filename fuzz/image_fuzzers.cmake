# Fuzz targets of the image file reader.
scan_add_fuzzer(fuzz_scan_file ${CMAKE_CURRENT_LIST_DIR}/fuzz_scan_file.cpp suite_cel suite_base)

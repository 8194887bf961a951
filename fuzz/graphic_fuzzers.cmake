# Fuzz targets of the drawing library's file reader.
scan_add_fuzzer(fuzz_drawing_file ${CMAKE_CURRENT_LIST_DIR}/fuzz_drawing_file.cpp suite_graphic)

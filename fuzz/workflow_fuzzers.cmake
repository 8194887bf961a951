# Fuzz targets of what the operator types into the session.
scan_add_fuzzer(fuzz_manual_list ${CMAKE_CURRENT_LIST_DIR}/fuzz_manual_list.cpp workflow)

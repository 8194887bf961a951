# Tests of rotation.
scan_add_test(test_scan_rotate SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_pixmap_rotate.cpp LIBS scan)

# Tests of the pixmap, the band loader, rotation and the parameter sets.
scan_add_test(test_scan_pixmap
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_pixmap_pixmap.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_band_loader.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_pixmap_rotate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_parameters.cpp
  LIBS scan)

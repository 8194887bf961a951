# Tests of the pixmap and the band loader.
scan_add_test(test_scan_pixmap SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/test_pixmap_pixmap.cpp
  ${CMAKE_CURRENT_LIST_DIR}/test_band_loader.cpp
  LIBS scan)

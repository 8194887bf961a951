# Sources of the pixmap and the band loader.
target_sources(scan PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/pixmap_pixmap.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pixmap_operations.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pixmap_band_loader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scsi_bytes.cpp
)

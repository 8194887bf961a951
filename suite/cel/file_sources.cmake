# Sources of the image file reader and writer and the format list.
target_sources(suite_cel PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/celio_manager.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pixmap_format_list.cpp
  ${CMAKE_CURRENT_LIST_DIR}/qt_image_reader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tiff_handle.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tiff_reader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tiff_writer.cpp
)

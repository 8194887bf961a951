# Sources of pixel shapes and scan information.
target_sources(scan PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/basic_pixel_shape.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vector_scaninfo.cpp
)

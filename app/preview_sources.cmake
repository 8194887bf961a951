target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/scale_slider.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scroll_image.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scroll_image_painter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scan_image.cpp
  ${CMAKE_CURRENT_LIST_DIR}/cursor_resource.cpp
)

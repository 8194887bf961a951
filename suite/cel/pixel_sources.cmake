# Sources of the pixel leaves and kernels.
target_sources(suite_cel PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/cel_pixmap.cpp
  ${CMAKE_CURRENT_LIST_DIR}/cel_flip.cpp
  ${CMAKE_CURRENT_LIST_DIR}/cel_scale.cpp
  ${CMAKE_CURRENT_LIST_DIR}/cel_levels.cpp
)

target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/param_widget.cpp
  ${CMAKE_CURRENT_LIST_DIR}/param_speed_widget.cpp
  ${CMAKE_CURRENT_LIST_DIR}/param_rgb_drop_widget.cpp
  ${CMAKE_CURRENT_LIST_DIR}/param_dlg.cpp
)

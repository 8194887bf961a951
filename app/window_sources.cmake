# The station's main window: its selection buttons, the list it shows, and the
# restoring of settings from a scan file.
target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/tumenu_button.cpp
)

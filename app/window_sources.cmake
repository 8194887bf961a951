# The station's main window: its selection buttons, the list it shows, and the
# restoring of settings from a scan file.
target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/tumenu_button.cpp
  ${CMAKE_CURRENT_LIST_DIR}/station_list_view.cpp
  ${CMAKE_CURRENT_LIST_DIR}/load_from_file.cpp
  ${CMAKE_CURRENT_LIST_DIR}/load_from_file_dialog.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tukqscan.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tukqscan_seam.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tukqscan_slots.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tuabout_dialog.cpp
)

# Sources of the scanner configuration and the model table.
target_sources(scan PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/devices.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scanner_list.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scanner_list_read.cpp
)

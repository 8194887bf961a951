target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/elevated_relaunch.cpp
  ${CMAKE_CURRENT_LIST_DIR}/process_dpi.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scan_application.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scan_entry.cpp
  ${CMAKE_CURRENT_LIST_DIR}/start_options.cpp
  ${CMAKE_CURRENT_LIST_DIR}/station_window.cpp
)
# The station program.
add_executable(Scan ${CMAKE_CURRENT_LIST_DIR}/scan_main.cpp)
target_link_libraries(Scan PRIVATE app)

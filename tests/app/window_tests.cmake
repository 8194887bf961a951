# The station's main window driven on a real session, with the questions of
# the scan loop answered and the vectorization styles chosen.
scan_add_gui_test(test_app_window
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_station_window.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scan_questions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_vectorization_style.cpp
  LIBS app)
# Other programs on the station's database, as in a studio.
target_compile_definitions(test_app_window PRIVATE SCANCTL_PATH="$<TARGET_FILE:scanctl>")
add_dependencies(test_app_window scanctl)

# The station's command line and the Scan program itself.
scan_add_test(app_startup_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_start_options.cpp ${CMAKE_CURRENT_LIST_DIR}/test_scan_program.cpp
  LIBS app)
target_compile_definitions(app_startup_tests PRIVATE SCAN_PATH="$<TARGET_FILE:Scan>")
add_dependencies(app_startup_tests Scan)

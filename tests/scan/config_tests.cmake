# Tests of the configuration reader, the model table and the scanctl commands.
scan_add_test(test_scan_config
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_scanner_list.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scanctl.cpp
  LIBS scan)
target_compile_definitions(test_scan_config PRIVATE
  SCANCTL_PATH="$<TARGET_FILE:scanctl>"
  SAMPLES_DIR="${CMAKE_SOURCE_DIR}/samples")
add_dependencies(test_scan_config scanctl)

# Tests of the reading of the station's vectorization styles.
scan_add_test(test_vectorization_styles
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_vectorization_styles.cpp
  LIBS vectorize)
# Style lines through scanctl and the style file, back to the same record.
scan_add_test(test_style_lines_round_trip
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_style_lines_round_trip.cpp
  LIBS vectorize)
target_compile_definitions(test_style_lines_round_trip PRIVATE SCANCTL_PATH="$<TARGET_FILE:scanctl>")
add_dependencies(test_style_lines_round_trip scanctl)

# scanctl scan run as a separate process: into a folder, and into an element
# of a SQLite production database.
scan_add_test(workflow_scanctl_tests
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_scanctl_scan.cpp
  LIBS suite_db suite_base Qt6::Core)
target_compile_definitions(workflow_scanctl_tests PRIVATE SCANCTL_PATH="$<TARGET_FILE:scanctl>")
add_dependencies(workflow_scanctl_tests scanctl)

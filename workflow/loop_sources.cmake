# Sources of the workflow library: loop.
target_sources(workflow PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/scan_procs.cpp
  ${CMAKE_CURRENT_LIST_DIR}/register.cpp
)

# Sources of the workflow library: list.
target_sources(workflow PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/drawing_list.cpp
  ${CMAKE_CURRENT_LIST_DIR}/manual_list_syntax.cpp)

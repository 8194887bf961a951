# Sources of the workflow library: config.
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/config.cpp)
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/selection_menus.cpp)

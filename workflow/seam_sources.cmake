# Sources of the workflow library: seam.
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/dbinfo.cpp)
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/update_drawing_database.cpp)
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/connect_database.cpp)
target_sources(workflow PRIVATE ${CMAKE_CURRENT_LIST_DIR}/scripted_window.cpp)

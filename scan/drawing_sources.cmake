# Sources of the drawing record.
target_sources(scan PRIVATE ${CMAKE_CURRENT_LIST_DIR}/drawing.cpp)

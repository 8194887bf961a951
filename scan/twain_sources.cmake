# The TWAIN source list.
target_sources(scan PRIVATE ${CMAKE_CURRENT_LIST_DIR}/twain_device_list.cpp)

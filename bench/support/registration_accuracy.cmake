# The registration accuracy harness, shared by its test and its report; either
# tree may include this first.
if(NOT TARGET registration_accuracy)
  add_library(registration_accuracy STATIC
    ${CMAKE_CURRENT_LIST_DIR}/registration_accuracy.cpp
    ${CMAKE_CURRENT_LIST_DIR}/chart_spoilers.cpp
  )
  target_link_libraries(registration_accuracy PUBLIC scan Qt6::Gui)
  target_include_directories(registration_accuracy PUBLIC ${CMAKE_CURRENT_LIST_DIR}/..)
endif()

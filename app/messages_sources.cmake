target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/report_box.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tuuimessage.cpp
)

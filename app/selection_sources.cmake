# The drawing selection dialogs, the manual list dialog, and the choosers of
# user, job, scene and element in front of them.
target_sources(app PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/file_name_validators.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tudrawing_selector_table.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tudrawing_selector.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tumanual_list_dlg.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tudb_user_dialog.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tudb_select_dlg.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tudb_selector.cpp
)

# The list of vectorization styles and its place in the station window.
scan_add_gui_test(test_app_styles
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_vectorization_style.cpp
  LIBS app)

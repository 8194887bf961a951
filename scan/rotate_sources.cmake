# Sources of rotation.
set(_rotate_sources
  ${CMAKE_CURRENT_LIST_DIR}/pixmap_rotate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rotate_geometry.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rotate_shear.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rotate_shear_avx2.cpp
)
target_sources(scan PRIVATE ${_rotate_sources})
# Results must not depend on whether the compiler fuses a multiply and an add.
set_source_files_properties(${_rotate_sources} PROPERTIES COMPILE_OPTIONS -ffp-contract=off)

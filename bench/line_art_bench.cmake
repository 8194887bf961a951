# The line art against potrace: timing, and the fidelity and memory report.
find_library(POTRACE_LIB potrace REQUIRED)
add_library(line_art_inputs STATIC ${CMAKE_CURRENT_LIST_DIR}/support/line_art_inputs.cpp)
target_link_libraries(line_art_inputs PUBLIC vectorize suite_graphic ${POTRACE_LIB} Qt6::Gui)
target_include_directories(line_art_inputs PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_compile_definitions(line_art_inputs PRIVATE SCAN_LINEART_DIR="${PROJECT_SOURCE_DIR}/../shared/lineart")
scan_add_bench(bench_line_art SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_line_art.cpp LIBS line_art_inputs)
add_executable(bench_line_art_fidelity ${CMAKE_CURRENT_LIST_DIR}/report_line_art_fidelity.cpp)
target_link_libraries(bench_line_art_fidelity PRIVATE line_art_inputs)

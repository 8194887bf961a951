# The accuracy report of optical registration on the test scanner's chart: a
# plain program, run with the benchmarks.
include(${CMAKE_CURRENT_LIST_DIR}/support/registration_accuracy.cmake)
add_executable(bench_registration_accuracy ${CMAKE_CURRENT_LIST_DIR}/report_registration_accuracy.cpp)
target_link_libraries(bench_registration_accuracy PRIVATE registration_accuracy)

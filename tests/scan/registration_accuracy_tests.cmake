# Optical registration of the test scanner's chart against where it was painted.
include(${CMAKE_SOURCE_DIR}/bench/support/registration_accuracy.cmake)
scan_add_test(test_registration_accuracy SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_registration_accuracy.cpp
  LIBS registration_accuracy)

# Tests of the transport, the device operations and the test scanner's driver.
scan_add_test(test_scan_device
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/test_transport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_scanner_device.cpp
    ${CMAKE_CURRENT_LIST_DIR}/test_dev_bogus.cpp
  LIBS scan)

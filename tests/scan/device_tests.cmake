# Tests of the transport and the device operations.
scan_add_test(test_scan_device SOURCES test_transport.cpp test_scanner_device.cpp LIBS scan)

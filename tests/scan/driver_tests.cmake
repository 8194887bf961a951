# Tests of the scanner drivers.
scan_add_test(test_dev_bogus SOURCES test_dev_bogus.cpp LIBS scan)

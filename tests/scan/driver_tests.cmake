# Tests of the scanner drivers.

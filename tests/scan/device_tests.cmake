# Tests of the transport and the device operations.

# Tests of the peg fit and optical registration.

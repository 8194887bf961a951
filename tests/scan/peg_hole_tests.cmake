# Tests of the peg hole search.

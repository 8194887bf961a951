# Tests of the workflow library: loop.

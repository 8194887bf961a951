# Tests of the workflow library: list.

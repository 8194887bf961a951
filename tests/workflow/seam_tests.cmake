# Tests of the workflow library: seam.

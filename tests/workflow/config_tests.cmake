# Tests of the workflow library: config.

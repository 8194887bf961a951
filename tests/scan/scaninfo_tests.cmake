# Tests of pixel shapes and scan information.

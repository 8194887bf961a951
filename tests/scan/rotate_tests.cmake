# Tests of rotation.

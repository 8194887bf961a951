# Tests of the pixel leaves and kernels.

# Sources of the pixel leaves and kernels.

# Tests of the image files and the format list.

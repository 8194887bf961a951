# Sources of the image file reader and writer and the format list.

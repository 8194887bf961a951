# Fuzz targets of the image file reader.

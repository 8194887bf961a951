# Fuzz targets of the scan information parser.

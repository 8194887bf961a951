# Tests of the pixmap and the band loader.

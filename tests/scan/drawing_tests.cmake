# Tests of the drawing record and scanctl info.

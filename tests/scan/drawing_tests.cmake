# Tests of the drawing record, pixel shapes, scan information and scanctl info.

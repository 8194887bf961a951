# Sources of the drawing record.

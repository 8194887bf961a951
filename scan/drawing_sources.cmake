# Sources of the drawing record, pixel shapes and scan information.

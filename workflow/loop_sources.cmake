# Sources of the workflow library: loop.

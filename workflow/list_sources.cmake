# Sources of the workflow library: list.

# Sources of the workflow library: config.

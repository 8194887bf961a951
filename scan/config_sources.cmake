# Sources of the scanner configuration and the model table.
target_sources(scan PRIVATE)

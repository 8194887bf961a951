# Sources of pixel shapes and scan information.

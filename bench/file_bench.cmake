# Benchmark of saving and loading scan files.

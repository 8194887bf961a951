# Benchmark of the band loader.

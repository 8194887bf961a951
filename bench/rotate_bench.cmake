# Benchmark of rotation against OpenCV.

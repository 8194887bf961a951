# Sources of the peg hole search: mask, contours, centroids.

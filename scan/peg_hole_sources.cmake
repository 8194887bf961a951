# Sources of the peg hole search: mask, contours, centroids.
target_sources(scan PRIVATE
  peg_mask.cpp
  contour_tracer.cpp
  refine_dot.cpp
)

# Scanner drivers.
target_sources(scan PRIVATE
  drivers/bogus_field_chart.cpp
  drivers/Dev_bogus.cpp
)

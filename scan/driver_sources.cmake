# Scanner drivers.

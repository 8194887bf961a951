# Tests of the configuration reader and the model table.

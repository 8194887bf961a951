# Sources of rotation.

// What up.h must not know.

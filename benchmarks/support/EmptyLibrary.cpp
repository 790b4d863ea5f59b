// A C++ library with nothing in it.

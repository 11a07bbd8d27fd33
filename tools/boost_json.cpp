// Compiles Boost.JSON, which is header-only here. No other file may include src.hpp.
#include <boost/json/src.hpp>

// The one place where the header-only form of Boost.JSON is compiled.
#include <boost/json/src.hpp>

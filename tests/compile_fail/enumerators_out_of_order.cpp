// error: enumerators stand in ascending byte order

#include <sml/core/declare.hpp>

#ifdef MISTAKE
SML_ENUM(Enumeration, First, Second, SECOND);
#else
SML_ENUM(Enumeration, First, SECOND, Second);
#endif

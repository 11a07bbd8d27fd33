// error: enumerators stand in ascending byte order

#include <sml/core/define.hpp>

#ifdef MISTAKE
SML_ENUM(Enumeration, First, Second, SECOND);
#else
SML_ENUM(Enumeration, First, SECOND, Second);
#endif

SML_DEFINE_ENUM(Enumeration);

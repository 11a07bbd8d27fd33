#pragma once
// A user's own header, which has the name of one of the library's.

inline char const* greeting() { return "from the user's own core/export.hpp"; }

#pragma once
// A user's own header with the same name as a header of the library.

inline char const* greeting() { return "from the user's own core/export.hpp"; }

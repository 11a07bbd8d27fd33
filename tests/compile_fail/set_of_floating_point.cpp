// error: these can't be keys

#include <sml/inspect/describe.hpp>

#ifdef MISTAKE
using Keyed = std::set<double>;
#else
using Keyed = std::set<std::int32_t>;
#endif

sml::inspect::Type const* type() { return sml::inspect::describe<Keyed>(); }

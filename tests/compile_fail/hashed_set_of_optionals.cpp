// error: these can't be keys

#include <sml/inspect/describe.hpp>

#ifdef MISTAKE
using Keyed = std::unordered_set<std::optional<bool>>;
#else
using Keyed = std::set<std::optional<bool>>;
#endif

sml::inspect::Type const* type() { return sml::inspect::describe<Keyed>(); }

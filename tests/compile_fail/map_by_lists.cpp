// error: these can't be keys

#include <sml/inspect/describe.hpp>

#ifdef MISTAKE
using Keyed = std::map<std::list<bool>, bool>;
#else
using Keyed = std::map<bool, std::list<bool>>;
#endif

sml::inspect::Type const* type() { return sml::inspect::describe<Keyed>(); }

// error: only 1 name (was )?provided

#include <sml/core/declare.hpp>

struct Parts {
    std::int32_t first{};
    bool         second{};

#ifdef MISTAKE
    SML_FIELDS(Parts, second);
#else
    SML_FIELDS(Parts, first, second);
#endif
};

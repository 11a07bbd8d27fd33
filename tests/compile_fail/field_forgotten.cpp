// error: only 1 name (was )?provided

#include <sml/core/declare.hpp>

struct Record {
    std::int32_t first{};
    bool         second{};

#ifdef MISTAKE
    SML_RECORD(Record, first);
#else
    SML_RECORD(Record, first, second);
#endif
};

// error: this type has no wire form
// errors: 1

#include <sml/core/define.hpp>

struct Record {
#ifdef MISTAKE
    short first{};
#else
    std::int32_t first{};
#endif

    SML_RECORD(Record, first);
};

SML_DEFINE_RECORD(Record);

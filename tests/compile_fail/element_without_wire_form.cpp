// error: this type has no wire form
// errors: 1

#include <sml/core/define.hpp>

#include <vector>

struct Record {
#ifdef MISTAKE
    std::list<std::vector<std::int32_t>> lists;
#else
    std::list<std::list<std::int32_t>> lists;
#endif

    SML_RECORD(Record, lists);
};

SML_DEFINE_RECORD(Record);

// error: conflicting declaration|redefinition of .first|redeclaration

#include <sml/core/declare.hpp>

struct Record {
    std::int32_t first{};
    std::int32_t second{};

#ifdef MISTAKE
    SML_RECORD(Record, first, first);
#else
    SML_RECORD(Record, first, second);
#endif
};

// error: second.* was not declared|undeclared identifier .second

#include <sml/core/declare.hpp>

struct Record {
    std::int32_t first{};
#ifndef MISTAKE
    bool second{};
#endif

    SML_RECORD(Record, first, second);
};

#include "export/export.hpp"

#include "errors.hpp"

#include <charconv>

namespace bradep {

std::int64_t export_number(std::string_view identity) {
    constexpr std::size_t digits = 14;
    constexpr int         surplus_bits = 3;                 // 14 digits have 56 bits
    auto const            start = identity.rfind(':') + 1;  // 0 where there is no colon
    auto const            text = identity.substr(start, digits);
    std::int64_t          number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return number >> surplus_bits;
}

void refuse_collision(std::string const& target, sml::tables::ResultSets const& sets) {
    auto const number = export_number(sets.identity(1));
    throw DamagedInput(sets.set(1).name + ": " + target +
                       " has another result set with the number " + std::to_string(number));
}

void refuse_other_root(std::string const& target, sml::inspect::Root const& there,
                       sml::tables::ResultSets const& sets) {
    throw DamagedInput(sets.set(1).name + ": is read as a " +
                       std::string(sets.schema().root->stem) + ", but " + target +
                       " has values of " + std::string(there.stem));
}

}  // namespace bradep

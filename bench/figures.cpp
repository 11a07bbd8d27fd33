#include "bench/figures.hpp"

#include <sml/bindings/bindings.hpp>
#include "bench/walk.hpp"

#include <cstdio>
#include <ostream>
#include <unordered_set>

namespace bench {

namespace {

struct Counter {
    template <class T>
    void operator()(T const& part) {
        using namespace sml::core;
        if constexpr (std::is_same_v<T, sml::Strings_T>) {
            ++figures.string_references;
            strings.insert(&part.str());
        } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
            ++figures.integers;
        } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
            ++figures.floats;
        } else if constexpr (List<T> || Set<T> || Map<T>) {
            figures.entries += part.size();
        } else if constexpr (Boxed<T>) {
            ++figures.boxes;
        }
    }

    Figures                                figures;
    std::unordered_set<std::string const*> strings;  // equal texts have one address
};

}  // namespace

Figures figures(sml::Application_Results::T_Application_Results const& value) {
    Counter counter;
    walk(value, counter);
    counter.figures.checks = value.checks.size();
    counter.figures.distinct_strings = counter.strings.size();
    counter.figures.wire_bytes = sml::Application_Results_Application_Results_fromCxx(value).size();
    return counter.figures;
}

std::ostream& operator<<(std::ostream& stream, Figures const& figures) {
    auto const checks = static_cast<double>(figures.checks);
    auto const each = [checks](std::size_t total) { return static_cast<double>(total) / checks; };
    char       line[240];
    std::snprintf(
        line, sizeof line,
        "%zu checks; for each %.1f wire bytes, %.2f string references, %.2f integers, "
        "%.2f floats, %.2f nodes (%.2f of them entries of containers); %zu distinct strings",
        figures.checks, each(figures.wire_bytes), each(figures.string_references),
        each(figures.integers), each(figures.floats), each(figures.nodes()), each(figures.entries),
        figures.distinct_strings);
    return stream << line;
}

}  // namespace bench

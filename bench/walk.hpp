#pragma once
// Visits every part of a value.

#include <sml/core/kinds.hpp>
#include <sml/core/read_ahead.hpp>

#include <tuple>

namespace bench {

/// Calls `use(part)` for the value and for everything inside it; a container comes before its
/// parts.
template <class T, class Use>
void walk(T const& value, Use& use) {
    using namespace sml::core;
    use(value);
    auto const descend = [&use](auto const&... parts) { (walk(parts, use), ...); };
    if constexpr (Optional<T>) {
        if (value) descend(*value);
    } else if constexpr (Boxed<T>) {
        descend(*value);
    } else if constexpr (List<T> || Set<T> || Map<T>) {
        for_each_ahead(value, descend);
    } else if constexpr (PairOrTuple<T> || FlagArray<T>) {
        std::apply(descend, value);
    } else if constexpr (HashedVariant<T>) {
        value.visit_payload(descend);
    } else if constexpr (Fielded<T>) {
        value.with_fields(descend);
    }
}

}  // namespace bench

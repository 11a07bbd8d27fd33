#pragma once
// Walking the nodes of a container with the next one prefetched. The nodes of an object graph are
// scattered in memory, so that waiting for them would take longer than all else.

#include <cstddef>
#include <iterator>

namespace sml::core {

/// Prefetches the memory of an object. A very large one is mostly a variant with a small arm, so of
/// it only the beginning and the end are prefetched. What a large object owns was mostly allocated
/// right after it, so the first bytes after it are prefetched, too.
template <class T>
inline void prefetch(T const& object) noexcept {
    constexpr std::size_t line = 64;
    constexpr std::size_t first = 6 * line;
    constexpr std::size_t last = 3 * line;
    constexpr std::size_t owned = sizeof(T) < 2 * line ? 0 : 4 * line;
    auto const* const     bytes = reinterpret_cast<char const*>(&object);
    auto const            ask = [bytes](std::size_t from, std::size_t to) {
        for (; from < to; from += line) __builtin_prefetch(bytes + from);
    };
    if constexpr (sizeof(T) > first + last) {
        ask(0, first);
        ask(sizeof(T) - last, sizeof(T) + owned);
    } else {
        ask(0, sizeof(T) + owned);
    }
}

/// Calls `use` with each element in order, after prefetching the next one.
template <class Container, class Use>
void for_each_ahead(Container const& container, Use&& use) {
    auto const end = container.end();
    for (auto next = container.begin(); next != end;) {
        auto const& element = *next;
        if (++next != end) prefetch(*next);
        use(element);
    }
}

}  // namespace sml::core

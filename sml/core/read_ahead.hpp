#pragma once
// Walking the nodes of a container while the memory fetches those to come. The nodes of a graph are
// scattered, so that waiting for them would take longer than all else.

#include <cstddef>
#include <iterator>

namespace sml::core {

/// Asks for the memory of an object. Of a very large one, mostly a variant with a small arm in it,
/// that is where the arm begins and what stands behind it. What a large one owns was mostly
/// allocated right after it, so the beginning of that is asked for, too.
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

/// Calls `use` with each element in turn, while the next one is on its way.
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

#pragma once
// Where the long lists, sets and maps of some bytes end, so that they can be skipped at once.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sml::inspect {

/// The lists, sets and maps of at least `least_size` bytes.
class LongContainers {
public:
    static constexpr std::uint64_t least_size = std::uint64_t{1} << 14;

    /// Adds a container: the offset where it starts, at its count, and the one behind it.
    void add(std::uint64_t start, std::uint64_t end) { all_.push_back({start, end}); }

    /// Must be called after all have been added, before `end_of`.
    void sort() { std::ranges::sort(all_, {}, &Extent::start); }

    /// The offset behind the container that starts at this one; 0 if that is none of these.
    std::uint64_t end_of(std::uint64_t start) const {
        auto const found = std::ranges::lower_bound(all_, start, {}, &Extent::start);
        return found != all_.end() && found->start == start ? found->end : 0;
    }

private:
    struct Extent {
        std::uint64_t start;
        std::uint64_t end;
    };

    std::vector<Extent> all_;
};

}  // namespace sml::inspect

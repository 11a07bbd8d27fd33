#pragma once
// The pool of names that a workload draws from.

#include "bench/draws.hpp"

#include <sml/core/Strings.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// Distinct names of 10 to 60 bytes. Every fifth is a file path, the others are identifiers. The
/// first tenth is hot: half of all draws come from there.
class Names {
public:
    /// The names of a workload of `checks` checks: one for every ten checks.
    Names(std::size_t checks, std::uint64_t seed);

    std::size_t size() const { return names_.size(); }
    std::size_t hot() const { return names_.size() / 10; }

    sml::Strings_T const& operator[](std::size_t index) const { return names_[index]; }

    /// The identifier with this number. Only identifiers are counted, from 0.
    sml::Strings_T const& identifier(std::size_t number) const;
    std::size_t           identifiers() const { return names_.size() / group * (group - 1); }

    sml::Strings_T const& draw_identifier(Draws& draws) const;

    /// Returns the index of a path.
    std::size_t draw_path(Draws& draws) const;

private:
    static constexpr std::size_t group = 5;  ///< a path and four identifiers

    std::size_t draw(Draws& draws) const;

    std::vector<sml::Strings_T> names_;
};

/// A name that contains the number, which makes it differ from all other names.
std::string make_name(Draws& draws, std::size_t number, bool is_path);

}  // namespace bench

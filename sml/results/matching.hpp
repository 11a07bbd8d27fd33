#pragma once
// Finds out which findings of two sides are the same.

#include <sml/results/finding.hpp>
#include <sml/results/renamed_files.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace sml::results {

/// A fingerprint that the analyser gave.
struct Fingerprint {
    Hash          value;  ///< with its name
    std::uint32_t finding;
};

struct Matched {
    std::vector<Finding>     findings;
    std::vector<Fingerprint> fingerprints;
};

/// Which stages a call of `match` goes through: all, or only those in which rule and message are
/// equal and what is known of the code.
enum class Stages : std::uint8_t { equal, all };

/// Sets the partners and stages of the findings of both sides, one to one. Findings of different
/// rules get no common one. `files` are the names of the files by number. Renamed files are
/// returned; each gets one number on both sides.
///
/// What is found depends neither on the order of the findings, as long as their ranks differ, nor
/// on which side is the old one. Findings that have partners keep them.
std::vector<RenamedFile> match(Matched& olds, Matched& news, std::vector<std::string> const& files,
                               Stages stages = Stages::all);

}  // namespace sml::results

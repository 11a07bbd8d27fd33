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

/// Sets the partners and stages of the findings of both sides, one to one. Findings of different
/// rules get no common one. `files` are the names of the files by number. Renamed files are
/// returned; each gets one number on both sides.
///
/// What is found depends neither on the order of the findings, as long as their ranks differ, nor
/// on which side is the old one.
std::vector<RenamedFile> match(Matched& olds, Matched& news, std::vector<std::string> const& files);

}  // namespace sml::results

#pragma once
// Finds files that have another name on the other side.

#include <sml/results/finding.hpp>

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace sml::results {

/// The numbers of a file on both sides: in the old one and in the new one.
using RenamedFile = std::pair<std::uint32_t, std::uint32_t>;

/// Gives a file that only old findings name, and one that only new ones name, one number, the
/// smaller one, if most of the findings of one are found in the other. Returns these files.
std::vector<RenamedFile> join_renamed_files(std::span<Finding> olds, std::span<Finding> news,
                                            std::vector<std::string> const& files);

}  // namespace sml::results

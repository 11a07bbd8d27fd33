#pragma once
// The files of two sides: which URIs stand for one file though the root has moved.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sml::results {

/// A URI or path in one spelling: without `file://`, decoded, with slashes, a drive's letter in
/// lower case, and without empty parts, `.` and `..` as far as they can be resolved.
std::string path_of(std::string_view uri);

/// The part of a path behind its last slash.
std::string_view name_in(std::string_view path);

/// A part that paths of the old side start with, and what those of the new side start with instead.
/// Both end with a slash or are empty.
struct MovedRoot {
    std::string before;
    std::string after;

    bool operator==(MovedRoot const&) const = default;
};

/// Made of OLD=NEW.
MovedRoot moved_root_of(std::string_view before, std::string_view after);

/// The roots that have moved: with them, most paths of one side are found on the other one. `olds`
/// and `news` are sorted and have no path twice. Swapping the sides swaps the parts of each root.
std::vector<MovedRoot> moved_roots(std::vector<std::string> const& olds,
                                   std::vector<std::string> const& news);

/// The given roots without those that cannot have moved between both sides: the old side has paths
/// below `after` and none below `before`, or the new one has it the other way round. A path that is
/// below both counts for the longer one.
std::vector<MovedRoot> roots_to_move(std::vector<MovedRoot> const&   given,
                                     std::vector<std::string> const& olds,
                                     std::vector<std::string> const& news);

/// Names files so that those of both sides can be compared.
class Files {
public:
    /// `given` roots are tried first, the longest one that fits; then those that are found. The
    /// arguments need not be sorted.
    Files(std::vector<std::string> olds, std::vector<std::string> news,
          std::vector<MovedRoot> const& given);

    // The name of a file: the same for both sides if its path differs in the root alone.
    std::string of_old(std::string const& path) const;
    std::string of_new(std::string const& path) const;

    /// The paths that a file with this name can have on the old side.
    std::vector<std::string> olds_named(std::string const& name) const;

    /// The path that a file of the old side has, or would have, on the new side.
    std::string moved(std::string const& path) const;

    std::vector<MovedRoot> const& roots() const { return roots_; }

private:
    using Part = std::string MovedRoot::*;

    MovedRoot const* root_of(std::string const& path, Part part) const;
    std::string      name_of(std::string const& path, Part part) const;

    std::vector<std::string> both_;   // paths that both sides have, sorted
    std::vector<MovedRoot>   given_;  // the longest ones first
    std::vector<MovedRoot>   roots_;
};

}  // namespace sml::results

#pragma once
// Follows a walk to the part that a path names.

#include <sml/inspect/walk/walk.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// The part is where the walk's steps, printed, are the path; the first of several.
class PathMatch {
public:
    PathMatch(Walk const& walk, std::string_view path) : walk_(walk), path_(path) {}

    /// To be told of every step, when the walk has taken it. Whether it led to the part.
    bool step() {
        std::size_t const depth = walk_.depth();
        if (depth <= matched_.size()) matched_.resize(depth - 1);
        if (found_ || depth != matched_.size() + 1) return false;
        std::string path(path_.substr(0, matched_.empty() ? 0 : matched_.back()));
        walk_.append_step(path, walk_.step());
        if (path == path_) return found_ = true;
        char const next = path.size() < path_.size() ? path_[path.size()] : '\0';
        if ((next == '.' || next == '[') && path_.starts_with(path))
            matched_.push_back(path.size());
        return false;
    }

private:
    Walk const&              walk_;
    std::string_view         path_;
    std::vector<std::size_t> matched_;  // how much of the path each matching step has reached
    bool                     found_ = false;
};

}  // namespace sml::inspect

#pragma once
// Finds the part of a value to which a path leads, while the value is walked.

#include <sml/inspect/walk/walk.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// Compares the path of a walk with a given path after each step. The first part whose path equals
/// the given one is the part that it finds. The given path may also name the value of a map's entry
/// by the number of the entry, as in `[#3]`.
class PathMatch {
public:
    PathMatch(Walk const& walk, std::string_view path) : walk_(walk), path_(path) {}

    /// Must be called after each step of the walk. Returns whether this step leads to the part.
    bool step() {
        std::size_t const depth = walk_.depth();
        if (depth <= matched_.size()) matched_.resize(depth - 1);
        if (found_ || depth != matched_.size() + 1) return false;
        std::string path(path_.substr(0, matched_.empty() ? 0 : matched_.back()));
        append_step(path);
        if (!is_led_to_by(path)) return false;
        reached_ = std::max(reached_, path.size());
        if (path == path_) return found_ = true;
        matched_.push_back(path.size());
        return false;
    }

    /// The length in bytes of the longest prefix of the given path that led to a part.
    std::size_t reached() const { return reached_; }

private:
    bool is_led_to_by(std::string_view path) const {
        if (!path_.starts_with(path)) return false;
        char const next = path.size() < path_.size() ? path_[path.size()] : '.';
        return next == '.' || next == '[';
    }

    void append_step(std::string& path) const {
        Step const& step = walk_.step();
        bool const  is_value_of_entry = step.key_offset != Step::nowhere;
        if (!is_value_of_entry || !path_.substr(path.size()).starts_with("[#"))
            return walk_.append_step(path, step);
        path += "[#" + std::to_string(step.part) + ']';
    }

    Walk const&              walk_;
    std::string_view         path_;
    std::vector<std::size_t> matched_;  // for each matching step, the length of the path to it
    std::size_t              reached_ = 0;
    bool                     found_ = false;
};

}  // namespace sml::inspect

#include "path_check.hpp"

#include <sml/inspect/text/characters.hpp>
#include <sml/inspect/text/nearest.hpp>

#include <algorithm>
#include <functional>
#include <vector>

namespace bradep {

namespace {

using namespace sml::inspect;

Type const& inner(Type const& type) {
    bool const is_wrapper = type.kind == Kind::optional || type.kind == Kind::boxed;
    return is_wrapper ? inner(*type.element) : type;
}

// Returns the position after the closing quote; npos if there is none.
std::size_t end_of_quoted(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            return i + 1;
    }
    return std::string_view::npos;
}

// Returns the position after the closing bracket, or the end of the text if there is none.
std::size_t end_of_bracket(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == ']') return i + 1;
        if (text[i] != '"') continue;
        auto const length = end_of_quoted(text.substr(i));
        if (length == std::string_view::npos) break;
        i += length - 1;
    }
    return text.size();
}

bool is_number(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, is_digit);
}

bool is_index(std::string_view step) {
    return step.size() > 2 && step.front() == '[' && step.back() == ']' &&
           is_number(step.substr(1, step.size() - 2));
}

bool is_entry_number(std::string_view step) {
    return step.starts_with("[#") && step.back() == ']' &&
           is_number(step.substr(2, step.size() - 3));
}

// An example of a key of this type, for a message.
std::string sample_key(Type const& type) {
    if (type.kind == Kind::string) return "\"...\"";
    if (type.kind == Kind::variant) return std::string(type.arms.front().name);
    if (!type.has_parts()) return "0";
    std::string sample;
    for (Part const& part : type.parts)
        sample += (sample.empty() ? "(" : ",") + sample_key(*part.type);
    return sample + ")";
}

// Checks only the first character of a key. Whether a map holds the key is found out when bytes are
// walked.
bool starts_as_key(Type const& type, char first) {
    if (type.kind == Kind::string) return first == '"';
    if (type.has_parts()) return first == '(';
    return first != '"' && first != '(' && first != '#';
}

class PathCheck {
public:
    PathCheck(Type const& type, std::string_view path) : type_(&inner(type)), path_(path) {}

    std::optional<std::string> complaint() {
        while (at_ < path_.size())
            if (auto found = step()) return found;
        return std::nullopt;
    }

    Type const& type() const { return *type_; }

private:
    using Names = std::vector<std::string_view>;

    std::optional<std::string> step() {
        auto const step = step_at(path_, at_);
        switch (type_->kind) {
            case Kind::list:
            case Kind::set:
                return is_index(step) ? into(*type_->element, step)
                                      : misfit("an index", ", as [0]");
            case Kind::flags:
                return is_index(step) ? into_leaf(step) : misfit("an index", ", as [0]");
            case Kind::map: return into_entry(step);
            case Kind::variant: return into_arm(step);
            case Kind::tuple: return into_tuple(step);
            case Kind::record:
            case Kind::group: return into_field(step);
            default: return misfit("nothing more");
        }
    }

    // The offset in `path_` after the step, which is a view into `path_`.
    std::size_t end_of(std::string_view step) const {
        return static_cast<std::size_t>(step.data() - path_.data()) + step.size();
    }

    std::optional<std::string> into(Type const& type, std::string_view step) {
        type_ = &inner(type);
        at_ = end_of(step);
        return std::nullopt;
    }

    std::optional<std::string> into_leaf(std::string_view step) {
        static constexpr Type flag{.kind = Kind::flag};
        return into(flag, step);
    }

    std::optional<std::string> into_entry(std::string_view step) {
        constexpr std::string_view key = ".key";
        if (is_entry_number(step)) {
            auto const behind = path_.substr(end_of(step));
            bool const is_key = step_at(behind, 0) == key.substr(1) && behind.starts_with(key);
            return is_key ? into(*type_->key, behind.substr(0, key.size()))
                          : into(*type_->element, step);
        }
        bool const is_closed = step.size() > 2 && step.front() == '[' && step.back() == ']';
        if (is_closed && starts_as_key(inner(*type_->key), step[1]))
            return into(*type_->element, step);
        return misfit("a key", ", as [" + sample_key(inner(*type_->key)) +
                                   "], or the number of an entry, as [#0]");
    }

    std::optional<std::string> into_arm(std::string_view step) {
        Names names;
        for (Arm const& arm : type_->arms) {
            if (arm.payload != nullptr && arm.name == step) return into_named(*arm.payload, step);
            if (arm.payload != nullptr) names.push_back(arm.name);
        }
        return misfit("an arm with a payload", nearest(step, names));
    }

    std::optional<std::string> into_field(std::string_view step) {
        Names names;
        for (Part const& part : type_->parts) {
            if (part.name == step) return into_named(*part.type, step);
            names.push_back(part.name);
        }
        return misfit("a field", nearest(step, names));
    }

    std::optional<std::string> into_tuple(std::string_view step) {
        for (std::size_t i = 0; i < type_->parts.size(); ++i)
            if (std::to_string(i) == step) return into_named(*type_->parts[i].type, step);
        return misfit("a part from .0 to ." + std::to_string(type_->parts.size() - 1));
    }

    std::optional<std::string> into_named(Type const& type, std::string_view step) {
        bool const has_dot = at_ < path_.size() && path_[at_] == '.';
        if (has_dot == (at_ == 0)) return misfit(at_ == 0 ? "no dot" : "a dot");
        return into(type, step);
    }

    static std::string nearest(std::string_view step, Names const& names) {
        if (names.empty()) return {};
        return "; the nearest is " + std::string(nearest_name(step, names, std::identity()));
    }

    std::string misfit(std::string const& expected, std::string const& help = {}) const {
        auto const step = std::string(step_at(path_, at_));
        auto const place = at_ == 0 ? " at the start" : " after " + part_name(path_.substr(0, at_));
        return std::string(path_) + ": " + (step.empty() ? "nothing" : step) + place + ", where " +
               expected + " belongs" + help;
    }

    Type const*      type_;
    std::string_view path_;
    std::size_t      at_ = 0;
};

}  // namespace

std::string_view step_at(std::string_view path, std::size_t at) {
    path.remove_prefix(at);
    if (path.starts_with('[')) return path.substr(0, end_of_bracket(path));
    if (path.starts_with('.')) path.remove_prefix(1);
    return path.substr(0, path.find_first_of(".["));
}

std::string path_without_keys(std::string_view path) {
    std::string without_keys;
    for (std::size_t at = 0; at < path.size();) {
        auto const step = step_at(path, at);
        bool const is_name = !step.starts_with('[');
        if (path[at] == '.') without_keys += path[at++];
        without_keys += is_name ? step : "[*]";
        at += step.size();
    }
    return without_keys;
}

std::string part_name(std::string_view path) {
    return path.empty() ? "the root" : std::string(path);
}

std::optional<std::string> path_complaint(Type const& type, std::string_view path,
                                          bool to_container) {
    PathCheck check(type, path);
    auto      complaint = check.complaint();
    if (!complaint && to_container && !check.type().is_container())
        return part_name(path) + " is no list, set or map";
    return complaint;
}

}  // namespace bradep

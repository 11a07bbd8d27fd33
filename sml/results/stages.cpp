#include <sml/results/stages.hpp>

#include <array>
#include <cstddef>

namespace sml::results {

namespace {

struct Described {
    char const*      name;
    std::string_view meaning;
};

constexpr std::array<Described, 8> all = {{
    {nullptr, "no other finding is the same"},
    {"fingerprint",
     "the rule and a fingerprint that no other finding of the rule has, and the message or the "
     "file"},
    {"surroundings", "rule, message, file, the flagged line and the lines around it"},
    {"text", "rule, message, file, function and the flagged line"},
    {"function", "rule, message, file and function; the flagged lines are not known"},
    {"place",
     "rule, message, file, and the line as the findings around it have moved; the function or the "
     "flagged line differs, or is not known on one side"},
    {"message",
     "rule and file, and the function with the flagged line, or the line as the findings around "
     "it have moved; the message differs"},
    {"moved",
     "rule and function with the flagged line or the message, or rule, message and surroundings; "
     "the file differs"},
}};

}  // namespace

char const* name_of(Stage stage) { return all[static_cast<std::size_t>(stage)].name; }

Stage stage_named(std::string_view name) {
    for (std::size_t i = 1; i < all.size(); ++i)
        if (name == all[i].name) return static_cast<Stage>(i);
    return Stage::none;
}

std::string_view meaning_of(Stage stage) { return all[static_cast<std::size_t>(stage)].meaning; }

}  // namespace sml::results

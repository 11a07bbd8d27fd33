#include "bench/names.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace bench {

namespace {

constexpr std::uint32_t shortest_name = 10;
constexpr std::uint32_t longest_name = 60;

constexpr std::array<std::string_view, 32> words{
    "abs",   "axis",  "brake", "buffer", "cabin", "can",   "clock",  "control",
    "count", "crc",   "data",  "delta",  "door",  "error", "filter", "flag",
    "frame", "gain",  "gear",  "handle", "index", "input", "limit",  "motor",
    "node",  "phase", "queue", "sensor", "speed", "state", "torque", "valve"};

std::string base36(std::size_t number) {
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::string                text;
    do {
        text += digits[number % digits.size()];
        number /= digits.size();
    } while (number != 0);
    std::ranges::reverse(text);
    return text;
}

std::size_t round_up(std::size_t number, std::size_t step) {
    return (number + step - 1) / step * step;
}

}  // namespace

// The number alone follows the last underscore, so no two names are equal.
std::string make_name(Draws& draws, std::size_t number, bool is_path) {
    std::string const ending = '_' + base36(number) + (is_path ? ".c" : "");
    std::size_t const length = shortest_name + draws.below(longest_name - shortest_name + 1);
    std::size_t const body = std::max(length, ending.size() + 1) - ending.size();
    std::string       text = is_path ? "src/" : "";
    while (text.size() < body) {
        text += words[draws.below(words.size())];
        text += is_path ? '/' : '_';
    }
    text.resize(body);
    return text + ending;
}

Names::Names(std::size_t checks, std::uint64_t seed) {
    std::size_t const least = 2 * group;
    std::size_t const count = std::max(least, round_up(checks / 10, group));
    Draws             draws(seed);
    names_.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        names_.emplace_back(make_name(draws, i, i % group == 0));
}

sml::Strings_T const& Names::identifier(std::size_t number) const {
    return names_[number + number / (group - 1) + 1];
}

std::size_t Names::draw(Draws& draws) const {
    auto const size = static_cast<std::uint32_t>(names_.size());
    auto const hot_size = static_cast<std::uint32_t>(hot());
    if (draws.chance(50)) return draws.below(hot_size);
    return hot_size + draws.below(size - hot_size);
}

sml::Strings_T const& Names::draw_identifier(Draws& draws) const {
    std::size_t const index = draw(draws);
    return names_[index % group == 0 ? index + 1 : index];
}

std::size_t Names::draw_path(Draws& draws) const {
    std::size_t const index = draw(draws);
    return index - index % group;
}

}  // namespace bench

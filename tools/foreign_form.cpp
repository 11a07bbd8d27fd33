#include "foreign_form.hpp"

namespace bradep {

namespace {

using namespace std::string_view_literals;

struct Form {
    std::string_view start;
    std::string_view name;
};

// If two entries fit, the first one wins.
constexpr Form forms[] = {
    {"\x1F\x8B"sv, "compressed by gzip"},
    {"PK\x03\x04"sv, "a zip archive"},
    {"\x28\xB5\x2F\xFD"sv, "compressed by zstd"},
    {"\xFD"
     "7zXZ\0"sv,
     "compressed by xz"},
    {"BZh"sv, "compressed by bzip2"},
    {"\xFF\xFE\0\0"sv, "UTF-32 text"},
    {"\0\0\xFE\xFF"sv, "UTF-32 text"},
    {"\xFF\xFE"sv, "UTF-16 text"},
    {"\xFE\xFF"sv, "UTF-16 text"},
};

constexpr std::string_view blanks = " \t\r\n";

std::string_view without_blanks(std::string_view text) {
    auto const start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

bool starts_as_json(std::string_view text) {
    text = without_blanks(text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text);
    if (text.empty() || (text.front() != '{' && text.front() != '[')) return false;
    auto const inside = without_blanks(text.substr(1));
    return !inside.empty() &&
           std::string_view("\"{}[]").find(inside.front()) != std::string_view::npos;
}

// Reads an ASCII character from the first `width` bytes: it stands at `place`, and all other bytes
// are zero. Returns zero if there is no such character.
char ascii_in(std::string_view bytes, std::size_t width, std::size_t place) {
    if (bytes.size() < width) return '\0';
    for (std::size_t i = 0; i < width; ++i)
        if (i != place && bytes[i] != '\0') return '\0';
    return bytes[place];
}

// Checks two characters: `{` alone could be a small number in a result set.
bool starts_as_wide_json(std::string_view bytes, std::size_t width) {
    auto const starts = [&](std::size_t place) {
        if (ascii_in(bytes, width, place) != '{') return false;
        char const second = ascii_in(bytes.substr(width), width, place);
        return second != '\0' &&
               std::string_view(" \t\r\n\"}").find(second) != std::string_view::npos;
    };
    return starts(0) || starts(width - 1);
}

}  // namespace

std::string_view foreign_form(std::string_view bytes) {
    for (auto const& [start, name] : forms)
        if (bytes.starts_with(start)) return name;
    if (starts_as_wide_json(bytes, 4)) return "UTF-32 text";
    if (starts_as_wide_json(bytes, 2)) return "UTF-16 text";
    return starts_as_json(bytes) ? json_form : std::string_view();
}

}  // namespace bradep

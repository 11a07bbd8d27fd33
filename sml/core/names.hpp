#pragma once
// Names as compile-time values: of arms as template arguments, of enumerators and fields as lists.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace sml::core {

/// A string literal as a template argument.
template <std::size_t Size>
struct Name {
    char text[Size]{};

    consteval Name(char const (&literal)[Size]) { std::copy_n(literal, Size, text); }

    constexpr std::string_view view() const { return {text, Size - 1}; }
};

/// The number of letters that must be added, removed or changed to make one text of the other.
/// `row` must have room for one number more than `b` has letters.
constexpr std::size_t edit_distance(std::string_view a, std::string_view b, std::size_t* row) {
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row[b.size()];
}

/// How many names a comma-separated list holds.
constexpr std::size_t count_names(std::string_view list) {
    return list.empty() ? 0 : 1 + static_cast<std::size_t>(std::ranges::count(list, ','));
}

/// The names of a comma-separated list, each ended by a zero character.
template <std::size_t Count, std::size_t Size>
struct NameTable {
    std::array<char, Size>         text{};
    std::array<std::size_t, Count> start{};

    consteval NameTable(char const (&list)[Size]) {
        std::size_t end = 0;
        std::size_t name = 0;
        for (std::size_t i = 0; i + 1 < Size; ++i) {
            if (list[i] == ' ') continue;
            text[end++] = list[i] == ',' ? '\0' : list[i];
            if (list[i] == ',') start[++name] = end;
        }
    }

    constexpr char const* operator[](std::size_t name) const { return text.data() + start[name]; }

    constexpr bool ascends() const {
        for (std::size_t name = 1; name < Count; ++name)
            if (std::string_view((*this)[name - 1]) >= std::string_view((*this)[name]))
                return false;
        return true;
    }
};

template <Name List>
consteval auto name_table() {
    return NameTable<count_names(List.view()), sizeof(List.text)>(List.text);
}

}  // namespace sml::core

#pragma once
// Access to the string table for tests.

#include <sml/core/Strings.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace string_table {

using Entry = sml::Strings_T::StringWithRefCount;

/// The entry of a text; null if the string table has none.
inline Entry const* entry_of(std::string const& text) {
    for (Entry const& entry : sml::Strings_T::fAllStrings)
        if (entry.str == text) return &entry;
    return nullptr;
}

/// The number of handles to a text; 0 if the string table has no entry.
inline std::uint64_t count_of(std::string const& text) {
    Entry const* const entry = entry_of(text);
    return entry == nullptr ? 0 : entry->count;
}

inline std::size_t size() { return sml::Strings_T::fAllStrings.size(); }

}  // namespace string_table

#pragma once
// Printable names in two parts.

#include <sml/core/declare.hpp>

namespace sml::QualifiedPrettyName {

/// A printable name in two parts.
struct T {
    Strings_T qualifier;
    Strings_T name;

    SML_RECORD(T, qualifier, name);
    SML_API std::uint64_t hash() const;
};

}  // namespace sml::QualifiedPrettyName

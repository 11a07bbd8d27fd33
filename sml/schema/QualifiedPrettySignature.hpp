#pragma once
// Printable names with what comes before them.

#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>

namespace sml::QualifiedPrettySignature {

/// A printable name with what comes before it.
struct T {
    Strings_T              signature;
    QualifiedPrettyName::T qualified_name;

    SML_RECORD(T, signature, qualified_name);
    SML_API std::uint64_t hash() const;
};

}  // namespace sml::QualifiedPrettySignature

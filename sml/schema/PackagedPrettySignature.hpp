#pragma once
// Printable signatures with their package.

#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::PackagedPrettySignature {

/// A printable signature with its package.
struct T {
    Strings_T                   package;
    QualifiedPrettySignature::T qualified_signature;

    SML_RECORD(T, package, qualified_signature);
    SML_API std::uint64_t hash() const;
};

}  // namespace sml::PackagedPrettySignature

#pragma once
// Printable names with a signature in front of them.

#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::SignaturePrefixedQualifiedPrettyName {

/// A printable name with the signature in front of it.
struct T {
    QualifiedPrettySignature::T prefix;
    QualifiedPrettyName::T      qualified_name;

    SML_RECORD(T, prefix, qualified_name);
};

}  // namespace sml::SignaturePrefixedQualifiedPrettyName

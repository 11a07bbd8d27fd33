#pragma once
// Printable names behind a signature.

#include "core/declare.hpp"
#include "schema/QualifiedPrettyName.hpp"
#include "schema/QualifiedPrettySignature.hpp"

namespace sml::SignaturePrefixedQualifiedPrettyName {

/// A printable name with the signature in front of it.
struct T {
    QualifiedPrettySignature::T prefix;
    QualifiedPrettyName::T      qualified_name;

    SML_RECORD(T, prefix, qualified_name);
};

}  // namespace sml::SignaturePrefixedQualifiedPrettyName

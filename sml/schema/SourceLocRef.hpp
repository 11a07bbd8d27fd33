#pragma once
// References to places in the analysed source.

#include <sml/core/declare.hpp>
#include <sml/schema/Localization.hpp>

namespace sml::SourceLocRef {

/// A reference to a place in the analysed source.
struct T_SourceLocRef {
    uint32                       kind{};
    Localization::T_Localization localization;
    int64                        reference{};

    SML_RECORD(T_SourceLocRef, kind, localization, reference);
};

}  // namespace sml::SourceLocRef

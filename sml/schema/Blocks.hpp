#pragma once
// The blocks of a function's code.

#include <sml/core/declare.hpp>
#include <sml/schema/BlockKind.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Blocks {

/// How much of a block is unreachable.
SML_ENUM(T_BlockUnreachable, COMPLETELY_UNREACHABLE, NOT_UNREACHABLE, PARTIALLY_UNREACHABLE);

/// Where a block stands.
struct T_BlockLocalization {
    SourceLocRef::T_SourceLocRef block_start;
    SourceLocRef::T_SourceLocRef block_end;

    SML_RECORD(T_BlockLocalization, block_start, block_end);
};

/// What is known of a block.
struct T_BlockAttribute {
    std::optional<std::pair<Strings_T, int32>>  function_ref;
    std::optional<SourceLocRef::T_SourceLocRef> source_ref;
    Strings_T                                   first_text;
    int32                                       first_number{};
    Strings_T                                   second_text;
    int32                                       second_number{};
    bool                                        flag{};
    BlockKind::T_BlockKind                      kind;
    T_BlockLocalization                         localization;
    Strings_T                                   third_text;
    int32                                       third_number{};
    int32                                       last_number{};

    SML_RECORD(T_BlockAttribute, function_ref, source_ref, first_text, first_number, second_text,
               second_number, flag, kind, localization, third_text, third_number, last_number);
};

}  // namespace sml::Blocks

#pragma once
// The tables of a root: what rows and columns its lists, sets and maps have, made from descriptors.

#include <sml/inspect/type.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sml::tables {

/// The type of a column in SQL.
enum class Storage : std::uint8_t { integer, real, text };

/// What a cell of a column holds.
enum class Form : std::uint8_t {
    // Of the row itself.
    result_set,
    row,
    parent,
    position,

    // Of a value.
    integer,
    flag,  ///< 1 or 0; whether an optional is present, too
    text,
    word,        ///< an unsigned word of 8 bytes, as text
    enumerator,  ///< its name, or its number if it has none
    arm,         ///< the name of a variant's or reference's arm; null if it has none
    args,        ///< its payload as JSON; null if it has none
    decimal,     ///< a big integer
    order,       ///< the same as a text; these texts are in the order of the integers
    exact,       ///< a `double` or a float as exact text
    width,       ///< of a float, in bits
    nearest,     ///< the double nearest to a `double` or a float; null if that is no number
    json,        ///< a value that contains values of its own type
};

struct Column {
    std::string   name;
    Storage       storage;
    Form          form;
    std::uint32_t value = 0;  ///< index of the value in the entry; 0 for forms of the row itself

    /// Whether it is a form of the row itself.
    bool is_of_row() const { return form <= Form::position; }
};

/// A step through the bytes of an entry. The steps of a table are in the order of the bytes.
struct LayoutStep {
    enum class Kind : std::uint8_t {
        value,     ///< a value with columns
        optional,  ///< a flag; if it is false, the steps up to `end` are left out
        child,     ///< a list, set or map that is a table
    };

    static constexpr std::uint32_t none = ~std::uint32_t{0};

    Kind                 kind;
    inspect::Type const* type;
    std::uint32_t        index = none;  ///< of the value, of that of the flag, or of the table
    std::uint32_t        end = 0;       ///< of an optional: the index of the step behind it
};

struct Table {
    std::string                  name;
    std::string                  path;    ///< from the root, as in `application_results.checks`
    std::optional<std::uint32_t> parent;  ///< index of the table whose entries hold this one's
    std::vector<Column>          columns;
    std::vector<LayoutStep>      layout;
    std::uint32_t                values = 0;           ///< how many values an entry has
    inspect::Type const*         container = nullptr;  ///< null for the table of the root

    /// Null if there is no such column. Names are compared without case, as in SQL.
    Column const* find(std::string_view column) const;
};

/// All tables of a root, in the order of the wire form, a parent before its children. The first is
/// `root`, which has one row.
struct Schema {
    inspect::Root const* root;
    std::vector<Table>   tables;

    /// Null if there is no such table. Names are compared without case, as in SQL.
    Table const* find(std::string_view table) const;
};

Schema schema_of(inspect::Root const& root);

/// Whether two names are the same in SQL.
bool are_equal_names(std::string_view a, std::string_view b);

}  // namespace sml::tables

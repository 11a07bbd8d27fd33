#pragma once
// The rows of a table, read straight from the bytes of a result set.

#include <sml/inspect/contents.hpp>
#include <sml/inspect/json_visitor.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/inspect/walk/verified_value.hpp>
#include <sml/tables/table.hpp>

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sml::tables {

/// A text of a cell: UTF-8 without NUL. A byte that belongs to no character has become the six
/// characters `\udcXX`, a NUL `\u0000`.
struct Text {
    std::string_view text;
    bool             lasts;  ///< as long as the contents; else until the next cell is asked for
};

/// A cell; `std::monostate` is null.
using Cell = std::variant<std::monostate, std::int64_t, double, Text>;

/// Goes through the rows of a table of one result set, in the order of the bytes. Only the wanted
/// columns are looked for in the bytes, and a cell is converted when it is asked for.
class Rows {
public:
    /// The contents, schema and table must outlive this object. `is_wanted` has an element for each
    /// column of the table.
    Rows(inspect::Contents const& contents, Schema const& schema, Table const& table,
         std::vector<bool> const& is_wanted);
    Rows(Rows const&) = delete;
    Rows& operator=(Rows const&) = delete;

    /// Moves to the next row, at first to the first one. Returns false after the last one.
    bool next();

    // Of the present row. Rows and positions are counted from 0.
    std::int64_t row() const { return levels_.back().row; }
    std::int64_t position() const { return levels_.back().position; }
    /// The row of the parent. Requires a table that has one.
    std::int64_t parent() const { return levels_[levels_.size() - 2].row; }

    /// The cell of the present row in a wanted column. Requires another column than `result_set`.
    Cell cell(Column const& column);

    /// The number of bytes up to the present row, for showing progress.
    std::uint64_t offset() const { return at_.offset(); }

    /// Where the entry of the present row starts, and how many bytes it has, those of its children
    /// included.
    std::uint64_t start() const { return start_; }
    std::uint64_t size() const { return at_.offset() - start_; }

    /// How many rows follow within the present row of the parent.
    std::uint32_t left() const { return levels_.back().left; }

private:
    /// What is done with the next bytes of an entry.
    struct Operation {
        enum class Code : std::uint8_t {
            take,      ///< passes `number` bytes
            string,    ///< passes a string
            skip,      ///< passes a value of `type`
            mark,      ///< stores the offset of the value with the index `number`
            optional,  ///< takes a flag; if it is false, goes on at the operation `number`
            enter,     ///< goes to the entries of the next level
        };
        Code                 code;
        std::uint32_t        number = 0;
        inspect::Type const* type = nullptr;
    };

    class Operations;

    /// The entries of one table, within an entry of the level before it.
    struct Level {
        std::vector<Operation> operations;   // for each entry
        std::size_t            resumed = 0;  // the operation after the entries of the next level
        std::uint32_t          left = 0;     // entries after the present one
        std::int64_t           row = -1;
        std::int64_t           position = -1;
    };

    static constexpr std::size_t   not_started = ~std::size_t{0};
    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};

    bool run(Level& level, std::size_t first);
    void open(Level& level);
    void forget_marks();

    Cell cell_of_value(Column const& column, inspect::Type const& type, inspect::VerifiedBytes at);
    Cell shown(std::string_view text);
    Cell from_bytes(std::string_view text);
    Cell decimal(inspect::VerifiedBytes at);
    Cell order(inspect::VerifiedBytes at);
    Cell exact(inspect::Type const& type, inspect::VerifiedBytes at);
    Cell args(inspect::Type const& type, inspect::VerifiedBytes at);
    Cell json(inspect::Type const& type, inspect::VerifiedBytes at);

    inspect::VerifiedBytes            at_;
    std::vector<Level>                levels_;               // the root's first, the table's last
    std::size_t                       depth_ = not_started;  // of the present level
    std::uint64_t                     start_ = 0;            // of the present entry
    std::vector<std::uint64_t>        marks_;   // offsets of the marked values, else `nowhere`
    std::vector<std::uint32_t>        marked_;  // their indices
    std::vector<inspect::Type const*> types_;   // of the values
    std::string                       text_;    // of the cell asked for last
    inspect::Budget                   budget_;
    std::ostringstream                json_text_;
    inspect::JsonVisitor              json_;
};

/// How many rows a table has whose parent is the root.
std::uint64_t rows_in_one_parent(inspect::Contents const& contents, Schema const& schema,
                                 Table const& table);

/// Whether a text can stand in a cell as it is.
bool is_valid_text(std::string_view text);

/// Appends a text as `Text` has it.
void append_valid_text(std::string& valid, std::string_view text);

/// Appends a text for an integer, given by hexadecimal digits in lower case and a sign if it is
/// negative. The order of these texts by bytes is that of the integers.
void append_ordered(std::string& text, std::string_view digits);

}  // namespace sml::tables

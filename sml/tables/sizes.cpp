#include <sml/tables/sizes.hpp>

#include <sml/inspect/walk/verified_value.hpp>
#include <sml/tables/rows.hpp>

#include <algorithm>
#include <optional>

namespace sml::tables {

namespace {

using inspect::Arm;
using inspect::Type;
using inspect::VerifiedBytes;

enum SizeColumn : std::size_t { name = 1, rows, bytes, largest, largest_row, depth };

std::vector<Column> const& columns_of_sizes() {
    static std::vector<Column> const columns = {
        {"result_set", Storage::integer, Form::result_set},
        {"name", Storage::text, Form::text},
        {"rows", Storage::integer, Form::integer},
        {"bytes", Storage::integer, Form::integer},
        {"largest", Storage::integer, Form::integer},
        {"largest_row", Storage::integer, Form::integer},
        {"depth", Storage::integer, Form::integer},
    };
    return columns;
}

/// Counts levels of variants and containers.
class Nesting {
public:
    std::int64_t deepest() const { return deepest_; }

    void begin(Type const& type, std::uint64_t) {
        if (type.is_container()) enter();
    }
    void end(Type const& type) {
        if (type.is_container()) --levels_;
    }
    void begin_variant(Type const&, std::int32_t, Arm const*) { enter(); }
    void end_variant(Type const&) { --levels_; }

    // All else has no levels.
    void integer(Type const&, std::int64_t) {}
    void natural(Type const&, std::uint64_t) {}
    void flag(bool) {}
    void enumeration(Type const&, std::int32_t) {}
    void string(std::string_view) {}
    void text(std::string_view) {}
    void number(double) {}
    void big_integer(std::string_view) {}
    void ieee_float(std::string_view, std::int32_t) {}
    void absent(Type const&) {}
    void present(Type const&) {}
    void reference(Type const&, std::int32_t, std::uint64_t) {}
    void payload(Type const&) {}
    void part(Type const&, std::uint64_t) {}
    void entry_value(Type const&) {}
    void end_entry(Type const&) {}

private:
    void enter() { deepest_ = std::max(deepest_, ++levels_); }

    std::int64_t levels_ = 0;
    std::int64_t deepest_ = 0;
};

struct Size {
    std::int64_t                rows = 0;
    std::uint64_t               bytes = 0;
    std::optional<std::int64_t> largest;
    std::optional<std::int64_t> largest_row;
    std::optional<std::int64_t> depth;

    void add(std::uint64_t size, std::optional<std::int64_t> row) {
        ++rows;
        bytes += size;
        auto const signed_size = static_cast<std::int64_t>(size);
        if (largest && signed_size <= *largest) return;
        largest = signed_size;
        largest_row = row;
    }
};

class SizesStream : public RowStream {
public:
    SizesStream(ResultSet const& set, Schema const& schema, bool wants_depth)
        : contents_(set.contents), schema_(schema), wants_depth_(wants_depth) {}

    bool next() override {
        ++row_;
        auto const tables = static_cast<std::int64_t>(schema_.tables.size());
        if (row_ > tables) return false;
        size_ = row_ < tables ? size_of(table()) : size_of_strings();
        return true;
    }

    std::int64_t row() const override { return row_; }

    Cell cell(std::size_t column) override {
        auto const of = [](std::optional<std::int64_t> number) {
            return number ? Cell(*number) : Cell();
        };
        bool const is_table = row_ < static_cast<std::int64_t>(schema_.tables.size());
        switch (column) {
            case name: return Text{is_table ? std::string_view(table().name) : "(strings)", true};
            case rows: return size_.rows;
            case bytes: return static_cast<std::int64_t>(size_.bytes);
            case largest: return of(size_.largest);
            case largest_row: return of(size_.largest_row);
            default: return of(size_.depth);
        }
    }

private:
    Table const& table() const { return schema_.tables[static_cast<std::size_t>(row_)]; }

    Size size_of(Table const& table) const {
        Size size;
        Rows entries(contents_, schema_, table, std::vector<bool>(table.columns.size()));
        while (entries.next()) {
            size.add(entries.size(), entries.row());
            if (wants_depth_)
                size.depth = std::max(size.depth.value_or(0), depth_of(table, entries.start()));
        }
        return size;
    }

    std::int64_t depth_of(Table const& table, std::uint64_t start) const {
        Nesting       nesting;
        VerifiedBytes at(contents_, start);
        if (table.container == nullptr) {
            inspect::visit_value(*contents_.root().type, at, nesting);
        } else {
            if (table.container->key != nullptr)
                inspect::visit_value(*table.container->key, at, nesting);
            inspect::visit_value(*table.container->element, at, nesting);
        }
        return nesting.deepest();
    }

    Size size_of_strings() const {
        constexpr std::uint64_t words = 2 * sizeof(std::uint32_t);  // the id and the length
        Size                    size;
        for (std::size_t id = 1; id <= contents_.strings(); ++id)
            size.add(words + contents_.text_of(static_cast<std::int32_t>(id)).size(), std::nullopt);
        return size;
    }

    inspect::Contents const& contents_;
    Schema const&            schema_;
    bool                     wants_depth_;
    std::int64_t             row_ = -1;
    Size                     size_;
};

class SizesSource : public Source {
public:
    explicit SizesSource(ResultSets const& sets) : sets_(sets) {}

    std::string const&         name() const override { return name_; }
    std::vector<Column> const& columns() const override { return columns_of_sizes(); }
    std::int64_t               sets() const override { return sets_.count(); }
    std::uint64_t              expected_rows() const override {
        return static_cast<std::uint64_t>(sets_.count()) * (sets_.schema().tables.size() + 1);
    }
    std::unique_ptr<RowStream> rows(std::int64_t             set,
                                    std::vector<bool> const& is_wanted) const override {
        return std::make_unique<SizesStream>(sets_.set(set), sets_.schema(), is_wanted[depth]);
    }

private:
    ResultSets const& sets_;
    std::string       name_ = "sizes";
};

}  // namespace

std::unique_ptr<Source const> sizes_of(ResultSets const& sets) {
    return std::make_unique<SizesSource>(sets);
}

}  // namespace sml::tables

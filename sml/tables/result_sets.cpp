#include <sml/tables/result_sets.hpp>

#include <sml/inspect/sha256.hpp>
#include <sml/tables/rows.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace sml::tables {

namespace {

/// The rows of a table of one result set.
class TableStream : public RowStream {
public:
    TableStream(ResultSet const& set, Schema const& schema, Table const& table,
                std::vector<bool> const& is_wanted)
        : rows_(set.contents, schema, table, is_wanted), table_(table) {}

    bool          next() override { return rows_.next(); }
    Cell          cell(std::size_t column) override { return rows_.cell(table_.columns[column]); }
    std::int64_t  row() const override { return rows_.row(); }
    std::uint64_t offset() const override { return rows_.offset(); }

private:
    Rows         rows_;
    Table const& table_;
};

class TableSource : public Source {
public:
    TableSource(ResultSets const& sets, Table const& table) : sets_(sets), table_(table) {}

    std::string const&         name() const override { return table_.name; }
    std::vector<Column> const& columns() const override { return table_.columns; }
    std::int64_t               sets() const override { return sets_.count(); }

    std::uint64_t expected_rows() const override {
        if (!expected_rows_) {
            expected_rows_ = 0;
            for (std::int64_t set = 1; set <= sets(); ++set)
                *expected_rows_ += expected_rows_of(sets_.set(set).contents, table_);
        }
        return *expected_rows_;
    }

    std::unique_ptr<RowStream> rows(std::int64_t             set,
                                    std::vector<bool> const& is_wanted) const override {
        return std::make_unique<TableStream>(sets_.set(set), sets_.schema(), table_, is_wanted);
    }

private:
    std::uint64_t expected_rows_of(inspect::Contents const& contents, Table const& table) const {
        if (!table.parent) return 1;
        Schema const& schema = sets_.schema();
        Table const&  parent = schema.tables[*table.parent];
        if (!parent.parent) return rows_in_one_parent(contents, schema, table);
        constexpr std::uint64_t of_one_parent = 2;  // not known without reading all of them
        return of_one_parent * expected_rows_of(contents, parent);
    }

    ResultSets const& sets_;
    Table const&      table_;

    mutable std::optional<std::uint64_t> expected_rows_;
};

class EmptyStream : public RowStream {
public:
    bool         next() override { return false; }
    Cell         cell(std::size_t) override { return {}; }
    std::int64_t row() const override { return 0; }
};

class EmptySource : public Source {
public:
    EmptySource(ResultSets const& sets, Table table) : sets_(sets), table_(std::move(table)) {}

    std::string const&         name() const override { return table_.name; }
    std::vector<Column> const& columns() const override { return table_.columns; }
    std::int64_t               sets() const override { return sets_.count(); }
    std::uint64_t              expected_rows() const override { return 0; }
    std::unique_ptr<RowStream> rows(std::int64_t, std::vector<bool> const&) const override {
        return std::make_unique<EmptyStream>();
    }

private:
    ResultSets const& sets_;
    Table             table_;
};

enum ListColumn : std::size_t { name = 1, root, size, digest };

class ListStream : public RowStream {
public:
    ListStream(ResultSets const& sets, std::int64_t set) : sets_(sets), set_(set) {}

    bool         next() override { return !std::exchange(was_given_, true); }
    std::int64_t row() const override { return 0; }

    Cell cell(std::size_t column) override {
        ResultSet const& set = sets_.set(set_);
        text_.clear();
        switch (column) {
            case name: append_valid_text(text_, set.name); break;
            case root: return Text{sets_.schema().root->stem, true};
            case size: return static_cast<std::int64_t>(set.bytes.size());
            case digest: text_ = sets_.identity(set_); break;
        }
        return Text{text_, false};
    }

private:
    ResultSets const& sets_;
    std::int64_t      set_;
    std::string       text_;
    bool              was_given_ = false;
};

class ListSource : public Source {
public:
    explicit ListSource(ResultSets const& sets) : sets_(sets) {}

    std::string const&         name() const override { return name_; }
    std::vector<Column> const& columns() const override { return columns_of_list(); }
    std::int64_t               sets() const override { return sets_.count(); }
    std::uint64_t              expected_rows() const override {
        return static_cast<std::uint64_t>(sets_.count());
    }
    std::unique_ptr<RowStream> rows(std::int64_t set, std::vector<bool> const&) const override {
        return std::make_unique<ListStream>(sets_, set);
    }

private:
    ResultSets const& sets_;
    std::string       name_{name_of_list};
};

}  // namespace

std::string ResultSet::identity(inspect::WalkOptions const& options) const {
    inspect::Verdict const& verdict = contents.verdict();
    if (!verdict.reason_against_encoding) return inspect::digest(contents, options);
    inspect::Sha256 sum;
    sum.add(bytes);
    return "bytes:" + sum.hexadecimal();
}

std::string const& ResultSets::identity(std::int64_t number) const {
    std::string& known = identities_[number];
    if (known.empty()) known = set(number).identity(options_);
    return known;
}

std::vector<Column> const& columns_of_list() {
    static std::vector<Column> const columns = {
        {"result_set", Storage::integer, Form::result_set},
        {"name", Storage::text, Form::text},
        {"root", Storage::text, Form::text},
        {"size", Storage::integer, Form::integer},
        {"digest", Storage::text, Form::text},
    };
    return columns;
}

std::unique_ptr<Source const> list_of(ResultSets const& sets) {
    return std::make_unique<ListSource>(sets);
}

std::unique_ptr<Source const> source_of(ResultSets const& sets, Table const& table) {
    return std::make_unique<TableSource>(sets, table);
}

std::unique_ptr<Source const> empty_source(ResultSets const& sets, Table const& table) {
    return std::make_unique<EmptySource>(sets, table);
}

}  // namespace sml::tables

#include "export/view_rows.hpp"

#include <sml/tables/schema_sql.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace bradep {

using namespace sml::tables;

namespace {

// SQLite does not tell the types of the columns of a view.
constexpr std::array<std::string_view, 13> integer_columns = {
    "column",   "end_column", "end_line", "finding", "findings",   "flow",  "line",
    "position", "result_set", "run",      "runs",    "suppressed", "thread"};

Column column_of(std::string_view view, std::string name) {
    bool const is_integer = std::ranges::count(integer_columns, name) > 0;
    auto       form = is_integer ? Form::integer : Form::text;
    if (name == "result_set") form = Form::result_set;
    if (name == "finding") form = view == "findings" ? Form::row : Form::parent;
    return {std::move(name), is_integer ? Storage::integer : Storage::text, form};
}

Statement select_from(Database& database, std::string_view view) {
    std::string const sql = "SELECT * FROM " + quoted_name(view);
    std::string_view  rest = sql;
    return database.prepare(&rest);
}

class ViewRows : public RowStream {
public:
    ViewRows(Database& database, View const& view)
        : database_(database), statement_(select_from(database, view.name)) {}

    bool next() override {
        ++row_;
        return database_.step(statement_);
    }
    std::int64_t row() const override { return row_; }

    Cell cell(std::size_t index) override {
        auto const column = static_cast<int>(index);
        switch (sqlite3_column_type(statement_.get(), column)) {
            case SQLITE_NULL: return {};
            case SQLITE_INTEGER: return statement_.integer(column);
            case SQLITE_FLOAT: return sqlite3_column_double(statement_.get(), column);
            default: return Text{statement_.text(column), false};
        }
    }

private:
    Database&    database_;
    Statement    statement_;
    std::int64_t row_ = -1;
};

}  // namespace

std::vector<View> views_of(Database& database) {
    std::vector<View> views;
    for (std::string const& name : database.views()) {
        View&           view = views.emplace_back(View{name, {}});
        Statement const statement = select_from(database, name);
        for (int i = 0; i < sqlite3_column_count(statement.get()); ++i)
            view.columns.push_back(column_of(name, sqlite3_column_name(statement.get(), i)));
    }
    return views;
}

std::unique_ptr<RowStream> rows_of(Database& database, View const& view) {
    return std::make_unique<ViewRows>(database, view);
}

}  // namespace bradep

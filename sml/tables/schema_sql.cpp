#include <sml/tables/schema_sql.hpp>

namespace sml::tables {

std::string quoted_name(std::string_view name) {
    std::string quoted = "\"";
    for (char const c : name) quoted.append(c == '"' ? 2 : 1, c);
    return quoted += '"';
}

std::string_view type_name(Storage storage, Dialect dialect) {
    // For integer, real and text.
    constexpr std::string_view names[][3] = {
        {"INTEGER", "REAL", "TEXT"},
        {"BIGINT", "DOUBLE", "VARCHAR"},
        {"Int64", "Float64", "String"},
        {"bigint", "double precision", "text"},
    };
    return names[static_cast<std::size_t>(dialect)][static_cast<std::size_t>(storage)];
}

std::string create_table(std::string_view name, std::vector<Column> const& columns, Dialect dialect,
                         std::string_view constraint) {
    std::string      sql = "CREATE TABLE " + quoted_name(name) + " (";
    std::string_view separator = "\n  ";
    for (Column const& column : columns) {
        sql += separator;
        sql += quoted_name(column.name) + ' ';
        std::string const type(type_name(column.storage, dialect));
        bool const        is_nullable = !column.is_of_row();
        if (dialect == Dialect::clickhouse)
            sql += is_nullable ? "Nullable(" + type + ')' : type;
        else
            sql += type + (is_nullable ? "" : " NOT NULL");
        // Orders by bytes, as elsewhere.
        if (dialect == Dialect::postgresql && column.form == Form::order) sql += " COLLATE \"C\"";
        separator = ",\n  ";
    }
    if (!constraint.empty()) (sql += separator) += constraint;
    return sql += "\n)";
}

std::vector<std::string> primary_key(std::vector<Column> const& columns) {
    std::vector<std::string> key;
    for (Column const& column : columns)
        if (column.form == Form::result_set || column.form == Form::row) key.push_back(column.name);
    return key;
}

std::string quoted_names(std::vector<std::string> const& names) {
    std::string all;
    for (std::string const& name : names) all += (all.empty() ? "" : ", ") + quoted_name(name);
    return all;
}

}  // namespace sml::tables

#include "export/load_scripts.hpp"

#include <sml/inspect/schema_json.hpp>
#include <sml/inspect/sha256.hpp>
#include <sml/tables/schema_sql.hpp>
#include <sml/tables/sqlite/database.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace bradep {

using namespace sml::tables;

namespace {

struct ExportedTable {
    std::string         name;
    std::string         meaning;
    std::vector<Column> columns;
    bool                is_view = false;
};

std::vector<ExportedTable> tables_of(sml::inspect::Root const& root) {
    ResultSets const           none(root, {});
    Database                   database(none);
    std::vector<ExportedTable> tables;
    for (Table const& table : none.schema().tables)
        tables.push_back({table.name, table.path, table.columns});
    for (View& view : views_of(database))
        tables.push_back({std::move(view.name), "a view", std::move(view.columns), true});
    // The last one: what is in it is complete.
    tables.push_back({"result_sets", "the result sets", columns_of_list()});
    return tables;
}

bool is_child(ExportedTable const& table) {
    return std::ranges::count(table.columns, Form::parent, &Column::form) > 0;
}

std::string parent_column(ExportedTable const& table) {
    return std::ranges::find(table.columns, Form::parent, &Column::form)->name;
}

/// "CREATE TABLE IF NOT EXISTS ...", with a comment before it.
std::string create(ExportedTable const& table, std::string const& name, Dialect dialect,
                   std::string_view constraint = {}) {
    constexpr std::string_view create_table_words = "CREATE TABLE ";
    std::string const          comment = table.meaning.empty() ? "" : "-- " + table.meaning + '\n';
    return comment + "CREATE TABLE IF NOT EXISTS " +
           create_table(name, table.columns, dialect, constraint).substr(create_table_words.size());
}

std::string create_for_duckdb(std::vector<ExportedTable> const& tables) {
    std::string sql;
    for (auto const& table : tables) sql += create(table, table.name, Dialect::duckdb) + ";\n";
    return sql;
}

std::string create_for_postgresql(std::vector<ExportedTable> const& tables) {
    std::string sql = "SET client_min_messages = warning;\n";
    for (auto const& table : tables) {
        auto const key = primary_key(table.columns);
        bool const has_key = !table.is_view || key.size() > 1;
        sql += create(table, table.name, Dialect::postgresql,
                      has_key ? "PRIMARY KEY (" + quoted_names(key) + ')' : "") +
               ";\n";
        if (is_child(table))
            sql += "CREATE INDEX IF NOT EXISTS " + quoted_name(table.name + "_by_parent") + " ON " +
                   quoted_name(table.name) + " (\"result_set\", " +
                   quoted_name(parent_column(table)) + ");\n";
    }
    return sql;
}

std::string create_for_clickhouse(std::vector<ExportedTable> const& tables) {
    std::string sql;
    for (auto const& table : tables) {
        auto       key = primary_key(table.columns);
        auto const local = table.name + "_local";
        if (is_child(table)) key = {"result_set", parent_column(table)};
        sql += create(table, local, Dialect::clickhouse) + "\nENGINE = MergeTree ORDER BY (" +
               quoted_names(key) + ");\n";
        sql += create(table, table.name, Dialect::clickhouse) +
               "\nENGINE = Distributed(bradep, currentDatabase(), " + local +
               ", intHash64(result_set));\n";
    }
    return sql;
}

std::string names_of(std::vector<ExportedTable> const& tables) {
    std::string names;
    for (auto const& table : tables) names += table.name + '\n';
    return names;
}

std::string replaced(std::string_view text, std::string_view what, std::string_view by) {
    std::string result(text);
    for (auto at = result.find(what); at != std::string::npos;
         at = result.find(what, at + by.size()))
        result.replace(at, what.size(), by);
    return result;
}

constexpr std::string_view postgresql_script =
#include "load_postgresql.inc"
    ;
constexpr std::string_view clickhouse_script =
#include "load_clickhouse.inc"
    ;
constexpr std::string_view duckdb_script =
#include "load_duckdb.inc"
    ;

// Its functions take the files of a format, and can't take no files: an empty one is among them.
std::string load_for_duckdb(std::vector<ExportedTable> const& tables, FileFormat format) {
    std::string loads;
    for (auto const& table : tables) {
        std::string columns;
        for (Column const& column : table.columns)
            columns += (columns.empty() ? "" : ", ") + quoted_name(column.name) + ": '" +
                       std::string(type_name(column.storage, Dialect::duckdb)) + '\'';
        std::string const read =
            format == FileFormat::csv
                ? "read_csv(getvariable('files'), header = true, delim = ',', quote = '\"', "
                  "escape = '\"', nullstr = '\\N', allow_quoted_nulls = false, auto_detect = false,"
                  "\n  strict_mode = true, max_line_size = 16777216, columns = {"
                : "read_json(getvariable('files'), format = 'newline_delimited',\n  columns = {";
        loads += "SET VARIABLE files = files_of('" + table.name + "');\nINSERT INTO " +
                 quoted_name(table.name) + " SELECT * FROM " + read + columns + "});\n";
    }
    auto const script = replaced(duckdb_script, "@format@", name_of(format));
    return replaced(replaced(script, "@create@", create_for_duckdb(tables)), "@load@", loads);
}

std::string digest_of(std::vector<ExportedTable> const& tables) {
    sml::inspect::Sha256 sum;
    for (auto const& table : tables) sum.add(create_table(table.name, table.columns));
    return sum.hexadecimal();
}

}  // namespace

std::string mark_of(sml::inspect::Root const& root, FileFormat format) {
    return "{\"format\":\"" + std::string(name_of(format)) + "\",\"root\":\"" +
           std::string(root.stem) + "\",\"wire\":\"" + wire_digest(root) + "\",\"tables\":\"" +
           digest_of(tables_of(root)) + "\"}\n";
}

std::vector<SchemaFile> schema_files(sml::inspect::Root const& root, FileFormat format) {
    auto const tables = tables_of(root);
    auto const of_format = [&](std::string_view script) {
        return replaced(script, "@format@", name_of(format));
    };
    std::vector<SchemaFile> files = {
        {export_mark, mark_of(root, format)},
        {"tables", names_of(tables)},
        {"load_duckdb.sql", load_for_duckdb(tables, format)},
        {"postgresql.sql", create_for_postgresql(tables)},
        {"load_postgresql.sh", of_format(postgresql_script), true},
        {"clickhouse.sql", create_for_clickhouse(tables)},
        {"load_clickhouse.sh", of_format(clickhouse_script), true},
    };
    for (auto const& table : tables)
        files.push_back(
            {std::filesystem::path("empty") / (table.name + '.' + std::string(name_of(format))),
             RowText(format, table.columns).header()});
    return files;
}

}  // namespace bradep

#include <sml/tables/sqlite/database.hpp>

#include <sml/tables/schema_sql.hpp>

#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace sml;
using namespace sml::tables;

inspect::Root const& sets() { return *inspect::find_root("String_To_StringSet_T"); }

/// {"b": {"z", "a"}, "a": {}}.
std::string two_sets() {
    return hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  02 00 00 00"
        "FE FF FF FF 01 00 00 00 'z'  FD FF FF FF 01 00 00 00 'a'  03 00 00 00  00 00 00 00");
}

/// A database of these bytes as result sets.
class Asked {
public:
    Asked(inspect::Root const& root, std::vector<std::string> bytes)
        : bytes_(std::move(bytes)), sets_(root, {}) {
        for (std::string const& one : bytes_) sets_.add({"set", one, inspect::Contents(root, one)});
        database_.emplace(sets_);
    }

    std::string operator()(std::string const& text_of_statement) {
        std::string_view sql = text_of_statement;
        Statement        statement = database_->prepare(&sql);
        std::string      text;
        while (database_->step(statement)) {
            if (!text.empty()) text += ' ';
            for (int i = 0; i < sqlite3_column_count(statement.get()); ++i)
                (text += i > 0 ? "|" : "") += statement.text(i);
        }
        return text;
    }

    Database& database() { return *database_; }

private:
    std::vector<std::string> bytes_;
    ResultSets               sets_;
    std::optional<Database>  database_;
};

TEST(Database, HasTheTablesOfAllResultSets) {
    Asked ask(sets(), {two_sets(), two_sets()});
    EXPECT_EQ(ask("SELECT * FROM value WHERE result_set = 2"), "2|0|b 2|1|a");
    EXPECT_EQ(ask("SELECT * FROM value__value"), "1|0|0|0|z 1|1|0|1|a 2|0|0|0|z 2|1|0|1|a");
    EXPECT_EQ(ask("SELECT * FROM root"), "1 2");
}

TEST(Database, JoinsTablesOfOneResultSet) {
    Asked ask(sets(), {two_sets(), two_sets()});
    EXPECT_EQ(ask("SELECT v.result_set, v.key, c.value FROM value AS v JOIN value__value AS c"
                  " ON c.result_set = v.result_set AND c.parent = v.row"),
              "1|b|z 1|b|a 2|b|z 2|b|a");
}

TEST(Database, ListsTheResultSets) {
    Asked ask(sets(), {two_sets()});
    EXPECT_EQ(ask("SELECT result_set, name, root, size, length(digest) FROM result_sets"),
              "1|set|String_To_StringSet_T|43|64");
}

TEST(Database, NamesBytesWithoutCanonicalFormByTheirSum) {
    Asked ask(sets(), {hex::bytes("02 00 00 00  FF FF FF FF 01 00 00 00 'b'  00 00 00 00"
                                  "01 00 00 00  00 00 00 00")});
    EXPECT_EQ(ask("SELECT substr(digest, 1, 6), length(digest) FROM result_sets"), "bytes:|70");
}

TEST(Database, RefusesAllThatIsNoQuestion) {
    Asked ask(sets(), {two_sets()});
    for (char const* const sql : {"ATTACH '/tmp/x.db' AS x",
                                  "VACUUM INTO '/tmp/x.db'",
                                  "VACUUM",
                                  "SELECT load_extension('x')",
                                  "PRAGMA temp_store",
                                  "SELECT * FROM pragma_table_info('root')",
                                  "CREATE TABLE x(y)",
                                  "CREATE TEMP TABLE x(y)",
                                  "CREATE VIEW x AS SELECT 1",
                                  "DROP VIEW findings",
                                  "BEGIN",
                                  "COMMIT",
                                  "DELETE FROM root",
                                  "INSERT INTO root VALUES (1)",
                                  "UPDATE root SET result_set = 2",
                                  "REINDEX",
                                  "ANALYZE",
                                  "DETACH main",
                                  "SAVEPOINT s",
                                  "CREATE VIRTUAL TABLE x USING fts5(y)"})
        EXPECT_THROW(ask(sql), SqlError) << sql;
    for (char const* const sql : {"VALUES (1)", "WITH x AS (SELECT 1) SELECT * FROM x",
                                  "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
                                  " WHERE i < 1) SELECT i FROM n"})
        EXPECT_EQ(ask(sql), "1") << sql;
    EXPECT_NE(ask("EXPLAIN QUERY PLAN SELECT * FROM root"), "");
}

TEST(Database, ReadsJson) {
    Asked ask(sets(), {two_sets()});
    EXPECT_EQ(ask("SELECT value FROM json_each('[1, 2]')"), "1 2");
    EXPECT_EQ(ask("SELECT count(*) FROM json_tree('{\"a\": [1]}')"), "3");
}

TEST(Database, FindsPatternsAndFileNames) {
    Asked ask(sets(), {two_sets()});
    EXPECT_EQ(ask("SELECT key FROM value WHERE key REGEXP '^[bc]$'"), "b");
    EXPECT_EQ(ask("SELECT 'a' REGEXP NULL IS NULL, 'xay' REGEXP 'a', 'a' REGEXP 'b'"), "1|1|0");
    EXPECT_EQ(ask("SELECT fnmatch('src/*', 'src/a/b.c'), fnmatch('*.[ch]', 'x.cpp'), fnmatch('a',"
                  " NULL) IS NULL"),
              "1|0|1");
    EXPECT_THROW(ask("SELECT 'a' REGEXP '('"), SqlError);
}

TEST(Database, TellsWhereAStatementIsWrong) {
    Asked ask(sets(), {two_sets()});
    try {
        ask("SELECT\n  missing FROM root");
        FAIL();
    } catch (SqlError const& error) {
        EXPECT_EQ(error.offset, 9);
        EXPECT_STREQ(error.what(), "no such column: missing");
    }
}

TEST(Database, HasViewsWhereThereAreChecks) {
    Asked none(sets(), {two_sets()});
    EXPECT_TRUE(none.database().views().empty());
    auto const& results = *inspect::find_root("Application_Results_Application_Results");
    ResultSets  no_sets(results, {});
    Database    database(no_sets);
    EXPECT_FALSE(database.views().empty());
    for (std::string const& view : database.views()) {
        std::string const sql = "SELECT * FROM " + quoted_name(view);
        std::string_view  rest = sql;
        Statement         statement = database.prepare(&rest);
        EXPECT_FALSE(database.step(statement)) << view;
    }
}

}  // namespace

#include <sml/tables/table.hpp>

#include <sml/core/declare.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/tables/schema_sql.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

// Not in an unnamed namespace: their comparisons are declared, as those of the schema.
namespace tables_test {

using sml::BigInteger, sml::Strings_T, sml::int32;

struct Inner {
    int32                number{};
    std::list<Strings_T> texts;
    SML_RECORD(Inner, number, texts);
};

struct Fields {
    std::optional<Inner>                inner;
    std::optional<std::optional<int32>> twice;
    std::optional<std::set<int32>>      numbers;
    int32                               result_set{};
    BigInteger                          big;
    double                              real{};
    SML_RECORD(Fields, inner, twice, numbers, result_set, big, real);
};

struct Chain {
    int32            number{};
    std::list<Chain> more;
    SML_RECORD(Chain, number, more);
};

}  // namespace tables_test

namespace {

using namespace sml;
using namespace sml::tables;
using namespace tables_test;

std::vector<std::string> names_of(Table const& table) {
    std::vector<std::string> names;
    for (Column const& column : table.columns) names.push_back(column.name);
    return names;
}

template <class T>
Schema schema_of_type() {
    static inspect::Root const root{"Made_for_a_test", inspect::describe<T>()};
    return schema_of(root);
}

TEST(Tables, OfAResultSetHaveTheNamesThatPeopleAskBy) {
    Schema const schema =
        schema_of(*inspect::find_root("Base_Gui_Internal_Form_Datas_Aggregated_Results_T"));
    for (char const* const name :
         {"root", "checks", "checks__classifications", "checks__failure__steps", "events", "infos",
          "check_data", "blocks", "functions"})
        EXPECT_NE(schema.find(name), nullptr) << name;
    EXPECT_EQ(schema.find("Checks"), schema.find("checks"));
    EXPECT_EQ(schema.find("checks")->path, "application_results.checks");
    Column const* const category = schema.find("checks")->find("category_args");
    ASSERT_NE(category, nullptr);
    EXPECT_EQ(category->storage, Storage::text);
}

TEST(Tables, OfEveryRootHaveEachNameOnce) {
    for (inspect::Root const& root : inspect::roots()) {
        Schema const          schema = schema_of(root);
        std::set<std::string> tables;
        for (Table const& table : schema.tables) {
            EXPECT_TRUE(tables.insert(table.name).second) << root.stem << ' ' << table.name;
            auto names = names_of(table);
            std::ranges::sort(names);
            EXPECT_EQ(std::ranges::adjacent_find(names), names.end()) << table.name;
        }
    }
}

TEST(Tables, OfAPlainNumberAreTheRootAlone) {
    Schema const schema = schema_of_type<std::int64_t>();
    ASSERT_EQ(schema.tables.size(), 1u);
    EXPECT_EQ(names_of(schema.tables[0]), (std::vector<std::string>{"result_set", "value"}));
}

TEST(Tables, NameWhatHasNoName) {
    Schema const schema =
        schema_of_type<std::map<std::pair<Strings_T, int32>, std::list<std::pair<bool, uint64>>>>();
    ASSERT_EQ(schema.tables.size(), 3u);
    EXPECT_EQ(names_of(*schema.find("value")),
              (std::vector<std::string>{"result_set", "row", "key0", "key1"}));
    EXPECT_EQ(names_of(*schema.find("value__value")),
              (std::vector<std::string>{"result_set", "row", "parent", "position", "p0", "p1"}));
    EXPECT_EQ(schema.find("value__value")->find("p1")->storage, Storage::text);
}

TEST(Tables, TellAnAbsentRecordFromOneThatIsThere) {
    Schema const schema = schema_of_type<Fields>();
    EXPECT_EQ(names_of(schema.tables[0]),
              (std::vector<std::string>{"result_set", "inner", "inner__number", "twice",
                                        "twice__value", "numbers", "result_set_", "big",
                                        "big_order", "real", "real_double"}));
    EXPECT_NE(schema.find("texts"), nullptr);
    EXPECT_NE(schema.find("numbers"), nullptr);
}

TEST(Tables, OfATypeThatContainsItselfEnd) {
    Schema const schema = schema_of_type<Chain>();
    ASSERT_EQ(schema.tables.size(), 2u);
    Column const* const more = schema.find("more")->find("value");
    ASSERT_NE(more, nullptr);
    EXPECT_EQ(more->form, Form::json);
}

TEST(CreateTable, HasTheTypesOfTheDialect) {
    std::vector<Column> const columns = {{"result_set", Storage::integer, Form::result_set},
                                         {"a\"b", Storage::text, Form::order}};
    EXPECT_EQ(create_table("t", columns),
              "CREATE TABLE \"t\" (\n  \"result_set\" INTEGER NOT NULL,\n  \"a\"\"b\" TEXT\n)");
    EXPECT_EQ(create_table("t", columns, Dialect::clickhouse),
              "CREATE TABLE \"t\" (\n  \"result_set\" Int64,\n  \"a\"\"b\" Nullable(String)\n)");
    EXPECT_EQ(create_table("t", columns, Dialect::postgresql),
              "CREATE TABLE \"t\" (\n  \"result_set\" bigint NOT NULL,\n"
              "  \"a\"\"b\" text COLLATE \"C\"\n)");
}

}  // namespace

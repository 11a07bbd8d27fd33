#include <sml/tables/sqlite/virtual_table.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace sml::tables;

/// What a source was asked for.
struct Asked {
    std::map<std::int64_t, int> scans;   // by result set
    std::set<std::size_t>       cells;   // columns
    std::vector<bool>           wanted;  // of the last scan
};

/// Two result sets of 100 rows: (result_set, row, tens, text, c4, c5, ...).
class Numbers : public Source {
public:
    static constexpr std::int64_t count = 100;

    Numbers(std::string name, Asked& asked, std::size_t columns = 4)
        : asked_(asked), name_(std::move(name)) {
        columns_ = {{"result_set", Storage::integer, Form::result_set},
                    {"row", Storage::integer, Form::row},
                    {"tens", Storage::integer, Form::integer},
                    {"text", Storage::text, Form::text}};
        while (columns_.size() < columns)
            columns_.push_back(
                {"c" + std::to_string(columns_.size()), Storage::integer, Form::integer});
    }

    std::string const&         name() const override { return name_; }
    std::vector<Column> const& columns() const override { return columns_; }
    std::int64_t               sets() const override { return 2; }
    std::uint64_t              expected_rows() const override { return 2 * count; }

    std::unique_ptr<RowStream> rows(std::int64_t             set,
                                    std::vector<bool> const& is_wanted) const override {
        ++asked_.scans[set];
        asked_.wanted = is_wanted;
        return std::make_unique<Stream>(asked_);
    }

private:
    class Stream : public RowStream {
    public:
        explicit Stream(Asked& asked) : asked_(asked) {}

        bool next() override { return ++row_ < count; }
        Cell cell(std::size_t column) override {
            EXPECT_NE(column, 0u) << "a source does not know the number of the result set";
            asked_.cells.insert(column);
            if (column == 1) return row_;
            if (column == 2) return row_ / 10;
            if (column != 3) return static_cast<std::int64_t>(column) * 1000 + row_;
            if (row_ % 10 == 9) return {};
            text_ = "t" + std::to_string(row_);
            return Text{text_, false};
        }
        std::int64_t row() const override { return row_; }

    private:
        Asked&       asked_;
        std::int64_t row_ = -1;
        std::string  text_;
    };

    Asked&              asked_;
    std::string         name_;
    std::vector<Column> columns_;
};

class VirtualTableTest : public testing::Test {
protected:
    VirtualTableTest() {
        add_virtual_table(connection_, shared_, std::make_unique<Numbers>("a", a_));
        add_virtual_table(connection_, shared_, std::make_unique<Numbers>("b", b_));
        add_virtual_table(connection_, shared_, std::make_unique<Numbers>("wide", wide_, 70));
    }

    /// The rows of a statement, with `|` between cells and a blank between rows.
    std::string rows(std::string const& sql) {
        shared_.store.start_statement();
        a_ = b_ = wide_ = {};
        Statement   statement(connection_.get(), sql);
        std::string text;
        while (statement.step()) {
            if (!text.empty()) text += ' ';
            for (int i = 0; i < sqlite3_column_count(statement.get()); ++i) {
                if (i > 0) text += '|';
                text += statement.text(i);
            }
        }
        return text;
    }

    std::atomic<bool> is_interrupted_ = false;
    VirtualTables     shared_{is_interrupted_};
    Asked             a_, b_, wide_;
    Connection        connection_{":memory:"};
};

TEST_F(VirtualTableTest, GivesRowsOfAllResultSets) {
    EXPECT_EQ(rows("SELECT result_set, count(*), count(text), sum(row) FROM a GROUP BY 1"),
              "1|100|90|4950 2|100|90|4950");
}

TEST_F(VirtualTableTest, AsksOnlyForColumnsThatAreUsed) {
    EXPECT_EQ(rows("SELECT max(tens) FROM a"), "9");
    EXPECT_EQ(a_.wanted, (std::vector<bool>{false, false, true, false}));
    EXPECT_EQ(a_.cells, (std::set<std::size_t>{2}));
}

TEST_F(VirtualTableTest, AsksForAllColumnsFrom63OnIfOneIsUsed) {
    EXPECT_EQ(rows("SELECT c69, c4 FROM wide WHERE row = 5 AND result_set = 1"), "69005|4005");
    EXPECT_TRUE(wide_.wanted[63]);
    EXPECT_FALSE(wide_.wanted[62]);
    EXPECT_EQ(rows("SELECT c62 FROM wide WHERE row = 5 AND result_set = 1"), "62005");
    EXPECT_FALSE(wide_.wanted[63]);
}

TEST_F(VirtualTableTest, GivesWideTablesWhenTheyAreStored) {
    EXPECT_EQ(rows("SELECT sum(y.c69), sum(y.c63) FROM a AS x JOIN wide AS y"
                   " ON y.result_set = x.result_set AND y.c65 = 65000 + x.row"),
              "13809900|12609900");
    EXPECT_LE(wide_.scans[1], 2);
}

TEST_F(VirtualTableTest, ScansOnlyTheResultSetsThatAreMeant) {
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = 2"), "100");
    EXPECT_EQ(a_.scans, (std::map<std::int64_t, int>{{2, 1}}));
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set IN (2, 7)"), "100");
    EXPECT_EQ(a_.scans, (std::map<std::int64_t, int>{{2, 1}}));
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = 1.0"), "100");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = '1'"), "100");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = 1.5"), "0");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = NULL"), "0");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE result_set = 'x'"), "0");
    EXPECT_TRUE(a_.scans.empty());
}

TEST_F(VirtualTableTest, ReadsASourceTwiceAtMostInAJoin) {
    EXPECT_EQ(rows("SELECT count(*), sum(y.row) FROM a AS x JOIN b AS y"
                   " ON y.result_set = x.result_set AND y.row = x.row"),
              "200|9900");
    EXPECT_LE(a_.scans[1] + a_.scans[2], 4);
    EXPECT_LE(b_.scans[1] + b_.scans[2], 4);
}

TEST_F(VirtualTableTest, KnowsTheResultSetOfStoredRows) {
    EXPECT_EQ(
        rows("SELECT max(y.result_set), min(y.result_set), max(y.text) FROM a AS x JOIN b AS y"
             " ON y.result_set = x.result_set AND y.row = x.row"),
        "2|1|t98");
}

TEST_F(VirtualTableTest, ReadsASourceTwiceAtMostWithoutAKey) {
    EXPECT_EQ(rows("SELECT count(*) FROM a AS x CROSS JOIN b AS y WHERE x.tens + y.tens = 18"),
              "400");
    EXPECT_LE(b_.scans[1], 2);
}

TEST_F(VirtualTableTest, ReadsASourceTwiceAtMostInASubselect) {
    EXPECT_EQ(rows("SELECT sum((SELECT count(*) FROM b WHERE b.result_set = a.result_set"
                   " AND b.text = a.text)) FROM a"),
              "180");
    EXPECT_LE(b_.scans[1], 2);
}

TEST_F(VirtualTableTest, StoresRowsForTheNextStatement) {
    char const* const join = "SELECT count(*) FROM a AS x JOIN b AS y USING (result_set, row)";
    EXPECT_EQ(rows(join), "200");
    EXPECT_EQ(rows(join), "200");
    EXPECT_EQ(a_.scans.size() + b_.scans.size(), 2u);  // only the outer table is read
}

TEST_F(VirtualTableTest, ComparesAsOtherTablesDo) {
    connection_.run(
        "CREATE TABLE real AS SELECT * FROM a; CREATE TABLE numbers(n, t TEXT);"
        "INSERT INTO numbers VALUES (1, '1'), (2.0, '2.0'), ('3', '03'), (NULL, NULL),"
        "('x', 't1'), (5, 't2');");
    for (char const* const condition : {"r.row = n", "r.row = t", "r.text = t", "r.text = n",
                                        "r.text = n + 0", "r.tens = n", "r.text = 't' || n"})
        EXPECT_EQ(rows(std::string("SELECT n, t, r.result_set, r.row FROM numbers LEFT JOIN a AS r"
                                   " ON ") +
                       condition + " ORDER BY 1, 2, 3, 4"),
                  rows(std::string("SELECT n, t, r.result_set, r.row FROM numbers LEFT JOIN real"
                                   " AS r ON ") +
                       condition + " ORDER BY 1, 2, 3, 4"))
            << condition;
}

TEST_F(VirtualTableTest, LooksUpByOrAndIn) {
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE row = 3 OR text = 't5'"), "4");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE text IN ('t1', 't2', 'none') AND tens = 0"), "4");
    EXPECT_EQ(rows("SELECT count(*) FROM a WHERE text IN (SELECT text FROM b WHERE tens = 1)"),
              "18");
}

TEST_F(VirtualTableTest, GoesOnAfterAnInterruption) {
    char const* const join = "SELECT count(*) FROM a AS x JOIN b AS y USING (result_set, row)";
    is_interrupted_ = true;
    EXPECT_THROW(rows(join), SqlError);
    is_interrupted_ = false;
    EXPECT_EQ(rows(join), "200");
}

/// Fails in the second scan of a result set, when its rows are stored.
class FailsLater : public Numbers {
public:
    using Numbers::Numbers;
    std::unique_ptr<RowStream> rows(std::int64_t             set,
                                    std::vector<bool> const& is_wanted) const override {
        if (scans_++ == 1) throw std::runtime_error("no rows");
        return Numbers::rows(set, is_wanted);
    }

private:
    mutable int scans_ = 0;
};

TEST_F(VirtualTableTest, StoresRowsAnewAfterAFailure) {
    add_virtual_table(connection_, shared_, std::make_unique<FailsLater>("later", a_));
    char const* const join =
        "SELECT count(*) FROM a AS x JOIN later AS y"
        " ON y.result_set = x.result_set AND y.row = x.row";
    EXPECT_THROW(rows(join), SqlError);
    EXPECT_EQ(rows(join), "200");
}

TEST_F(VirtualTableTest, PassesOnWhatReadingThrows) {
    struct Broken : Numbers {
        using Numbers::Numbers;
        std::unique_ptr<RowStream> rows(std::int64_t, std::vector<bool> const&) const override {
            throw std::runtime_error("no rows");
        }
    };
    add_virtual_table(connection_, shared_, std::make_unique<Broken>("broken", a_));
    Statement statement(connection_.get(), "SELECT * FROM broken");
    EXPECT_THROW(statement.step(), SqlError);
    ASSERT_NE(shared_.failure, nullptr);
    EXPECT_THROW(std::rethrow_exception(shared_.failure), std::runtime_error);
}

}  // namespace

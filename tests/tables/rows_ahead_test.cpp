#include <sml/tables/rows_ahead.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using namespace sml::tables;

// Enough for many batches: a batch ends behind some thousand cells.
constexpr std::int64_t many_rows = 100'000;

// Rows of a number and a text that lasts until the next row only.
class Numbers : public RowStream {
public:
    explicit Numbers(std::int64_t rows, std::int64_t failing = -1)
        : rows_(rows), failing_(failing) {}

    bool next() override {
        if (++row_ == failing_) throw std::runtime_error("row " + std::to_string(row_));
        text_ = "text of " + std::to_string(row_);
        return row_ < rows_;
    }
    Cell cell(std::size_t column) override {
        if (column == 1) return row_ * 3;
        return Text{text_, false};
    }
    std::int64_t  row() const override { return row_; }
    std::uint64_t offset() const override { return static_cast<std::uint64_t>(row_) * 5; }

private:
    std::int64_t rows_;
    std::int64_t failing_;
    std::int64_t row_ = -1;
    std::string  text_;
};

constexpr std::size_t columns = 3;  // with that of the result set

void expect_rows_are_the_same(std::int64_t count) {
    auto const rows = rows_ahead(std::make_unique<Numbers>(count), columns);
    Numbers    expected(count);
    for (std::int64_t i = 0; i < count; ++i) {
        ASSERT_TRUE(rows->next());
        ASSERT_TRUE(expected.next());
        ASSERT_EQ(rows->row(), i);
        ASSERT_EQ(rows->offset(), expected.offset());
        ASSERT_EQ(std::get<std::int64_t>(rows->cell(1)), i * 3);
        ASSERT_EQ(std::get<Text>(rows->cell(2)).text, std::get<Text>(expected.cell(2)).text);
    }
    EXPECT_FALSE(rows->next());
}

TEST(RowsAhead, AreTheSameRows) {
    for (std::int64_t const count :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{4096}, many_rows})
        expect_rows_are_the_same(count);
}

TEST(RowsAhead, MayBeLeftBeforeTheEnd) {
    auto const rows = rows_ahead(std::make_unique<Numbers>(many_rows), columns);
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(rows->next());
}

TEST(RowsAhead, ThrowWhatReadingThemThrows) {
    constexpr std::int64_t failing = 50'000;
    auto const   rows = rows_ahead(std::make_unique<Numbers>(many_rows, failing), columns);
    std::int64_t taken = 0;
    try {
        while (rows->next()) ++taken;
        FAIL() << "nothing was thrown";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "row 50000");
    }
    EXPECT_GT(taken, 0);
    EXPECT_LE(taken, failing);
}

TEST(RowsAhead, ThrowWhatReadingTheFirstOfThemThrows) {
    auto const rows = rows_ahead(std::make_unique<Numbers>(many_rows, 0), columns);
    EXPECT_THROW(rows->next(), std::runtime_error);
}

}  // namespace

#include <sml/tables/rows_ahead.hpp>

#include <array>
#include <cstdint>
#include <future>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sml::tables {

namespace {

/// Some rows, one behind the other.
struct Batch {
    static constexpr std::size_t full_cells = 8192;
    static constexpr std::size_t full_texts = std::size_t{1} << 18;  // bytes

    struct Copied {
        std::size_t cell;
        std::size_t start;
        std::size_t size;
    };

    std::vector<Cell>          cells;
    std::string                texts;   // those that do not last
    std::vector<Copied>        copied;  // where the cells of these texts are
    std::vector<std::uint64_t> offsets;
    std::vector<std::int64_t>  numbers;

    void clear() {
        cells.clear();
        texts.clear();
        copied.clear();
        offsets.clear();
        numbers.clear();
    }

    bool is_full() const { return cells.size() >= full_cells || texts.size() >= full_texts; }

    void add(Cell cell) {
        if (auto const* const text = std::get_if<Text>(&cell); text != nullptr && !text->lasts) {
            copied.push_back({cells.size(), texts.size(), text->text.size()});
            texts += text->text;
        }
        cells.push_back(std::move(cell));
    }

    /// Must be called after the last row: until then the texts may move.
    void complete() {
        std::string_view const all = texts;
        for (Copied const& text : copied)
            cells[text.cell] = Text{all.substr(text.start, text.size), true};
    }
};

class RowsAhead : public RowStream {
public:
    RowsAhead(std::unique_ptr<RowStream> rows, std::size_t columns)
        : rows_(std::move(rows)), columns_(columns) {}

    bool next() override {
        if (++at_ < present().numbers.size()) return true;
        if (is_begun_ && !present().is_full()) return false;
        if (is_begun_)
            reading_.get();
        else
            read(following());
        is_begun_ = true;
        present_ = 1 - present_;
        at_ = 0;
        if (present().is_full())
            reading_ = std::async(std::launch::async, [this] { read(following()); });
        return !present().numbers.empty();
    }

    Cell cell(std::size_t column) override {
        return present().cells[at_ * (columns_ - 1) + column - 1];
    }
    std::int64_t  row() const override { return present().numbers[at_]; }
    std::uint64_t offset() const override { return present().offsets[at_]; }

private:
    Batch&       following() { return batches_[1 - present_]; }
    Batch&       present() { return batches_[present_]; }
    Batch const& present() const { return batches_[present_]; }

    void read(Batch& batch) {
        batch.clear();
        while (!batch.is_full() && rows_->next()) {
            for (std::size_t i = 1; i < columns_; ++i) batch.add(rows_->cell(i));
            batch.numbers.push_back(rows_->row());
            batch.offsets.push_back(rows_->offset());
        }
        batch.complete();
    }

    std::unique_ptr<RowStream> rows_;
    std::size_t                columns_;
    std::array<Batch, 2>       batches_;
    std::size_t                present_ = 0;  // the one that rows are taken from
    std::size_t                at_ = 0;
    bool                       is_begun_ = false;
    std::future<void>          reading_;  // its destructor waits for the thread
};

}  // namespace

std::unique_ptr<RowStream> rows_ahead(std::unique_ptr<RowStream> rows, std::size_t columns) {
    return std::make_unique<RowsAhead>(std::move(rows), columns);
}

}  // namespace sml::tables

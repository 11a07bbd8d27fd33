#include <sml/tables/rows_ahead.hpp>

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
    static constexpr std::size_t full_cells = 16384;
    static constexpr std::size_t full_texts = std::size_t{1} << 20;  // bytes

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
        if (batch_ != nullptr && ++at_ < batch_->numbers.size()) return true;
        if (batch_ == nullptr)
            batch_ = read();
        else if (!batch_->is_full())
            return false;
        else
            batch_ = next_.get();
        at_ = 0;
        if (batch_->is_full()) next_ = std::async(std::launch::async, [this] { return read(); });
        return !batch_->numbers.empty();
    }

    Cell cell(std::size_t column) override {
        return batch_->cells[at_ * (columns_ - 1) + column - 1];
    }
    std::int64_t  row() const override { return batch_->numbers[at_]; }
    std::uint64_t offset() const override { return batch_->offsets[at_]; }

private:
    std::unique_ptr<Batch> read() {
        auto batch = std::make_unique<Batch>();
        while (!batch->is_full() && rows_->next()) {
            for (std::size_t i = 1; i < columns_; ++i) batch->add(rows_->cell(i));
            batch->numbers.push_back(rows_->row());
            batch->offsets.push_back(rows_->offset());
        }
        batch->complete();
        return batch;
    }

    std::unique_ptr<RowStream>          rows_;
    std::size_t                         columns_;
    std::unique_ptr<Batch>              batch_;
    std::size_t                         at_ = 0;
    std::future<std::unique_ptr<Batch>> next_;  // its destructor waits for the thread
};

}  // namespace

std::unique_ptr<RowStream> rows_ahead(std::unique_ptr<RowStream> rows, std::size_t columns) {
    return std::make_unique<RowsAhead>(std::move(rows), columns);
}

}  // namespace sml::tables

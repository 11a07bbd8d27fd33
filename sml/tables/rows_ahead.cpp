#include <sml/tables/rows_ahead.hpp>

#include <sml/tables/bounded_queue.hpp>

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <thread>
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

    ~RowsAhead() override {
        empty_.stop();
        read_.stop();
        if (reader_.joinable()) reader_.join();
    }

    bool next() override {
        if (present_ == nullptr) {
            begin();
        } else if (++at_ >= present_->numbers.size()) {
            if (!present_->is_full()) return false;
            empty_.put(std::move(present_));
            present_ = std::move(read_.take().value());  // a full one is never the last
            at_ = 0;
        }
        return at_ < present_->numbers.size();
    }

    Cell cell(std::size_t column) override {
        return present_->cells[at_ * (columns_ - 1) + column - 1];
    }
    std::int64_t  row() const override { return present_->numbers[at_]; }
    std::uint64_t offset() const override { return present_->offsets[at_]; }

private:
    using Batches = BoundedQueue<std::unique_ptr<Batch>>;

    static constexpr std::size_t batches = 4;

    // A table that fits into one batch needs no thread.
    void begin() {
        present_ = std::make_unique<Batch>();
        read(*present_);
        if (!present_->is_full()) return;
        for (std::size_t i = 1; i < batches; ++i) empty_.put(std::make_unique<Batch>());
        reader_ = std::thread([this] { read_all(); });
    }

    void read_all() {
        try {
            bool is_last = false;
            while (!is_last) {
                auto batch = empty_.take();
                if (!batch) return;
                read(**batch);
                is_last = !(*batch)->is_full();
                if (!read_.put(std::move(*batch))) return;
            }
        } catch (...) {
            read_.end(std::current_exception());
        }
    }

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
    std::unique_ptr<Batch>     present_;  // the one that rows are taken from
    std::size_t                at_ = 0;
    Batches                    read_{batches};
    Batches                    empty_{batches};  // to read into
    std::thread                reader_;
};

}  // namespace

std::unique_ptr<RowStream> rows_ahead(std::unique_ptr<RowStream> rows, std::size_t columns) {
    return std::make_unique<RowsAhead>(std::move(rows), columns);
}

}  // namespace sml::tables

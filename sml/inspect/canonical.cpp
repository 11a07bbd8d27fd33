#include <sml/inspect/canonical.hpp>

#include <sml/inspect/sha256.hpp>
#include <sml/inspect/walk/walker.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory_resource>
#include <stdexcept>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::inspect {

namespace {

using Texts = std::pmr::vector<std::string_view>;

constexpr std::size_t rank_size = 4;

/// By where the text stands: encodable bytes tell a text once.
using Ranks = std::pmr::unordered_map<std::uint64_t, std::uint32_t, SeededHash>;

std::uint64_t place_of(std::string_view text) {
    return reinterpret_cast<std::uintptr_t>(text.data());
}

/// Collects the distinct texts.
class TextCollector : public SilentVisitor {
public:
    explicit TextCollector(std::pmr::memory_resource* memory) : texts(memory), ranks_(memory) {}

    void string(std::string_view text) {
        if (ranks_.emplace(place_of(text), 0).second) texts.push_back(text);
    }

    Texts texts;

    /// Sorts the texts and gives their places.
    Ranks take_ranks() {
        std::ranges::sort(texts);
        for (std::uint32_t rank = 0; rank < texts.size(); ++rank)
            ranks_[place_of(texts[rank])] = rank;
        return std::move(ranks_);
    }

private:
    Ranks ranks_;
};

/// Rewrites the bytes so that comparing them as bytes compares strings by text: a string is the
/// rank of its text, highest byte first. Entries stand in their canonical order.
class Ranker : public SilentVisitor {
public:
    Ranker(Ranks ranks, std::pmr::memory_resource* memory)
        : bytes(memory), ranks_(std::move(ranks)), entries_(memory), first_entry_(memory) {}

    std::pmr::string bytes;

    void integer(Type const& type, std::int64_t value) {
        if (type.kind == Kind::int64)
            word(value);
        else
            word(static_cast<std::int32_t>(value));
    }
    void natural(Type const& type, std::uint64_t value) {
        if (type.kind == Kind::uint64)
            word(value);
        else
            word(static_cast<std::uint32_t>(value));
    }
    void flag(bool value) { bytes += value ? 'T' : 'F'; }
    void number(double value) { block(written_double(value)); }
    void big_integer(std::string_view value) {
        word(static_cast<std::int32_t>(value.size() + zeros_behind(value)));
        (bytes += value).append(zeros_behind(value), '\0');
    }
    void ieee_float(std::string_view value, std::int32_t width) {
        block(value);
        word(width);
    }
    void string(std::string_view text) {
        std::uint32_t const rank = ranks_.at(place_of(text));
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(rank >> shift);
    }
    void text(std::string_view text) { block(text); }
    void enumeration(Type const&, std::int32_t value) { word(value); }
    void absent(Type const&) { flag(false); }
    void present(Type const&) { flag(true); }
    void begin_variant(Type const&, std::int32_t tag, Arm const*) { word(tag); }
    void reference(Type const&, std::int32_t tag, std::uint64_t value) {
        word(tag);
        word(value);
    }

    void begin(Type const& type, std::uint64_t count) {
        if (!is_counted(type)) return;
        word(static_cast<std::uint32_t>(count));
        if (is_sorted(type)) first_entry_.push_back(entries_.size());
    }
    void part(Type const& type, std::uint64_t) {
        if (is_sorted(type)) entries_.push_back({bytes.size(), bytes.size()});
    }
    void entry_value(Type const&) { entries_.back().key_end = bytes.size(); }
    void end(Type const& type) {
        if (is_sorted(type)) sort_entries();
    }

private:
    struct Entry {
        std::size_t start;
        std::size_t key_end;  // the start where the entry is a key alone
        std::size_t end = 0;
    };

    static bool is_sorted(Type const& type) {
        return type.kind == Kind::set || type.kind == Kind::map;
    }
    static bool is_counted(Type const& type) { return is_sorted(type) || type.kind == Kind::list; }

    template <class Word>
    void word(Word word) {
        bytes.append(reinterpret_cast<char const*>(&word), sizeof word);
    }
    void block(std::string_view text) {
        word(static_cast<std::int32_t>(text.size()));
        bytes += text;
    }

    void sort_entries() {
        std::size_t const first = first_entry_.back();
        first_entry_.pop_back();
        if (first == entries_.size()) return;
        auto const begin = entries_.begin() + static_cast<std::ptrdiff_t>(first);
        for (auto entry = begin; entry != entries_.end(); ++entry)
            entry->end = entry + 1 == entries_.end() ? bytes.size() : (entry + 1)->start;
        std::size_t const start = begin->start;
        std::sort(begin, entries_.end(), [&](Entry const& a, Entry const& b) {
            int const by_key = piece(a.start, a.key_end).compare(piece(b.start, b.key_end));
            return by_key != 0 ? by_key < 0 : piece(a.key_end, a.end) < piece(b.key_end, b.end);
        });
        std::pmr::string sorted(bytes.get_allocator());
        sorted.reserve(bytes.size() - start);
        for (auto entry = begin; entry != entries_.end(); ++entry)
            sorted += piece(entry->start, entry->end);
        bytes.replace(start, std::string::npos, sorted);
        entries_.resize(first);
    }

    std::string_view piece(std::size_t start, std::size_t end) const {
        return std::string_view(bytes).substr(start, end - start);
    }

    Ranks                         ranks_;
    std::pmr::vector<Entry>       entries_;      // of the open sets and maps, the innermost last
    std::pmr::vector<std::size_t> first_entry_;  // of each of them
};

/// Walks ranked bytes and writes them with their strings told, numbered anew.
class Teller {
public:
    Teller(std::string_view ranked, Texts const& texts, std::function<void(std::string_view)> write,
           std::function<void(std::size_t)> progress)
        : ranked_(ranked),
          texts_(texts),
          ids_(texts.size(), 0, texts.get_allocator()),
          write_(std::move(write)),
          progress_(std::move(progress)) {}

    void run(Type const& root) {
        value(root);
        write_(out_);
    }

private:
    void value(Type const& type) {
        switch (type.kind) {
            case Kind::int32:
            case Kind::uint32:
            case Kind::enumeration: copy(4); return;
            case Kind::int64:
            case Kind::uint64: copy(8); return;
            case Kind::reference: copy(12); return;
            case Kind::flag: copy(1); return;
            case Kind::flags: copy(type.flag_count); return;
            case Kind::number:
            case Kind::big_integer:
            case Kind::text: copy_block(); return;
            case Kind::ieee_float:
                copy_block();
                copy(4);
                return;
            case Kind::string: string(); return;
            case Kind::optional:
                if (copy(1) == "T") value(*type.element);
                return;
            case Kind::boxed: value(*type.element); return;
            case Kind::variant: variant(type); return;
            case Kind::list:
            case Kind::set:
            case Kind::map: container(type); return;
            default:
                for (Part const& part : type.parts) value(*part.type);
                return;
        }
    }

    void variant(Type const& type) {
        Arm const* const arm = type.serving(word<std::int32_t>(copy(4)));
        if (arm != nullptr && arm->payload != nullptr) value(*arm->payload);
    }

    void container(Type const& type) {
        for (auto left = word<std::uint32_t>(copy(4)); left > 0; --left) {
            if (type.key != nullptr) value(*type.key);
            value(*type.element);
            progress_(at_);
        }
    }

    void string() {
        std::uint32_t rank = 0;
        for (char const byte : take(rank_size)) rank = rank << 8 | static_cast<unsigned char>(byte);
        std::int32_t& id = ids_[rank];
        if (id > 0) return put_word(id);
        id = ++told_;
        put_word(-id);
        put_word(static_cast<std::int32_t>(texts_[rank].size()));
        put(texts_[rank]);
    }

    void copy_block() { copy(static_cast<std::size_t>(word<std::int32_t>(copy(4)))); }

    std::string_view copy(std::size_t size) {
        std::string_view const bytes = take(size);
        put(bytes);
        return bytes;
    }

    std::string_view take(std::size_t size) {
        at_ += size;
        return ranked_.substr(at_ - size, size);
    }

    template <class Word>
    static Word word(std::string_view bytes) {
        Word word;
        std::memcpy(&word, bytes.data(), sizeof word);
        return word;
    }

    void put_word(std::int32_t word) { put({reinterpret_cast<char const*>(&word), sizeof word}); }

    void put(std::string_view bytes) {
        constexpr std::size_t written_at = std::size_t{1} << 16;
        if (bytes.size() < written_at) out_ += bytes;
        if (out_.size() < written_at && bytes.size() < written_at) return;
        write_(out_);
        out_.clear();
        if (bytes.size() >= written_at) write_(bytes);
    }

    std::string_view                      ranked_;
    Texts const&                          texts_;
    std::pmr::vector<std::int32_t>        ids_;  // by rank; 0: not told yet
    std::int32_t                          told_ = 0;
    std::size_t                           at_ = 0;
    std::string                           out_;
    std::function<void(std::string_view)> write_;
    std::function<void(std::size_t)>      progress_;  // told how many ranked bytes are done
};

void canonical(Root const& root, std::string_view bytes, CanonOptions const& options,
               std::function<void(std::string_view)> write) {
    Budget        budget(options.limits.own_memory);
    TextCollector collector(&budget);
    Walk          first(bytes, options, budget);
    if (!Walker(first, collector).run(*root.type))
        throw std::invalid_argument("unsafe bytes have no canonical form");
    Ranker ranker(collector.take_ranks(), &budget);
    Walk   second(bytes, options, budget);
    Walker(second, ranker).run(*root.type);
    double const share =
        static_cast<double>(bytes.size()) / static_cast<double>(ranker.bytes.size());
    Teller(ranker.bytes, collector.texts, std::move(write), [&](std::size_t done) {
        if (options.progress != nullptr)
            options.progress->store(static_cast<std::uint64_t>(static_cast<double>(done) * share),
                                    std::memory_order_relaxed);
    }).run(*root.type);
}

}  // namespace

void write_canonical(Root const& root, std::string_view bytes, std::ostream& out,
                     CanonOptions const& options) {
    canonical(root, bytes, options, [&](std::string_view piece) {
        out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    });
}

std::string digest(Root const& root, std::string_view bytes, CanonOptions const& options) {
    Sha256 sum;
    canonical(root, bytes, options, [&](std::string_view piece) { sum.add(piece); });
    return sum.hexadecimal();
}

}  // namespace sml::inspect

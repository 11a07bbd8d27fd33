#include <sml/inspect/canonical.hpp>

#include <sml/inspect/contents.hpp>
#include <sml/inspect/sha256.hpp>
#include <sml/inspect/walk/walker.hpp>
#include <sml/inspect/wire/piece_output.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>
#include <sml/inspect/wire/writer.hpp>

#include <algorithm>
#include <cstdint>
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

/// The ranks of texts by the address of the text: encodable bytes define each text once.
using Ranks = std::pmr::unordered_map<std::uint64_t, std::uint32_t, SeededHash>;

std::uint64_t place_of(std::string_view text) {
    return reinterpret_cast<std::uintptr_t>(text.data());
}

/// The distinct texts of a value.
class TextCollector : public BaseVisitor {
public:
    explicit TextCollector(std::pmr::memory_resource* memory) : texts(memory), ranks_(memory) {}

    void string(std::string_view text) {
        if (ranks_.emplace(place_of(text), 0).second) texts.push_back(text);
    }

    Texts texts;

    /// Sorts the texts and returns their ranks, which are their indices in that order.
    Ranks take_ranks() {
        std::ranges::sort(texts);
        for (std::uint32_t rank = 0; rank < texts.size(); ++rank)
            ranks_[place_of(texts[rank])] = rank;
        return std::move(ranks_);
    }

private:
    Ranks ranks_;
};

/// The value in a form in which comparing bytes compares strings by text: a string is the rank of
/// its text, highest byte first. All else is as a writer makes it. Elements of sets and entries of
/// maps are in canonical order.
class RankedForm : public BaseVisitor {
public:
    RankedForm(Ranks ranks, std::pmr::memory_resource* memory)
        : bytes(memory), ranks_(std::move(ranks)), entries_(memory), first_entry_(memory) {}

    std::pmr::string bytes;

    void integer(Type const& type, std::int64_t value) {
        natural(type, static_cast<std::uint64_t>(value));
    }
    void natural(Type const& type, std::uint64_t value) {
        if (type.least_size == sizeof value)
            writer_.word(value);
        else
            writer_.word(static_cast<std::uint32_t>(value));
    }
    void flag(bool value) { writer_.flag(value); }
    void number(double value) { writer_.block(written_double(value)); }
    void big_integer(std::string_view value) { writer_.big_integer(value); }
    void ieee_float(std::string_view value, std::int32_t width) {
        writer_.ieee_float(value, width);
    }
    void string(std::string_view text) {
        std::uint32_t const rank = ranks_.at(place_of(text));
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(rank >> shift);
    }
    void text(std::string_view text) { writer_.block(text); }
    void enumeration(Type const&, std::int32_t value) { writer_.word(value); }
    void absent(Type const&) { writer_.flag(false); }
    void present(Type const&) { writer_.flag(true); }
    void begin_variant(Type const&, std::int32_t tag, Arm const*) { writer_.word(tag); }
    void reference(Type const&, std::int32_t tag, std::uint64_t value) {
        writer_.reference(tag, value);
    }

    void begin(Type const& type, std::uint64_t count) {
        if (!type.is_container()) return;
        writer_.word(static_cast<std::uint32_t>(count));
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
        std::size_t key_end;  // the start if the entry has no value
        std::size_t end = 0;
    };

    static bool is_sorted(Type const& type) {
        return type.kind == Kind::set || type.kind == Kind::map;
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

    Writer<std::pmr::string>      writer_{bytes};
    Ranks                         ranks_;
    std::pmr::vector<Entry>       entries_;      // of the open sets and maps, the innermost last
    std::pmr::vector<std::size_t> first_entry_;  // of each of them
};

/// Takes the ranked form of a value and writes the canonical bytes: each string is defined where it
/// occurs first, with the next id.
class CanonicalWriter {
public:
    CanonicalWriter(WalkedBytes& ranked, Texts const& texts, PieceOutput& out)
        : ranked_(ranked),
          texts_(texts),
          ids_(texts.size(), 0, texts.get_allocator()),
          out_(out),
          writer_(out) {}

    // For `take_value`.

    void bytes(std::size_t size) { out_.append(ranked_.take(size)); }

    template <class Word>
    Word word() {
        auto const word = ranked_.take_word<Word>();
        writer_.word(word);
        return word;
    }
    bool flag() {
        bool const is_true = ranked_.take_flag();
        writer_.flag(is_true);
        return is_true;
    }
    void block() { writer_.block(ranked_.take_block()); }

    void string() {
        std::uint32_t rank = 0;
        for (char const byte : ranked_.take(rank_size))
            rank = rank << 8 | static_cast<unsigned char>(byte);
        writer_.string(texts_[rank], ids_[rank]);
    }
    bool container(Type const&) { return false; }

private:
    WalkedBytes&                   ranked_;
    Texts const&                   texts_;
    std::pmr::vector<std::int32_t> ids_;  // by rank; 0: not written yet
    PieceOutput&                   out_;
    Writer<PieceOutput>            writer_;
};

using Write = std::function<void(std::string_view)>;

/// `collector` has the texts of the bytes, which are safe.
void canonical(Root const& root, std::string_view bytes, TextCollector& collector,
               CanonOptions const& options, Budget& budget, Write const& write) {
    RankedForm ranked(collector.take_ranks(), &budget);
    ranked.bytes.reserve(bytes.size());  // where enough: strings are written shorter
    Walk walk(bytes, options, budget);
    Walker(walk, ranked).run(*root.type);
    double const share =
        static_cast<double>(bytes.size()) / static_cast<double>(ranked.bytes.size());
    WalkedBytes     taken(ranked.bytes);
    PieceOutput     out([&](std::string_view piece) {
        write(piece);
        auto const done = static_cast<double>(taken.offset()) * share;
        if (options.progress != nullptr)
            options.progress->store(static_cast<std::uint64_t>(done), std::memory_order_relaxed);
    });
    CanonicalWriter writer(taken, collector.texts, out);
    take_value(*root.type, writer);
    out.flush();
}

void canonical(Root const& root, std::string_view bytes, CanonOptions const& options,
               Write const& write) {
    Budget        budget(options.limits.own_memory);
    TextCollector collector(&budget);
    Walk          walk(bytes, options, budget);
    if (!Walker(walk, collector).run(*root.type))
        throw std::invalid_argument("unsafe bytes have no canonical form");
    canonical(root, bytes, collector, options, budget, write);
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

std::string digest(Contents const& contents, CanonOptions const& options) {
    Budget        budget(options.limits.own_memory);
    TextCollector collector(&budget);
    for (std::size_t id = 1; id <= contents.strings(); ++id)
        collector.string(contents.text_of(static_cast<std::int32_t>(id)));
    Sha256 sum;
    canonical(contents.root(), contents.bytes(), collector, options, budget,
              [&](std::string_view piece) { sum.add(piece); });
    return sum.hexadecimal();
}

}  // namespace sml::inspect

#include <sml/inspect/read_over.hpp>

#include <sml/inspect/walk/walker.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>
#include <sml/inspect/wire/writer.hpp>

#include <algorithm>
#include <cstring>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::inspect {

namespace {

/// A visitor that ignores all events: its walk only fills the string table.
class StringsOnly : public BaseVisitor {
public:
    static constexpr bool wants_values = false;
};

/// Numbers the keys at offsets that have been walked, in the order in which they first occur.
class KeyNumbers {
public:
    KeyNumbers(Walk const& walk, Type const& type)
        : walk_(walk), type_(type), known_(&walk.budget) {}

    /// The number of the key at an offset: that of an equal key, or else the next one.
    std::size_t number_of(std::uint64_t offset) {
        std::uint64_t const hash = walk_.keys.hash(type_, offset);
        if (hash == Keys::no_hash) return count_++;
        auto [known, end] = known_.equal_range(hash);
        while (known != end && !walk_.keys.are_equal(type_, known->second.offset, offset)) ++known;
        if (known == end) {
            known_.emplace(hash, Key{offset, count_});
            return count_++;
        }
        // The later key takes the place of the earlier one: else an earlier long number would be
        // parsed again for each equal key.
        known->second.offset = offset;
        return known->second.number;
    }

    /// How many keys are different.
    std::size_t count() const { return count_; }

private:
    struct Key {
        std::uint64_t offset;
        std::size_t   number;
    };

    Walk const&                                      walk_;
    Type const&                                      type_;
    std::pmr::unordered_multimap<std::uint64_t, Key> known_;  // by hash, which is seeded
    std::size_t                                      count_ = 0;
};

/// Writes the value that a reader has after it has read several values of one type, each over the
/// one before.
class ReadOverWriter {
public:
    ReadOverWriter(Walk const& walk, std::string_view bytes)
        : walk_(walk), bytes_(bytes), kept_(&walk.budget), ids_(&walk.budget) {}

    std::pmr::string run(Type const& root) {
        kept_.reserve(bytes_.size());
        WalkedBytes start(bytes_);
        value(root, {&start, 1});
        return std::move(kept_);
    }

private:
    /// The readings of a value: the positions in the bytes from which it is read, at least one, in
    /// the order of reading. Each is moved to the byte after its value.
    using Readings = std::span<WalkedBytes>;

    void value(Type const& type, Readings at) {
        switch (type.kind) {
            case Kind::string: return string(type, at);
            case Kind::big_integer: return big_integer(type, at);
            case Kind::optional: return optional(type, at);
            case Kind::boxed: return value(*type.element, at);
            case Kind::variant: return variant(type, at);
            case Kind::list: return list(type, at);
            case Kind::set: return first_entries(type, at);
            case Kind::map:
                return type.last_wins ? entries_read_over(type, at) : first_entries(type, at);
            case Kind::record:
            case Kind::group:
            case Kind::tuple:
                for (Part const& part : type.parts) value(*part.type, at);
                return;
            default: return last(type, at);
        }
    }

    /// Only the value of the last reading stays.
    void last(Type const& type, Readings at) {
        pass_all_but_last(type, at);
        keep(type, at.back());
    }

    [[gnu::noinline]] void string(Type const& type, Readings at) {
        pass_all_but_last(type, at);
        WalkedBytes&           last = at.back();
        StringWord const       word = last.take_string_word();
        std::uint64_t const    length_offset = last.offset();
        std::string_view const text =
            word.refers() ? walk_.strings.text_of(word.id()) : last.take_block();
        std::uint64_t const place = word.refers() ? walk_.strings.place_of(word.id())
                                                  : walk_.strings.place_at(length_offset);
        // Equal texts have one offset, except for the empty text of an id without definition.
        constexpr std::uint64_t place_of_empty = 0;
        writer_.string(text, ids_[text.empty() ? place_of_empty : place]);
    }

    /// A reading whose text is no number leaves the value as it was.
    [[gnu::noinline]] void big_integer(Type const& type, Readings at) {
        WalkedBytes kept = at.front();
        for (WalkedBytes& reading : at) {
            WalkedBytes const start = reading;
            if (is_integer(reading.take_block())) kept = start;
        }
        keep(type, kept);
    }

    /// Each reading makes a new element, so only the last one stays.
    [[gnu::noinline]] void optional(Type const& type, Readings at) {
        pass_all_but_last(type, at);
        bool const is_there = at.back().take_flag();
        writer_.flag(is_there);
        if (is_there) value(*type.element, at.last(1));
    }

    /// A reading with another tag makes a new payload, one with the same tag reads over the
    /// payload.
    [[gnu::noinline]] void variant(Type const& type, Readings at) {
        auto const  tag = at.back().peek_word<std::int32_t>();
        std::size_t first = at.size() - 1;
        while (first > 0 && at[first - 1].peek_word<std::int32_t>() == tag) --first;
        for (WalkedBytes& reading : at.first(first)) pass(type, reading);
        at = at.subspan(first);
        for (WalkedBytes& reading : at) reading.take(sizeof tag);
        writer_.word(tag);
        if (Arm const* const arm = type.with_payload(tag)) value(*arm->payload, at);
    }

    /// Each reading adds its elements.
    [[gnu::noinline]] void list(Type const& type, Readings at) {
        std::size_t const count_at = put_count();
        std::uint32_t     count = 0;
        for (WalkedBytes& reading : at)
            for (auto left = reading.take_word<std::uint32_t>(); left > 0; --left, ++count)
                value(*type.element, {&reading, 1});
        set_count(count_at, count);
    }

    /// A repeated element is dropped, an entry with a repeated key, too.
    [[gnu::noinline]] void first_entries(Type const& type, Readings at) {
        Type const&       key_type = type.kind == Kind::set ? *type.element : *type.key;
        KeyNumbers        keys(walk_, key_type);
        std::size_t const count_at = put_count();
        for (WalkedBytes& reading : at) {
            for (auto left = reading.take_word<std::uint32_t>(); left > 0; --left) {
                std::size_t const before = keys.count();
                bool const        is_new = keys.number_of(reading.offset()) == before;
                value_or_pass(key_type, reading, is_new);
                if (type.kind == Kind::map) value_or_pass(*type.element, reading, is_new);
            }
        }
        set_count(count_at, keys.count());
    }

    /// The first key stays, and all values of equal keys are read one over another.
    [[gnu::noinline]] void entries_read_over(Type const& type, Readings at) {
        auto const                    entries = entries_by_key(type, at);
        std::pmr::vector<WalkedBytes> values(&walk_.budget);
        std::size_t const             count_at = put_count();
        std::size_t                   count = 0;
        for (auto entry = entries.begin(); entry != entries.end(); ++count) {
            std::size_t const number = entry->number;
            WalkedBytes       key(bytes_, entry->key);
            values.clear();
            for (; entry != entries.end() && entry->number == number; ++entry)
                values.emplace_back(bytes_, entry->value);
            value(*type.key, {&key, 1});
            value(*type.element, values);
        }
        set_count(count_at, count);
    }

    struct Entry {
        std::size_t   number;  // of its key
        std::uint64_t key;
        std::uint64_t value;
    };

    /// The entries of all readings, sorted by the numbers of their keys. Those with equal keys stay
    /// in the order of reading.
    std::pmr::vector<Entry> entries_by_key(Type const& type, Readings at) {
        KeyNumbers              keys(walk_, *type.key);
        std::pmr::vector<Entry> entries(&walk_.budget);
        for (WalkedBytes& reading : at) {
            for (auto left = reading.take_word<std::uint32_t>(); left > 0; --left) {
                std::uint64_t const key = reading.offset();
                pass(*type.key, reading);
                entries.push_back({keys.number_of(key), key, reading.offset()});
                pass(*type.element, reading);
            }
        }
        // The offset of the value keeps the order of reading where numbers are equal.
        std::ranges::sort(entries, {},
                          [](Entry const& entry) { return std::pair(entry.number, entry.value); });
        return entries;
    }

    void value_or_pass(Type const& type, WalkedBytes& at, bool is_kept) {
        if (is_kept)
            value(type, {&at, 1});
        else
            pass(type, at);
    }

    static void pass_all_but_last(Type const& type, Readings at) {
        for (WalkedBytes& reading : at.first(at.size() - 1)) pass(type, reading);
    }

    /// Copies the bytes of a value, which holds no strings.
    void keep(Type const& type, WalkedBytes& at) {
        std::uint64_t const start = at.offset();
        pass(type, at);
        kept_ += bytes_.substr(start, at.offset() - start);
    }

    static void pass(Type const& type, WalkedBytes& at) {
        Skipper passer{at};
        take_value(type, passer);
    }

    /// Leaves room for a count that is known only after its entries. Returns the offset of the
    /// room.
    std::size_t put_count() {
        writer_.word(std::uint32_t{0});
        return kept_.size() - sizeof(std::uint32_t);
    }

    void set_count(std::size_t at, std::size_t count) {
        auto const word = static_cast<std::uint32_t>(count);
        std::memcpy(kept_.data() + at, &word, sizeof word);
    }

    Walk const&      walk_;
    std::string_view bytes_;
    std::pmr::string kept_;

    Writer<std::pmr::string> writer_{kept_};

    std::pmr::unordered_map<std::uint64_t, std::int32_t, SeededHash> ids_;  // by the text's offset
};

}  // namespace

std::pmr::string bytes_kept(Root const& root, std::string_view bytes, VerifyOptions const& options,
                            Budget& budget) {
    Walk        walk(bytes, options.walk(), budget);
    StringsOnly strings;
    Walker(walk, strings).run(*root.type);
    return ReadOverWriter(walk, bytes).run(*root.type);
}

}  // namespace sml::inspect

#include <sml/inspect/read_over.hpp>

#include <sml/inspect/walk/walker.hpp>

#include <algorithm>
#include <cstring>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::inspect {

namespace {

/// A visitor that hears nothing: its walk leaves the table of the strings.
class StringsOnly : public SilentVisitor {
public:
    static constexpr bool hears_values = false;
};

/// Keys at offsets that have been walked before, numbered in the order in which they are met.
class KeyNumbers {
public:
    KeyNumbers(Walk const& walk, Type const& type)
        : walk_(walk), type_(type), known_(&walk.budget) {}

    /// The number of the key at an offset: that of an equal one, else the next.
    std::size_t number_of(std::uint64_t offset) {
        std::uint64_t const hash = walk_.keys.hash(type_, offset);
        if (hash == Keys::no_hash) return count_++;
        auto [known, end] = known_.equal_range(hash);
        while (known != end && !walk_.keys.are_equal(type_, known->second.offset, offset)) ++known;
        if (known == end) {
            known_.emplace(hash, Key{offset, count_});
            return count_++;
        }
        // The later one is compared with from now on: no long number is read again and again.
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

/// Writes what a reader keeps of values of one type that it reads one over another.
class Keeper {
public:
    Keeper(Walk const& walk, std::string_view bytes)
        : walk_(walk), bytes_(bytes), kept_(&walk.budget), ids_(&walk.budget) {}

    std::pmr::string run(Type const& root) {
        kept_.reserve(bytes_.size());
        std::uint64_t start = 0;
        value(root, {&start, 1});
        return std::move(kept_);
    }

private:
    /// Where the readings of a value stand in the bytes, at least one, in the order in which they
    /// are read. Each is moved behind the value.
    using Readings = std::span<std::uint64_t>;

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

    /// Nothing is left of an earlier reading.
    void last(Type const& type, Readings at) {
        std::uint64_t const start = pass_all_but_last(type, at);
        pass(type, at.back());
        kept_ += bytes_.substr(start, at.back() - start);
    }

    [[gnu::noinline]] void string(Type const& type, Readings at) {
        pass_all_but_last(type, at);
        std::uint64_t&   offset = at.back();
        StringWord const word(take<std::int32_t>(offset));
        std::string_view text;
        std::uint64_t    place = offset;
        if (word.refers()) {
            place = walk_.strings.place_of(word.id());
            text = walk_.strings.text_of(word.id());
        } else {
            text = take_block(offset);
            place = walk_.strings.place_at(place);
        }
        // Equal texts have one place, but for the empty one of an id that was never told.
        constexpr std::uint64_t place_of_empty = 0;
        std::int32_t&           id = ids_[text.empty() ? place_of_empty : place];
        if (id > 0) return put(id);
        id = static_cast<std::int32_t>(ids_.size());
        put(-id);
        put(static_cast<std::int32_t>(text.size()));
        kept_ += text;
    }

    /// A text that is no number leaves what was there.
    [[gnu::noinline]] void big_integer(Type const& type, Readings at) {
        std::uint64_t kept = at.front();
        for (std::uint64_t& offset : at) {
            std::uint64_t const start = offset;
            if (is_integer(take_block(offset))) kept = start;
        }
        std::uint64_t const start = kept;
        pass(type, kept);
        kept_ += bytes_.substr(start, kept - start);
    }

    /// The element is made anew by each reading.
    [[gnu::noinline]] void optional(Type const& type, Readings at) {
        pass_all_but_last(type, at);
        bool const is_there = bytes_[at.back()++] == flag_of_presence;
        kept_ += is_there ? flag_of_presence : 'F';
        if (is_there) value(*type.element, at.last(1));
    }

    /// Another tag makes a payload anew, an equal one reads over it.
    [[gnu::noinline]] void variant(Type const& type, Readings at) {
        std::int32_t const tag = word_at<std::int32_t>(at.back());
        std::size_t        first = at.size() - 1;
        while (first > 0 && word_at<std::int32_t>(at[first - 1]) == tag) --first;
        for (std::uint64_t& offset : at.first(first)) pass(type, offset);
        at = at.subspan(first);
        for (std::uint64_t& offset : at) offset += sizeof tag;
        put(tag);
        Arm const* const arm = type.serving(tag);
        if (arm != nullptr && arm->payload != nullptr) value(*arm->payload, at);
    }

    /// Each reading adds its elements.
    [[gnu::noinline]] void list(Type const& type, Readings at) {
        std::size_t const count_at = put_count();
        std::uint32_t     count = 0;
        for (std::uint64_t& offset : at)
            for (auto left = take<std::uint32_t>(offset); left > 0; --left, ++count)
                value(*type.element, {&offset, 1});
        set_count(count_at, count);
    }

    /// An element or key that is there already is read and dropped, a key with its value.
    [[gnu::noinline]] void first_entries(Type const& type, Readings at) {
        Type const&       key_type = type.kind == Kind::set ? *type.element : *type.key;
        KeyNumbers        keys(walk_, key_type);
        std::size_t const count_at = put_count();
        for (std::uint64_t& offset : at) {
            for (auto left = take<std::uint32_t>(offset); left > 0; --left) {
                std::size_t const before = keys.count();
                bool const        is_new = keys.number_of(offset) == before;
                keep_or_pass(key_type, offset, is_new);
                if (type.kind == Kind::map) keep_or_pass(*type.element, offset, is_new);
            }
        }
        set_count(count_at, keys.count());
    }

    /// The first key stays, and all values of equal keys are read one over another.
    [[gnu::noinline]] void entries_read_over(Type const& type, Readings at) {
        auto const                      entries = entries_by_key(type, at);
        std::pmr::vector<std::uint64_t> values(&walk_.budget);
        std::size_t const               count_at = put_count();
        std::size_t                     count = 0;
        for (auto entry = entries.begin(); entry != entries.end(); ++count) {
            std::size_t const number = entry->number;
            std::uint64_t     key = entry->key;
            values.clear();
            for (; entry != entries.end() && entry->number == number; ++entry)
                values.push_back(entry->value);
            value(*type.key, {&key, 1});
            value(*type.element, values);
        }
        set_count(count_at, count);
    }

    struct Entry {
        std::size_t   number;  // of the key
        std::uint64_t key;
        std::uint64_t value;
    };

    /// The entries of all readings; those of equal keys in a row, as they are read.
    std::pmr::vector<Entry> entries_by_key(Type const& type, Readings at) {
        KeyNumbers              keys(walk_, *type.key);
        std::pmr::vector<Entry> entries(&walk_.budget);
        for (std::uint64_t& offset : at) {
            for (auto left = take<std::uint32_t>(offset); left > 0; --left) {
                std::uint64_t const key = offset;
                pass(*type.key, offset);
                entries.push_back({keys.number_of(key), key, offset});
                pass(*type.element, offset);
            }
        }
        // As they came where numbers are equal.
        std::ranges::sort(entries, {},
                          [](Entry const& entry) { return std::pair(entry.number, entry.value); });
        return entries;
    }

    void keep_or_pass(Type const& type, std::uint64_t& offset, bool is_kept) {
        if (is_kept)
            value(type, {&offset, 1});
        else
            pass(type, offset);
    }

    /// Gives where the last one starts.
    std::uint64_t pass_all_but_last(Type const& type, Readings at) const {
        for (std::uint64_t& offset : at.first(at.size() - 1)) pass(type, offset);
        return at.back();
    }

    void pass(Type const& type, std::uint64_t& offset) const {
        switch (type.kind) {
            case Kind::number:
            case Kind::big_integer:
            case Kind::text: take_block(offset); return;
            case Kind::ieee_float:
                take_block(offset);
                offset += sizeof(std::int32_t);
                return;
            case Kind::string:
                if (!StringWord(take<std::int32_t>(offset)).refers()) take_block(offset);
                return;
            case Kind::optional:
                if (bytes_[offset++] == flag_of_presence) pass(*type.element, offset);
                return;
            case Kind::boxed: pass(*type.element, offset); return;
            case Kind::variant: {
                Arm const* const arm = type.serving(take<std::int32_t>(offset));
                if (arm != nullptr && arm->payload != nullptr) pass(*arm->payload, offset);
                return;
            }
            case Kind::list:
            case Kind::set:
            case Kind::map:
                for (auto left = take<std::uint32_t>(offset); left > 0; --left) {
                    if (type.key != nullptr) pass(*type.key, offset);
                    pass(*type.element, offset);
                }
                return;
            case Kind::record:
            case Kind::group:
            case Kind::tuple:
                for (Part const& part : type.parts) pass(*part.type, offset);
                return;
            default: offset += type.least_size;
        }
    }

    template <class Word>
    Word word_at(std::uint64_t offset) const {
        Word word;
        std::memcpy(&word, bytes_.data() + offset, sizeof word);
        return word;
    }

    template <class Word>
    Word take(std::uint64_t& offset) const {
        offset += sizeof(Word);
        return word_at<Word>(offset - sizeof(Word));
    }

    std::string_view take_block(std::uint64_t& offset) const {
        auto const length = static_cast<std::size_t>(take<std::int32_t>(offset));
        offset += length;
        return bytes_.substr(offset - length, length);
    }

    void put(std::int32_t word) { kept_.append(reinterpret_cast<char const*>(&word), sizeof word); }

    /// Room for a count that is known when its entries are over; gives its place.
    std::size_t put_count() {
        put(0);
        return kept_.size() - sizeof(std::uint32_t);
    }

    void set_count(std::size_t at, std::size_t count) {
        auto const word = static_cast<std::uint32_t>(count);
        std::memcpy(kept_.data() + at, &word, sizeof word);
    }

    static constexpr char flag_of_presence = 'T';

    Walk const&      walk_;
    std::string_view bytes_;
    std::pmr::string kept_;

    std::pmr::unordered_map<std::uint64_t, std::int32_t, SeededHash> ids_;  // by the text's place
};

}  // namespace

std::pmr::string bytes_kept(Root const& root, std::string_view bytes, VerifyOptions const& options,
                            Budget& budget) {
    Walk        walk(bytes, options.walk(), budget);
    StringsOnly strings;
    Walker(walk, strings).run(*root.type);
    return Keeper(walk, bytes).run(*root.type);
}

}  // namespace sml::inspect

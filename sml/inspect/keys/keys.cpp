#include <sml/inspect/keys/keys.hpp>

#include <sml/core/hash.hpp>
#include <sml/inspect/keys/take_key.hpp>
#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/text/quote.hpp>

#include <algorithm>
#include <charconv>
#include <functional>

namespace sml::inspect {

/// A position in the bytes of a key.
class Keys::Cursor : public WalkedBytes {
public:
    Cursor(Keys const& keys, std::uint64_t offset)
        : WalkedBytes(keys.bytes_, offset), keys_(keys) {}

    Budget& budget() const { return keys_.budget_; }

    // Each takes a string. They return its text, the hash of that, or its offset.
    std::string_view take_string() {
        StringWord const word = take_string_word();
        return word.refers() ? keys_.strings_.text_of(word.id()) : take_block();
    }
    std::uint64_t take_string_hash() {
        StringWord const word = take_string_word();
        if (word.refers()) return keys_.strings_.hash_of(word.id());
        std::uint64_t const length_offset = offset();
        take_block();
        return keys_.strings_.hash_at(length_offset);
    }
    std::uint64_t take_string_place() {
        StringWord const word = take_string_word();
        if (word.refers()) return keys_.strings_.place_of(word.id());
        std::uint64_t const length_offset = offset();
        take_block();
        return keys_.strings_.place_at(length_offset);
    }

private:
    Keys const& keys_;
};

/// The integer that a reader makes of a block: a sign, if it is negative, and hexadecimal digits.
/// Refers to the block itself if that is spelled as a writer spells it.
class Keys::Digits {
public:
    explicit Digits(Cursor& at) {
        std::string_view const block = at.take_block();
        if (is_written_integer(block)) {
            view_ = written_digits(block);
            return;
        }
        hold_.emplace(at.budget(), block.size());
        own_ = integer_of(block);
        view_ = own_;
    }
    Digits(Digits const&) = delete;
    Digits& operator=(Digits const&) = delete;

    std::string_view view() const { return view_; }

private:
    std::optional<Budget::Hold> hold_;
    std::string                 own_;
    std::string_view            view_;
};

struct Keys::HashSink {
    Cursor        at;
    std::uint64_t hash = 0;
    bool          equals_none = false;

    bool string() { return mix(at.take_string_hash()); }
    template <class Word>
    bool word() {
        return mix(static_cast<std::uint64_t>(at.take_word<Word>()));
    }
    bool flag() { return mix(at.take_flag()); }
    bool big_integer() { return mix(seeded_hash(Digits(at).view())); }
    bool text() { return mix(seeded_hash(at.take_block())); }
    bool enumeration(Type const&) { return word<std::int32_t>(); }

    template <class Take>
    bool optional(Take const& take_element) {
        bool const is_present = at.take_flag();
        mix(is_present);
        return !is_present || take_element();
    }
    template <class Take>
    bool variant(Type const& type, Take const& take_payload) {
        auto const tag = at.take_word<std::int32_t>();
        mix(static_cast<std::uint32_t>(tag));
        equals_none = equals_none || tag < 0;
        Arm const* const arm = type.with_payload(tag);
        return arm == nullptr || take_payload(*arm);
    }
    template <class Take>
    bool parts(Type const& type, Take const& take_part) {
        return std::ranges::all_of(type.parts, take_part);
    }

private:
    bool mix(std::uint64_t word) {
        hash = seeded_hash(word, hash);
        return true;
    }
};

std::uint64_t Keys::hash(Type const& type, std::uint64_t offset) const {
    HashSink key{{*this, offset}};
    take_key(type, key);
    if (key.equals_none) return no_hash;
    return key.hash == no_hash ? 1 : key.hash;
}

namespace {

/// The required hash of an integer: its limbs are combined, the lowest first, then its sign.
std::uint64_t readers_hash_of_digits(std::string_view digits) {
    constexpr std::size_t digits_of_limb = 16;
    bool const            is_negative = digits.starts_with('-');
    if (is_negative) digits.remove_prefix(1);
    if (digits == "0") return core::combine(0, 0);
    std::uint64_t hash = 0;
    while (!digits.empty()) {
        std::size_t const size = std::min(digits.size(), digits_of_limb);
        std::uint64_t     limb = 0;
        std::from_chars(digits.end() - size, digits.end(), limb, 16);
        hash = core::combine(hash, limb);
        digits.remove_suffix(size);
    }
    return core::combine(hash, core::hash_word(is_negative ? -1 : 1));
}

}  // namespace

/// Combines the parts of a key as the required hash functions do. Other keys of hash tables have no
/// descriptor.
struct Keys::ReadersHashSink {
    Cursor        at;
    std::uint64_t hash = 0;  // of the part that was taken last
    bool          equals_none = false;

    bool string() { return take(at.take_string_hash()); }
    template <class Word>
    bool word() {
        return take(static_cast<std::uint64_t>(at.take_word<Word>()));
    }
    bool flag() { return take(at.take_flag()); }
    bool big_integer() { return take(readers_hash_of_digits(Digits(at).view())); }
    bool text() { return take(std::hash<std::string_view>()(at.take_block())); }
    bool enumeration(Type const&) { return word<std::int32_t>(); }

    template <class Take>
    bool optional(Take const&) {
        __builtin_unreachable();
    }
    template <class Take>
    bool variant(Type const& type, Take const& take_payload) {
        auto const tag = at.take_word<std::int32_t>();
        equals_none = equals_none || tag < 0;
        Arm const* const arm = type.with_payload(tag);
        if (arm != nullptr) take_payload(*arm);
        return take(core::combine(core::hash_word(tag), arm != nullptr ? hash : 0));
    }
    /// Combines the parts one after another. In a record, a string with a number after it is one
    /// part: a numbered key.
    template <class Take>
    bool parts(Type const& type, Take const& take_part) {
        auto const    parts = type.parts;
        bool const    is_tuple = type.kind == Kind::tuple;
        std::uint64_t all = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            take_part(parts[i]);
            bool const is_numbered = !is_tuple && parts[i].type->kind == Kind::string &&
                                     i + 1 < parts.size() && parts[i + 1].type->kind == Kind::int32;
            if (is_numbered) {
                std::uint64_t const text = hash;
                take_part(parts[++i]);
                take(core::combine(text, hash));
            }
            all = is_tuple && i == 0 ? hash : core::combine(all, hash);
        }
        return take(all);
    }

private:
    bool take(std::uint64_t value) {
        hash = value;
        return true;
    }
};

Keys::ReadersHash Keys::readers_hash(Type const& type, std::uint64_t offset) const {
    ReadersHashSink key{{*this, offset}};
    take_key(type, key);
    return {key.hash, key.equals_none};
}

struct Keys::EqualSink {
    Cursor             a;
    Cursor             b;
    StringTable const& strings;

    bool string() { return strings.are_equal(a.take_string_place(), b.take_string_place()); }
    template <class Word>
    bool word() {
        return a.take_word<Word>() == b.take_word<Word>();
    }
    bool flag() { return a.take_flag() == b.take_flag(); }
    bool big_integer() { return Digits(a).view() == Digits(b).view(); }
    bool text() { return a.take_block() == b.take_block(); }
    bool enumeration(Type const&) { return word<std::int32_t>(); }

    template <class Take>
    bool optional(Take const& take_element) {
        bool const is_present = a.take_flag();
        return is_present == b.take_flag() && (!is_present || take_element());
    }
    template <class Take>
    bool variant(Type const& type, Take const& take_payload) {
        auto const tag = a.take_word<std::int32_t>();
        if (tag != b.take_word<std::int32_t>()) return false;
        Arm const* const arm = type.with_payload(tag);
        return arm == nullptr || take_payload(*arm);
    }
    template <class Take>
    bool parts(Type const& type, Take const& take_part) {
        return std::ranges::all_of(type.parts, take_part);
    }
};

Keys::Compared Keys::compare(Type const& type, std::uint64_t a, std::uint64_t b) const {
    EqualSink  keys{{*this, a}, {*this, b}, strings_};
    bool const are_equal = take_key(type, keys);
    return {are_equal, keys.a.offset() - a};
}

struct Keys::TextSink {
    Cursor      at;
    std::string shown{};

    bool string() { return append(quoted(at.take_string())); }
    template <class Word>
    bool word() {
        return append(std::to_string(at.take_word<Word>()));
    }
    bool flag() { return append(at.take_flag() ? "true" : "false"); }
    bool big_integer() { return append(Digits(at).view()); }
    bool text() { return append(quoted(at.take_block())); }
    bool enumeration(Type const& type) {
        auto const number = at.take_word<std::int32_t>();
        return type.has_tag(number) ? append(type.enumerators[static_cast<std::size_t>(number)])
                                    : append(std::to_string(number));
    }

    template <class Take>
    bool optional(Take const& take_element) {
        return at.take_flag() ? take_element() : append("null");
    }
    template <class Take>
    bool variant(Type const& type, Take const& take_payload) {
        auto const tag = at.take_word<std::int32_t>();
        append(type.has_tag(tag) ? std::string(type.arm_of(tag)->name) : std::to_string(tag));
        Arm const* const arm = type.with_payload(tag);
        return arm == nullptr || (append(" ") && take_payload(*arm));
    }
    template <class Take>
    bool parts(Type const& type, Take const& take_part) {
        append("(");
        for (Part const& part : type.parts) {
            if (&part != type.parts.data()) append(",");
            take_part(part);
        }
        return append(")");
    }

private:
    bool append(std::string_view more) {
        shown += more;
        return true;
    }
};

std::string Keys::text(Type const& type, std::uint64_t offset) const {
    TextSink key{{*this, offset}};
    take_key(type, key);
    return std::move(key.shown);
}

std::optional<std::uint64_t> Keys::text_place(std::uint64_t offset) const {
    std::uint64_t const place = Cursor(*this, offset).take_string_place();
    if (strings_.are_equal(place, StringTable::nowhere)) return std::nullopt;
    return place;
}

}  // namespace sml::inspect

#pragma once
// One bounded pass over the bytes of a root, by descriptor, telling a visitor what it meets.
//
// It builds no objects and takes nothing beyond the bytes; it is the only code that reads bytes of
// unknown origin. The first unsafe finding ends the pass; the ends of what is open are still told.

#include "inspect/number_text.hpp"
#include "inspect/quote.hpp"
#include "inspect/walk.hpp"

#include <string>
#include <string_view>
#include <utility>

namespace sml::inspect {

/// A visitor that listens to nothing. Others derive from it and hide what they want to hear; the
/// walker is instantiated for each, so what is not heard costs nothing.
struct SilentVisitor {
    /// Whether the keys and elements of tables and sets are told to `add_key`.
    static constexpr bool compares_keys = false;

    void integer(Type const&, std::int64_t) {}
    void natural(Type const&, std::uint64_t) {}
    void flag(bool) {}
    void number(double) {}
    void big_integer(std::string_view /*hexadecimal*/) {}
    void ieee_float(std::string_view /*text*/, std::int32_t /*width*/) {}
    void string(std::string_view) {}
    void text(std::string_view) {}
    void enumeration(Type const&, std::int32_t) {}
    void absent(Type const&) {}
    /// The element of an optional follows.
    void present(Type const&) {}

    /// A record, group, tuple, list, set, map or row of flags with so many parts or entries.
    void begin(Type const&, std::uint64_t /*count*/) {}
    /// The part or entry to come; in a map the key of the entry.
    void part(Type const&, std::uint64_t /*index*/) {}
    /// The value of the entry of a map to come.
    void entry_value(Type const&) {}
    /// The end of the entry of a map.
    void end_entry(Type const&) {}
    void end(Type const&) {}

    /// The arm is null for a tag that stands bare; a payload follows when the arm has one.
    void begin_variant(Type const&, std::int32_t /*tag*/, Arm const*) {}
    void payload(Type const&) {}
    void end_variant(Type const&) {}
    void reference(Type const&, std::int32_t /*tag*/, std::uint64_t /*word*/) {}

    /// A set or map with so many entries, more than one, whose keys are going to be told.
    void open_keys(Type const&, std::uint64_t /*count*/) {}
    void close_keys() {}
    /// The root's value is over; bytes behind it are unsafe.
    void end_root() {}

    /// Whether the key at an offset is new to the container opened last.
    bool add_key(Type const& /*key*/, std::uint64_t /*offset*/, std::uint64_t /*hash*/) {
        return true;
    }

    /// `make` gives the finding; not calling it saves its making.
    template <class Make>
    void odd(Oddity, Make const& /*make*/) {}
    void unsafe(Finding const&) {}
};

template <class Visitor>
class Walker {
public:
    Walker(Walk& walk, Visitor& visitor) : walk_(walk), visitor_(visitor) {}

    /// Whether nothing unsafe was found and the root's value took all the bytes.
    bool run(Type const& root) {
        if (!value(root)) return false;
        visitor_.end_root();
        if (walk_.left() == 0) return true;
        return fail(walk_.offset(), "the end of the bytes",
                    std::to_string(walk_.left()) + " more bytes");
    }

private:
    bool value(Type const& type) {
        if (walk_.left() < type.least_size) return too_short(type);
        switch (type.kind) {
            case Kind::int32: return integer<std::int32_t>(type);
            case Kind::int64: return integer<std::int64_t>(type);
            case Kind::uint32: return natural<std::uint32_t>(type);
            case Kind::uint64: return natural<std::uint64_t>(type);
            case Kind::flag: visitor_.flag(flag()); return true;
            case Kind::enumeration: return enumeration(type);
            case Kind::string: return string();
            case Kind::text: return text();
            case Kind::number: return number();
            case Kind::big_integer: return big_integer();
            case Kind::ieee_float: return ieee_float();
            case Kind::optional: return optional(type);
            case Kind::boxed: return boxed(type);
            case Kind::reference: return reference(type);
            default: return nested(type);
        }
    }

    /// What holds other values: bounded in depth.
    bool nested(Type const& type) {
        if (walk_.steps.size() >= walk_.limits.depth) return too_deep();
        walk_.steps.push_back({&type});
        bool const whole = composite(type);
        walk_.steps.pop_back();
        return whole;
    }

    bool composite(Type const& type) {
        switch (type.kind) {
            case Kind::variant: return variant(type);
            case Kind::flags: return flags(type);
            case Kind::list:
            case Kind::set:
            case Kind::map: return container(type);
            default: return parts(type);
        }
    }

    bool parts(Type const& type) {
        visitor_.begin(type, type.parts.size());
        bool          whole = true;
        std::uint64_t index = 0;
        for (Part const& part : type.parts) {
            walk_.steps.back().part = index;
            visitor_.part(type, index++);
            if (!(whole = value(*part.type))) break;
        }
        visitor_.end(type);
        return whole;
    }

    bool variant(Type const& type) {
        std::uint64_t const at = walk_.offset();
        auto const          tag = walk_.take_word<std::int32_t>();
        Arm const* const    arm = type.serving(tag);
        mix(static_cast<std::uint32_t>(tag));
        if (!type.knows_tag(tag)) odd_tag(type, at, tag);
        if (tag < 0) key_is_unequal_ = true;
        visitor_.begin_variant(type, tag, arm);
        bool whole = true;
        if (arm != nullptr && arm->payload != nullptr) {
            walk_.steps.back().part = static_cast<std::uint64_t>(arm - type.arms.data());
            visitor_.payload(type);
            whole = value(*arm->payload);
        }
        visitor_.end_variant(type);
        return whole;
    }

    bool container(Type const& type) {
        std::uint64_t const at = walk_.offset();
        std::uint64_t const count = walk_.take_word<std::uint32_t>();
        std::uint64_t const least =
            type.element->least_size + (type.key != nullptr ? type.key->least_size : 0);
        if (count * least > walk_.left())
            return fail(at, "a count of at most " + std::to_string(walk_.left() / least),
                        std::to_string(count));
        walk_.elements += count;
        if (walk_.elements > walk_.limits.elements)
            return fail(at, "no more than " + std::to_string(walk_.limits.elements) + " elements",
                        std::to_string(walk_.elements));
        if (!grow_heap(at, container_size(type, count))) return false;

        bool const keyed = Visitor::compares_keys && type.kind != Kind::list && count > 1;
        if (keyed) visitor_.open_keys(type, count);
        visitor_.begin(type, count);
        bool whole = true;
        for (std::uint64_t i = 0; whole && i < count; ++i) whole = entry(type, i, keyed);
        visitor_.end(type);
        if (keyed) visitor_.close_keys();
        return whole;
    }

    bool entry(Type const& type, std::uint64_t index, bool keyed) {
        walk_.steps.back().part = index;
        if (walk_.progress != nullptr)
            walk_.progress->store(walk_.offset(), std::memory_order_relaxed);
        visitor_.part(type, index);
        if (type.kind == Kind::list) return value(*type.element);
        if (type.kind == Kind::set) return key(*type.element, keyed);

        std::uint64_t const at = walk_.offset();
        bool                whole = key(*type.key, keyed);
        if (whole) {
            walk_.steps.back().key_offset = at;
            visitor_.entry_value(type);
            whole = value(*type.element);
            walk_.steps.back().key_offset = Step::nowhere;
        }
        visitor_.end_entry(type);
        return whole;
    }

    bool key(Type const& type, bool keyed) {
        if (!keyed) return value(type);
        std::uint64_t const at = walk_.offset();
        key_hash_ = 0;
        key_is_unequal_ = false;
        in_key_ = true;
        bool const whole = value(type);
        in_key_ = false;
        if (!whole || key_is_unequal_ || visitor_.add_key(type, at, key_hash_)) return whole;
        odd(Oddity::repeated, at, "a key or element that is not there yet",
            [&] { return walk_.key_text(type, at) + " again"; });
        return true;
    }

    bool optional(Type const& type) {
        if (!flag()) {
            visitor_.absent(type);
            return true;
        }
        visitor_.present(type);
        return value(*type.element);
    }

    bool boxed(Type const& type) {
        return grow_heap(walk_.offset(), 16 + type.element->object_size) && value(*type.element);
    }

    bool flags(Type const& type) {
        visitor_.begin(type, type.flag_count);
        for (std::uint32_t i = 0; i < type.flag_count; ++i) {
            walk_.steps.back().part = i;
            visitor_.part(type, i);
            visitor_.flag(flag());
        }
        visitor_.end(type);
        return true;
    }

    bool reference(Type const& type) {
        std::uint64_t const at = walk_.offset();
        auto const          tag = walk_.take_word<std::int32_t>();
        if (!type.knows_tag(tag)) odd_tag(type, at, tag);
        visitor_.reference(type, tag, walk_.take_word<std::uint64_t>());
        return true;
    }

    bool enumeration(Type const& type) {
        std::uint64_t const at = walk_.offset();
        auto const          number = walk_.take_word<std::int32_t>();
        mix(static_cast<std::uint32_t>(number));
        if (!type.knows_tag(number))
            odd(Oddity::unknown, at,
                "an enumerator from 0 to " + std::to_string(type.enumerators.size() - 1),
                [&] { return std::to_string(number); });
        visitor_.enumeration(type, number);
        return true;
    }

    template <class Word>
    bool integer(Type const& type) {
        auto const word = walk_.take_word<Word>();
        mix(static_cast<std::uint64_t>(word));
        visitor_.integer(type, word);
        return true;
    }

    template <class Word>
    bool natural(Type const& type) {
        auto const word = walk_.take_word<Word>();
        mix(word);
        visitor_.natural(type, word);
        return true;
    }

    bool flag() {
        std::uint64_t const at = walk_.offset();
        char const          byte = walk_.take(1).front();
        bool const          is_true = byte == 'T';
        mix(is_true);
        if (byte != 'T' && byte != 'F') odd_flag(at, byte);
        return is_true;
    }

    bool string() {
        std::uint64_t const at = walk_.offset();
        auto const          word = walk_.take_word<std::int32_t>();
        if (word >= 1) return repeated_string(at, word);
        std::uint64_t const length_offset = walk_.offset();
        std::string_view    told;
        if (!block(told, "a string")) return false;
        if (walk_.strings.told() == StringTable::most) return too_many_strings(at);
        auto const first_sight = walk_.strings.tell(word, length_offset);
        if (!first_sight.in_sequence) odd_id(at, word);
        if (!first_sight.text_is_new)
            odd(Oddity::other, at, "a reference to the text told before",
                [] { return "the text told again"; });
        if (!grow_heap(at, string_size(told.size()))) return false;
        mix(first_sight.hash);
        visitor_.string(told);
        return true;
    }

    bool repeated_string(std::uint64_t at, std::int32_t id) {
        if (!walk_.strings.refer(id))
            odd(Oddity::other, at, "an id told before", [&] { return "id " + std::to_string(id); });
        mix(walk_.strings.hash_of(id));
        visitor_.string(walk_.strings.text_of(id));
        return true;
    }

    bool text() {
        std::uint64_t const at = walk_.offset();
        std::string_view    told;
        if (!block(told, "a text") || !grow_heap(at, told.size())) return false;
        visitor_.text(told);
        return true;
    }

    bool number() {
        std::uint64_t const at = walk_.offset();
        std::string_view    told;
        if (!block(told, "a number")) return false;
        auto const read = double_of(told);
        if (!read) return fail(at, "a number that a double holds", quoted(told));
        if (told != written_double(*read)) odd_number(at, told);
        visitor_.number(*read);
        return true;
    }

    bool big_integer() {
        std::uint64_t const at = walk_.offset();
        std::string_view    told;
        if (!block(told, "an integer") || !grow_heap(at, number_size(told.size()))) return false;
        if (is_written_integer(told)) {
            told.remove_suffix(told.front() == '-' ? 1 : 2);
            mix_text(told);
            visitor_.big_integer(told);
            return true;
        }
        odd_number(at, told);
        std::string const read = integer_of(told);
        mix_text(read);
        visitor_.big_integer(read);
        return true;
    }

    bool ieee_float() {
        std::uint64_t const at = walk_.offset();
        std::string_view    told;
        if (!block(told, "a float")) return false;
        std::uint64_t const width_offset = walk_.offset();
        if (walk_.left() < sizeof(std::int32_t))
            return fail(width_offset, "a float's width", "the end of the bytes");
        auto const width = walk_.take_word<std::int32_t>();
        if (!is_float_width(width))
            return fail(width_offset, "a width of 16, 32, 40, 48, 64, 80 or 128",
                        std::to_string(width));
        if (!grow_heap(at, number_size(0))) return false;
        if (is_written_float(told, width)) {
            visitor_.ieee_float(told, width);
            return true;
        }
        odd_number(at, told);
        visitor_.ieee_float(float_of(told, width), width);
        return true;
    }

    /// A length word and so many bytes.
    bool block(std::string_view& bytes, char const* what) {
        std::uint64_t const at = walk_.offset();
        if (walk_.left() < sizeof(std::int32_t)) return no_length(what);
        auto const length = walk_.take_word<std::int32_t>();
        if (length < 0 || static_cast<std::uint64_t>(length) > walk_.left())
            return fail(at, "a length from 0 to " + std::to_string(walk_.left()),
                        std::to_string(length));
        if (static_cast<std::uint64_t>(length) > walk_.limits.text_bytes)
            return fail(at, "no text longer than " + std::to_string(walk_.limits.text_bytes),
                        std::to_string(length));
        bytes = walk_.take(static_cast<std::size_t>(length));
        return true;
    }

    // What the entries of a container, a distinct string or a number take on the heap, with the
    // allocator's share.
    static std::uint64_t container_size(Type const& type, std::uint64_t count) {
        std::uint64_t const key = type.key != nullptr ? type.key->object_size : 0;
        return count * (64 + key + type.element->object_size);
    }
    static std::uint64_t string_size(std::size_t bytes) { return 192 + bytes; }
    static std::uint64_t number_size(std::size_t bytes) { return 32 + bytes; }

    bool grow_heap(std::uint64_t at, std::uint64_t bytes) {
        walk_.heap += bytes;
        if (walk_.heap <= walk_.limits.memory) return true;
        return fail(at, "an object of at most " + std::to_string(walk_.limits.memory) + " bytes",
                    "at least " + std::to_string(walk_.heap));
    }

    void mix(std::uint64_t word) {
        if (Visitor::compares_keys && in_key_) key_hash_ = seeded_hash(word, key_hash_);
    }
    void mix_text(std::string_view text) {
        if (Visitor::compares_keys && in_key_) mix(seeded_hash(text));
    }

    // Kept out of the way of what is as it should be.
    [[gnu::cold]] bool too_short(Type const& type) {
        return fail(walk_.offset(), "at least " + std::to_string(type.least_size) + " bytes",
                    std::to_string(walk_.left()));
    }
    [[gnu::cold]] bool too_deep() {
        return fail(walk_.offset(),
                    "no more than " + std::to_string(walk_.limits.depth) + " values inside values",
                    "one more");
    }
    [[gnu::cold]] bool no_length(char const* what) {
        return fail(walk_.offset(), std::string("the length of ") + what, "the end of the bytes");
    }

    [[gnu::cold]] bool too_many_strings(std::uint64_t at) {
        return fail(at, "no more than " + std::to_string(StringTable::most) + " strings",
                    "one more");
    }

    [[gnu::cold]] void odd_tag(Type const& type, std::uint64_t at, std::int32_t tag) {
        odd(Oddity::unknown, at, "a tag from 0 to " + std::to_string(type.arms.size() - 1), [&] {
            return tag == -1 ? std::string("-1, a variant never set") : std::to_string(tag);
        });
    }

    [[gnu::cold]] void odd_flag(std::uint64_t at, char byte) {
        bool const is_blank = byte == ' ' || (byte >= '\t' && byte <= '\r');
        odd(Oddity::other, at, "T or F", [&] {
            return byte_text(byte) + (is_blank ? ", which reading from a stream skips" : "");
        });
    }

    [[gnu::cold]] void odd_id(std::uint64_t at, std::int32_t word) {
        odd(Oddity::other, at, "id " + std::to_string(walk_.strings.told()),
            [&] { return "id " + std::to_string(-static_cast<std::int64_t>(word)); });
    }

    [[gnu::cold]] void odd_number(std::uint64_t at, std::string_view told) {
        odd(Oddity::other, at, "a number as it is written", [&] { return quoted(told); });
    }

    template <class Found>
    [[gnu::cold]] void odd(Oddity oddity, std::uint64_t at, std::string_view expected,
                           Found const& found) {
        visitor_.odd(oddity, [&] {
            return Finding{Severity::odd, at, walk_.path(), std::string(expected), found()};
        });
    }

    [[gnu::cold]] bool fail(std::uint64_t at, std::string expected, std::string found) {
        visitor_.unsafe(
            {Severity::unsafe, at, walk_.path(), std::move(expected), std::move(found)});
        return false;
    }

    Walk&         walk_;
    Visitor&      visitor_;
    bool          in_key_ = false;
    bool          key_is_unequal_ = false;
    std::uint64_t key_hash_ = 0;
};

}  // namespace sml::inspect

#pragma once
// One bounded pass over the bytes of a root, by descriptor. It reports events to a visitor.
//
// It builds no objects and takes no bytes after the end; it is the only code that reads bytes of
// unknown origin. The first unsafe finding ends the pass; after it, the end events of all open
// values are still reported.

#include <sml/inspect/text/characters.hpp>
#include <sml/inspect/text/double_text.hpp>
#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/text/quote.hpp>
#include <sml/inspect/walk/walk.hpp>
#include <sml/inspect/wire/form.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace sml::inspect {

/// A visitor that ignores all events. Other visitors derive from it and hide the functions of the
/// events that they want. The walker is instantiated for each visitor, so an ignored event costs
/// nothing.
struct BaseVisitor {
    /// Whether keys of maps and elements of sets are compared: whether `open_keys`, `key_hash`,
    /// `expect_key`, `add_key` and `close_keys` are called.
    static constexpr bool compares_keys = false;

    /// Whether events are wanted for words, strings, numbers and the parts of records. If not, the
    /// walker reports only some of them, to save time.
    static constexpr bool wants_values = true;

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

    /// The start of a record, group, tuple, list, set, map or row of flags, with the number of its
    /// parts or entries.
    void begin(Type const&, std::uint64_t /*count*/) {}
    /// Comes before each part or entry; in a map, before the key of the entry.
    void part(Type const&, std::uint64_t /*index*/) {}
    /// Comes before the value of a map's entry.
    void entry_value(Type const&) {}
    /// The end of a map's entry.
    void end_entry(Type const&) {}
    void end(Type const&) {}
    /// Comes after the end of a list, set or map, with the offset where it starts.
    void end_container(std::uint64_t /*start*/) {}

    /// The start of a variant. The arm is null for an unset or unknown tag in a variant without
    /// catch-all arm. `payload` and the event of the payload follow if the arm has one.
    void begin_variant(Type const&, std::int32_t /*tag*/, Arm const*) {}
    void payload(Type const&) {}
    void end_variant(Type const&) {}
    void reference(Type const&, std::int32_t /*tag*/, std::uint64_t /*word*/) {}

    /// Comes before a set or map of more than one entry, whose keys will be compared.
    void open_keys(Type const&, std::uint64_t /*count*/) {}
    void close_keys() {}
    /// The end of the root's value; bytes after it are unsafe.
    void end_root() {}

    /// Returns the hash by which `add_key` finds the key at an offset; `Keys::no_hash` for a key
    /// that equals no other.
    std::uint64_t key_hash(Walk const& walk, Type const& key, std::uint64_t offset) const {
        return walk.keys.hash(key, offset);
    }
    /// Comes after the key of a map's entry: `add_key` will be called with this hash after the
    /// value.
    void expect_key(std::uint64_t /*hash*/) {}
    /// Adds the key at an offset to the container opened last; returns whether it is new there. In
    /// a map it is called after the entry's value. The hash is `Keys::no_hash` for a key that
    /// equals no other.
    bool add_key(Type const& /*key*/, std::uint64_t /*offset*/, std::uint64_t /*hash*/) {
        return true;
    }

    /// The estimate of a reader's comparisons of keys in its hash tables so far.
    std::uint64_t work() const { return 0; }

    /// An odd finding, which `make()` returns. Making it takes time: a visitor that does not need
    /// it does not call that.
    template <class Make>
    void odd(Oddity, Make const& /*make*/) {}
    void unsafe(Finding const&) {}
};

template <class Visitor>
class Walker {
public:
    Walker(Walk& walk, Visitor& visitor) : walk_(walk), visitor_(visitor) {}

    /// Walks a value of the root. Returns whether nothing unsafe was found; bytes after the value
    /// are unsafe.
    bool run(Type const& root) {
        if (!value(root)) return false;
        visitor_.end_root();
        if (!work_does(walk_.offset())) return false;
        if (walk_.left() == 0) return true;
        return fail(walk_.offset(), "the end of the bytes",
                    std::to_string(walk_.left()) + " more bytes");
    }

private:
    [[gnu::noinline]] bool value(Type const& type) { return inline_value(type); }

    // Inlined where values are walked one after another. What is rare or walks inner values is in
    // functions of its own, which are not inlined.
    [[gnu::always_inline]] bool inline_value(Type const& type) {
        // For a type with parts, the finding is that of the first missing part.
        if (walk_.left() < type.least_size && !type.has_parts()) [[unlikely]]
            return too_short(type.least_size);
        return whole_value(type);
    }

    /// The same, for places where most types have parts.
    [[gnu::always_inline]] bool parts_or_value(Type const& type) {
        return type.has_parts() ? parts(type) : value(type);
    }

    /// The same, where at least `least_size` bytes are left or the type has parts.
    [[gnu::always_inline]] bool whole_value(Type const& type) {
        if (type.kind == Kind::string) return string();
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
            case Kind::variant: return variant(type);
            case Kind::flags: return flags(type);
            case Kind::list:
            case Kind::set:
            case Kind::map: return container(type);
            default: return parts(type);
        }
    }

    /// Calls `use` with a new step, into a value of this type. Returns what `use` returns.
    template <class Use>
    bool inside(Type const& type, Use use) {
        Step step = walk_.enter(type);
        walk_.set_step(&step);
        bool const whole = use(step);
        walk_.set_step(step.up);
        return whole;
    }

    /// The same for variants and containers, whose nesting is limited.
    template <class Use>
    bool inside_nesting(Type const& type, Use use) {
        if (!may_nest()) [[unlikely]]
            return too_deep();
        ++walk_.nesting;
        bool const whole = inside(type, use);
        --walk_.nesting;
        return whole;
    }

    [[gnu::noinline]] bool parts(Type const& type) {
        return inside(type, [&](Step& step) {
            if (Visitor::wants_values) return visited_parts(type, step);
            return flat_parts(type, step);
        });
    }

    bool visited_parts(Type const& type, Step& step) {
        visitor_.begin(type, type.parts.size());
        bool          whole = true;
        std::uint64_t index = 0;
        for (Part const& part : type.parts) {
            step.part = index;
            visitor_.part(type, index++);
            if (!(whole = inline_value(*part.type))) break;
        }
        visitor_.end(type);
        return whole;
    }

    /// Walks the flat parts of a type. No events are reported for records and plain words. A part
    /// is skipped after one comparison if it takes only its least size and is not odd, such as a
    /// back-reference or an empty list.
    ///
    /// `at` is the position here; the walk gets it only before other functions are called.
    bool flat_parts(Type const& type, Step& step) {
        FlatPart const* part = type.flat;
        if (walk_.left() < part->least_size_of_row) [[unlikely]]
            return flat_parts_with_care(type, step, part);
        char const* at = walk_.at();
        bool        whole = true;
        auto const  stop = [&] {
            walk_.seek(at);
            step.flat = part;
        };
        for (;; ++part) {
            at += part->words_before;
            if (part->kind == Kind::string &&
                walk_.strings.is_in_prefix(StringWord(word_at<std::int32_t>(at)))) [[likely]] {
                at += least_size_of(Kind::string);
                continue;
            }
            switch (part->kind) {
                case Kind::string:
                    stop();
                    whole = string();
                    break;
                case Kind::flag:
                    if (is_flag(*at)) [[likely]] {
                        at += least_size_of(Kind::flag);
                        continue;
                    }
                    stop();
                    flag();
                    break;
                case Kind::optional:
                    if (*at == flag_byte(false)) {
                        at += least_size_of(Kind::optional);
                        continue;
                    }
                    stop();
                    whole = optional(*part->type);
                    break;
                case Kind::variant:
                    if (ends_with_tag(*part->type, word_at<std::uint32_t>(at))) {
                        at += least_size_of(Kind::variant);
                        continue;
                    }
                    stop();
                    whole = variant(*part->type);
                    break;
                case Kind::big_integer:
                    stop();
                    whole = big_integer();
                    break;
                case Kind::list:
                case Kind::set:
                case Kind::map:
                    if (word_at<std::uint32_t>(at) == 0 && may_nest()) {
                        at += least_size_of(Kind::list);
                        continue;
                    }
                    stop();
                    whole = container(*part->type);
                    break;
                case Kind::ieee_float:
                    stop();
                    whole = ieee_float();
                    break;
                case Kind::number:
                case Kind::text:
                case Kind::enumeration:
                case Kind::flags:
                case Kind::reference:
                case Kind::boxed:
                    stop();
                    whole = value(*part->type);
                    break;
                case Kind::record: walk_.seek(at); return true;  // the end
                default: __builtin_unreachable();                // no flat parts
            }
            if (!whole) return false;
            if (walk_.left() < part[1].least_size_of_row) [[unlikely]]
                return flat_parts_with_care(type, step, part + 1);
            at = walk_.at();
        }
    }

    /// Whether this tag is that of an arm without payload, and the limit of depth allows one more
    /// variant here.
    bool ends_with_tag(Type const& type, std::uint32_t tag) const {
        return tag < type.arms.size() && type.arms[tag].payload == nullptr && may_nest();
    }

    /// Whether the limit of depth allows one more variant or container here.
    bool may_nest() const { return walk_.nesting < walk_.limits.depth; }

    /// The same from one flat part on, where the bytes may end before the last one.
    [[gnu::cold, gnu::noinline]] bool flat_parts_with_care(Type const& type, Step& step,
                                                           FlatPart const* part) {
        for (;; ++part) {
            step.flat = part;
            if (walk_.left() < part->least_size) return parts_too_short(type, step);
            walk_.skip(part->words_before);
            if (part->type == nullptr) return true;
            if (!whole_value(*part->type)) return false;
        }
    }

    /// Reports the first part that the bytes do not hold: a plain word before the flat part, or
    /// that part itself.
    bool parts_too_short(Type const& type, Step& step) {
        auto flat_parts_before = static_cast<std::uint64_t>(step.flat - type.flat);
        step.flat = nullptr;
        return pass_parts(type, step, flat_parts_before);
    }

    /// Goes through all parts, inner ones too. Those up to the flat part with index
    /// `flat_parts_before` have been walked; plain words after these are taken here. At the first
    /// part that the bytes do not hold, reports it and returns false.
    bool pass_parts(Type const& type, Step& step, std::uint64_t& flat_parts_before) {
        for (step.part = 0; step.part < type.parts.size(); ++step.part) {
            Type const& part = *type.parts[step.part].type;
            if (part.has_parts()) {
                if (!inside(part, [&](Step& inner) {
                        return pass_parts(part, inner, flat_parts_before);
                    }))
                    return false;
            } else if (!part.is_plain_word()) {
                if (flat_parts_before-- == 0) return too_short(part.least_size);
            } else if (flat_parts_before == 0) {
                if (walk_.left() < part.least_size) return too_short(part.least_size);
                walk_.skip(part.least_size);
            }
        }
        return true;
    }

    [[gnu::noinline]] bool variant(Type const& type) {
        return inside_nesting(type, [&](Step& step) { return arm(type, step); });
    }

    bool arm(Type const& type, Step& step) {
        auto const tag = walk_.take_word<std::int32_t>();
        auto       index = static_cast<std::uint32_t>(tag);
        Arm const* arm = nullptr;
        if (index < type.arms.size()) [[likely]] {
            arm = &type.arms[index];
        } else {
            odd_tag(type, tag);
            index = static_cast<std::uint32_t>(type.arms.size() - 1);
            if (type.has_catch_all) arm = &type.arms[index];
        }
        visitor_.begin_variant(type, tag, arm);
        bool whole = true;
        if (arm != nullptr && arm->payload != nullptr) {
            step.part = index;
            visitor_.payload(type);
            whole = parts_or_value(*arm->payload);
        }
        visitor_.end_variant(type);
        return whole;
    }

    [[gnu::noinline]] bool container(Type const& type) {
        return inside_nesting(type, [&](Step& step) { return entries(type, step); });
    }

    bool entries(Type const& type, Step& step) {
        std::uint64_t const at = walk_.offset();
        std::uint64_t const count = walk_.take_word<std::uint32_t>();
        std::uint64_t const least =
            type.element->least_size + (type.key != nullptr ? type.key->least_size : 0);
        if (count * least > walk_.left()) [[unlikely]]
            return too_large("a count of at most ", walk_.left() / least, count);
        walk_.elements += count;
        if (walk_.elements > walk_.limits.elements) [[unlikely]]
            return too_large("elements in all up to ", walk_.limits.elements, walk_.elements);
        bool const keyed = Visitor::compares_keys && type.kind != Kind::list && count > 1;
        if (!walk_.heap.take_table(type, count)) return too_much_heap(at);
        bool const is_list = type.kind == Kind::list;
        if (is_list && !walk_.heap.take_nodes(type, count)) return too_much_heap(at);
        if (keyed) visitor_.open_keys(type, count);
        visitor_.begin(type, count);
        bool const whole = type.kind == Kind::list  ? elements(type, step, count)
                           : type.kind == Kind::set ? keys(type, step, count, keyed)
                                                    : pairs(type, step, count, keyed);
        visitor_.end(type);
        visitor_.end_container(at);
        walk_.heap.complete_table(type, count);
        if (!keyed) return whole;
        visitor_.close_keys();
        step.part = Step::nowhere;
        return whole && work_does(at);
    }

    void next_entry(Type const& type, Step& step, std::uint64_t index) {
        step.part = index;
        if (walk_.progress != nullptr)
            walk_.progress->store(walk_.offset(), std::memory_order_relaxed);
        visitor_.part(type, index);
    }

    bool elements(Type const& type, Step& step, std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i) {
            next_entry(type, step, i);
            if (!parts_or_value(*type.element)) return false;
        }
        return true;
    }

    bool keys(Type const& type, Step& step, std::uint64_t count, bool keyed) {
        for (std::uint64_t i = 0; i < count; ++i) {
            next_entry(type, step, i);
            std::uint64_t const at = walk_.offset();
            if (!parts_or_value(*type.element)) return false;
            if (!walk_.heap.take_nodes(type, 1)) return too_much_heap(at);
            if (!keyed) continue;
            add_key_of_entry(type, *type.element, at, visitor_.key_hash(walk_, *type.element, at));
            if (!work_does(at)) return false;
        }
        return true;
    }

    bool pairs(Type const& type, Step& step, std::uint64_t count, bool keyed) {
        bool whole = true;
        for (std::uint64_t i = 0; whole && i < count; ++i) {
            next_entry(type, step, i);
            whole = pair(type, step, keyed);
            visitor_.end_entry(type);
        }
        return whole;
    }

    bool pair(Type const& type, Step& step, bool keyed) {
        std::uint64_t const at = walk_.offset();
        if (!parts_or_value(*type.key)) return false;
        // The key is added after the value: by then the memory that `expect_key` prefetches has
        // arrived.
        std::uint64_t const hash = keyed ? visitor_.key_hash(walk_, *type.key, at) : Keys::no_hash;
        if (hash != Keys::no_hash) visitor_.expect_key(hash);
        if (!walk_.heap.take_nodes(type, 1)) return too_much_heap(at);
        step.key_offset = at;
        visitor_.entry_value(type);
        bool const whole = parts_or_value(*type.element);
        step.key_offset = Step::nowhere;
        if (keyed) add_key_of_entry(type, *type.key, at, hash);
        return whole && work_does(at);
    }

    void add_key_of_entry(Type const& type, Type const& key, std::uint64_t at, std::uint64_t hash) {
        if (visitor_.add_key(key, at, hash)) [[likely]]
            return;
        walk_.heap.give_back_node(type);
        odd_key(key, at);
    }

    bool optional(Type const& type) {
        if (!flag()) {
            visitor_.absent(type);
            return true;
        }
        visitor_.present(type);
        return parts_or_value(*type.element);
    }

    [[gnu::noinline]] bool boxed(Type const& type) {
        if (!walk_.heap.take_boxed(*type.element)) return too_much_heap(walk_.offset());
        return value(*type.element);
    }

    [[gnu::noinline]] bool flags(Type const& type) {
        return inside(type, [&](Step& step) {
            visitor_.begin(type, type.flag_count);
            for (std::uint32_t i = 0; i < type.flag_count; ++i) {
                step.part = i;
                visitor_.part(type, i);
                visitor_.flag(flag());
            }
            visitor_.end(type);
            return true;
        });
    }

    [[gnu::noinline]] bool reference(Type const& type) {
        auto const tag = walk_.take_word<std::int32_t>();
        if (!type.has_tag(tag)) odd_tag(type, tag);
        visitor_.reference(type, tag, walk_.take_word<std::uint64_t>());
        return true;
    }

    bool enumeration(Type const& type) {
        auto const number = walk_.take_word<std::int32_t>();
        if (static_cast<std::uint32_t>(number) >= type.enumerators.size()) [[unlikely]]
            odd_enumerator(type, number);
        visitor_.enumeration(type, number);
        return true;
    }

    template <class Word>
    bool integer(Type const& type) {
        visitor_.integer(type, walk_.take_word<Word>());
        return true;
    }

    template <class Word>
    bool natural(Type const& type) {
        visitor_.natural(type, walk_.take_word<Word>());
        return true;
    }

    bool flag() {
        std::uint64_t const at = walk_.offset();
        char const          byte = walk_.take(1).front();
        bool const          is_true = is_true_flag(byte);
        if (!is_flag(byte)) [[unlikely]]
            odd_flag(at, byte);
        return is_true;
    }

    bool string() {
        StringWord const word(walk_.take_word<std::int32_t>());
        if (!word.refers()) return string_in_full(word.id());
        if (!walk_.strings.refer(word.id())) [[unlikely]] {
            odd_reference(word.id());
            if (!walk_.heap.take_other_id()) return too_much_heap(walk_.offset());
            if (!work_does(walk_.offset())) return false;
        }
        if (Visitor::wants_values) visitor_.string(walk_.strings.text_of(word.id()));
        return true;
    }

    [[gnu::noinline]] bool string_in_full(std::int32_t id) {
        std::uint64_t const length_offset = walk_.offset();
        std::uint64_t const at = length_offset - sizeof id;
        std::string_view    text;
        if (!block(text, "a string")) return false;
        if (walk_.strings.count() == StringTable::most) return too_many_strings(at);
        auto const added = walk_.strings.add(id, length_offset);
        if (!added.in_sequence) odd_id(at, id);
        if (!added.text_is_new) odd_repetition(at);
        bool const does = walk_.heap.take_string(text.size(), added.text_is_new) &&
                          (added.in_prefix   ? walk_.heap.take_id_in_prefix(walk_.strings.count())
                           : added.id_is_new ? walk_.heap.take_other_id()
                                             : true);
        if (!does) return too_much_heap(at);
        if (!work_does(at)) return false;
        visitor_.string(text);
        return true;
    }

    [[gnu::noinline]] bool text() {
        std::uint64_t const at = walk_.offset();
        std::string_view    text;
        if (!block(text, "a text")) return false;
        if (!walk_.heap.take_text(text.size())) return too_much_heap(at);
        visitor_.text(text);
        return true;
    }

    [[gnu::noinline]] bool number() {
        std::uint64_t const at = walk_.offset();
        std::string_view    text;
        if (!block(text, "a number")) return false;
        if (!walk_.heap.take_double(text.size())) return too_much_heap(at);
        bool const is_plain = is_plainly_written_double(text, walk_.point());
        if (is_plain && !Visitor::wants_values) return true;
        auto const read = double_of(text, walk_.point());
        if (!read)
            return fail(at, "a number that a double holds in every locale and rounding mode",
                        quoted(text));
        if (!is_plain && text != written_double(*read, walk_.point())) odd_double(at, text);
        visitor_.number(*read);
        return true;
    }

    [[gnu::noinline]] bool big_integer() {
        std::uint64_t const at = walk_.offset();
        std::string_view    text;
        if (!block(text, "an integer")) return false;
        bool const is_written = is_written_integer(text, text.size() + walk_.left());
        bool const is_zero = is_written && text.front() == '0';
        bool const is_plain = is_written && text.size() <= ReaderHeap::plain_integer;
        if (!is_zero && !walk_.heap.take_integer(text.size(), is_plain)) return too_much_heap(at);
        if (is_written) {
            if (Visitor::wants_values) visitor_.big_integer(written_digits(text));
            return true;
        }
        odd_number(at, text);
        if (Visitor::wants_values) {
            Budget::Hold const held(walk_.budget, text.size());
            visitor_.big_integer(integer_of(text));
        }
        return true;
    }

    [[gnu::noinline]] bool ieee_float() {
        std::uint64_t const at = walk_.offset();
        std::string_view    text;
        if (!block(text, "a float")) return false;
        std::uint64_t const width_offset = walk_.offset();
        if (walk_.left() < sizeof(std::int32_t))
            return fail(width_offset, "a float's width", "the end of the bytes");
        auto const width = walk_.take_word<std::int32_t>();
        if (!is_float_width(width))
            return fail(width_offset, "a width of 16, 32, 40, 48, 64, 80 or 128",
                        std::to_string(width));
        char const point = float_point(walk_.point());
        bool const is_written =
            is_written_float(text, width, text.size() + sizeof width + walk_.left(), point);
        bool const is_plain = is_written && text != "NAN";
        if (!walk_.heap.take_float(text.size(), is_plain)) return too_much_heap(at);
        if (!is_written) odd_number(at, text);
        if (Visitor::wants_values) visit_float(text, width, point, is_written);
        return true;
    }

    void visit_float(std::string_view text, std::int32_t width, char point, bool is_written) {
        if (is_written && point == '.') return visitor_.ieee_float(text, width);
        Budget::Hold const held(walk_.budget, 3 * text.size());
        std::string const usual = is_written ? with_dot(text, point) : float_of(text, width, point);
        visitor_.ieee_float(usual, width);
    }

    /// Takes a length word and as many bytes. `what` names the value in a finding.
    bool block(std::string_view& bytes, char const* what) {
        if (walk_.left() < sizeof(std::int32_t)) [[unlikely]]
            return no_length(what);
        auto const length = walk_.take_word<std::int32_t>();
        if (length < 0 || static_cast<std::uint64_t>(length) > walk_.left()) [[unlikely]]
            return too_large("a length from 0 to ", walk_.left(), length);
        if (static_cast<std::uint64_t>(length) > walk_.limits.text_bytes) [[unlikely]]
            return too_large("a text of at most ", walk_.limits.text_bytes, length);
        bytes = walk_.take(static_cast<std::size_t>(length));
        return true;
    }

    bool work_does(std::uint64_t at) {
        return visitor_.work() <= walk_.limits.work || too_much_work(at);
    }

    // Not inlined, so that these rare cases do not slow down the usual ones.
    [[gnu::cold, gnu::noinline]] bool too_short(std::uint32_t least_size) {
        return fail(walk_.offset(), "at least " + std::to_string(least_size) + " bytes",
                    std::to_string(walk_.left()));
    }
    // The finding is at the word that was taken last.
    template <class Number>
    [[gnu::cold, gnu::noinline]] bool too_large(char const* expected, std::uint64_t most,
                                                Number found) {
        return fail(walk_.offset() - sizeof(std::int32_t), expected + std::to_string(most),
                    std::to_string(found));
    }
    [[gnu::cold, gnu::noinline]] bool too_deep() {
        return fail(
            walk_.offset(),
            "at most " + std::to_string(walk_.limits.depth) + " levels of variants and containers",
            "one more");
    }
    [[gnu::cold, gnu::noinline]] bool too_much_heap(std::uint64_t at) {
        return fail(at,
                    "a reader's heap of at most " + std::to_string(walk_.limits.memory) + " bytes",
                    "at least " + std::to_string(walk_.heap.peak()));
    }
    [[gnu::cold, gnu::noinline]] bool too_much_work(std::uint64_t at) {
        return fail(
            at, "at most " + std::to_string(walk_.limits.work) + " comparisons of keys by a reader",
            "at least " + std::to_string(visitor_.work()) +
                ", since many keys collide in its hash tables");
    }
    [[gnu::cold, gnu::noinline]] bool no_length(char const* what) {
        return fail(walk_.offset(), std::string("the length of ") + what, "the end of the bytes");
    }

    [[gnu::cold, gnu::noinline]] bool too_many_strings(std::uint64_t at) {
        return fail(at, "at most " + std::to_string(StringTable::most) + " strings", "one more");
    }

    [[gnu::cold, gnu::noinline]] void odd_tag(Type const& type, std::int32_t tag) {
        odd(Oddity::unknown, walk_.offset() - sizeof tag,
            "a tag from 0 to " + std::to_string(type.arms.size() - 1),
            [&] { return tag == -1 ? std::string("-1, an unset variant") : std::to_string(tag); });
    }

    [[gnu::cold, gnu::noinline]] void odd_flag(std::uint64_t at, char byte) {
        odd(Oddity::other, at, "T or F", [&] {
            return byte_text(byte) + (is_blank(byte) ? ", which a reader of a stream skips" : "");
        });
    }

    [[gnu::cold, gnu::noinline]] void odd_id(std::uint64_t at, std::int32_t id) {
        // Shown without a sign: the id may be INT32_MIN.
        odd(Oddity::other, at, "id " + std::to_string(walk_.strings.count()),
            [&] { return "id " + std::to_string(static_cast<std::uint32_t>(id)); });
    }

    [[gnu::cold, gnu::noinline]] void odd_reference(std::int32_t id) {
        odd(Oddity::other, walk_.offset() - sizeof id, "an id that is defined before",
            [&] { return "id " + std::to_string(id); });
    }

    [[gnu::cold, gnu::noinline]] void odd_repetition(std::uint64_t at) {
        odd(Oddity::other, at, "a back-reference",
            [] { return "a second definition of the same text"; });
    }

    [[gnu::cold, gnu::noinline]] void odd_enumerator(Type const& type, std::int32_t number) {
        odd(Oddity::unknown, walk_.offset() - sizeof number,
            "an enumerator from 0 to " + std::to_string(type.enumerators.size() - 1),
            [&] { return std::to_string(number); });
    }

    [[gnu::cold, gnu::noinline]] void odd_key(Type const& type, std::uint64_t at) {
        odd(Oddity::repeated, at, "a new key or element",
            [&] { return walk_.keys.text(type, at) + " again"; });
    }

    [[gnu::cold, gnu::noinline]] void odd_number(std::uint64_t at, std::string_view text) {
        odd(Oddity::other, at, "a number as a writer spells it", [&] { return quoted(text); });
    }

    [[gnu::cold, gnu::noinline]] void odd_double(std::uint64_t at, std::string_view text) {
        odd(Oddity::other, at, "a number as a writer spells it", [&] {
            auto const point = other_point_of(text, walk_.point());
            return quoted(text) +
                   (point ? ", as a writer spells it where the decimal point is " + quoted(*point)
                          : "");
        });
    }

    template <class Found>
    [[gnu::cold, gnu::noinline]] void odd(Oddity oddity, std::uint64_t at,
                                          std::string_view expected, Found const& found) {
        visitor_.odd(oddity, [&] {
            return Finding{Severity::odd, at, walk_.path(), std::string(expected), found()};
        });
    }

    [[gnu::cold, gnu::noinline]] bool fail(std::uint64_t at, std::string expected,
                                           std::string found) {
        visitor_.unsafe(
            {Severity::unsafe, at, walk_.path(), std::move(expected), std::move(found)});
        return false;
    }

    Walk&    walk_;
    Visitor& visitor_;
};

}  // namespace sml::inspect

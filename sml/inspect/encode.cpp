#include <sml/inspect/encode.hpp>

#include <sml/inspect/memory.hpp>
#include <sml/inspect/text/double_text.hpp>
#include <sml/inspect/text/json_reader.hpp>
#include <sml/inspect/text/json_text.hpp>
#include <sml/inspect/text/nearest.hpp>
#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/text/quote.hpp>
#include <sml/inspect/walk/path.hpp>
#include <sml/inspect/wire/hashing.hpp>
#include <sml/inspect/wire/patched_output.hpp>
#include <sml/inspect/wire/writer.hpp>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory_resource>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sml::inspect {

namespace {

constexpr std::uint64_t longest_block = std::numeric_limits<std::int32_t>::max();

std::string in_quotes(std::string_view name) { return '"' + std::string(name) + '"'; }

class Encoder {
public:
    Encoder(std::string_view text, std::ostream& out, EncodeOptions const& options)
        : budget_(options.limits.own_memory),
          json_(text, &budget_),
          out_(out),
          options_(options),
          ids_(&budget_),
          whole_key_(&budget_) {}

    Root const& run() {
        json_.open('{', "an object with \"root\" and \"value\"");
        take_member("root");
        Root const& root = take_root();
        take_member("value");
        value(*root.type);
        json_.close('}', "the end of the object");
        json_.end();
        out_.flush();
        return root;
    }

    std::string path() const {
        std::string path;
        for (Step const& step : steps_)
            if (step.part != Step::nowhere) append_step(path, *step.type, step.part, step.key);
        return path;
    }

private:
    struct Step {
        Type const*   type;
        std::uint64_t part = nowhere;
        std::string   key{};  // of the entry of a map, as paths show it, once it has been read

        static constexpr std::uint64_t nowhere = ~std::uint64_t{0};
    };

    Root const& take_root() {
        std::size_t const at = json_.offset();
        auto const        stem = json_.string("the stem of a root");
        if (Root const* const root = find_root(stem)) return *root;
        auto const nearest = nearest_name(stem, roots(), [](Root const& r) { return r.stem; });
        json_.fail(at, "a root such as " + in_quotes(nearest), quoted(stem));
    }

    // Functions that don't recurse are not inlined here: so the frames of those that do stay small,
    // and deep values are safe.
    void value(Type const& type) {
        switch (type.kind) {
            case Kind::optional: optional(type); return;
            case Kind::boxed: value(*type.element); return;
            case Kind::variant:
            case Kind::list:
            case Kind::set:
            case Kind::map: nested(type); return;
            case Kind::record:
            case Kind::group:
            case Kind::tuple:
            case Kind::flags: inside(type); return;
            default: leaf(type); return;
        }
    }

    [[gnu::noinline]] void leaf(Type const& type) {
        switch (type.kind) {
            case Kind::int32: word<std::int32_t>(small_integer<std::int32_t>()); return;
            case Kind::uint32: word<std::uint32_t>(small_integer<std::uint32_t>()); return;
            case Kind::int64: word<std::int64_t>(large_integer<std::int64_t>()); return;
            case Kind::uint64: word<std::uint64_t>(large_integer<std::uint64_t>()); return;
            case Kind::flag: boolean(); return;
            case Kind::number: block(number()); return;
            case Kind::big_integer: big_integer(); return;
            case Kind::ieee_float: ieee_float(); return;
            case Kind::string: string(); return;
            case Kind::text: text(); return;
            case Kind::enumeration: enumeration(type); return;
            default: reference(type); return;
        }
    }

    void nested(Type const& type) {
        std::uint32_t const most = std::min(options_.limits.depth, Limits::depth_cap);
        if (nesting_ >= most) refuse_depth(most);
        ++nesting_;
        inside(type);
        --nesting_;
    }

    [[noreturn, gnu::noinline]] void refuse_depth(std::uint32_t most) {
        json_.fail(json_.offset(),
                   "at most " + std::to_string(most) + " levels of variants and containers",
                   "one more");
    }

    void inside(Type const& type) {
        steps_.push_back({&type});
        switch (type.kind) {
            case Kind::variant: variant(type); break;
            case Kind::flags: flags(type); break;
            case Kind::list:
            case Kind::set:
            case Kind::map: container(type); break;
            case Kind::tuple: tuple(type); break;
            default: record(type); break;
        }
        steps_.pop_back();
    }

    [[gnu::noinline]] void record(Type const& type) {
        json_.open('{', "an object");
        show_key("(");
        for (std::uint64_t i = 0; i < type.parts.size(); ++i) {
            take_field(type, i);
            steps_.back().part = i;
            if (i > 0) show_key(",");
            value(*type.parts[i].type);
            steps_.back().part = Step::nowhere;
        }
        show_key(")");
        json_.close('}', "no more fields");
    }

    [[gnu::noinline]] void take_field(Type const& type, std::uint64_t index) {
        std::string_view const expected = type.parts[index].name;
        std::size_t const      at = json_.offset();
        if (!json_.next('}')) json_.fail(at, "the field " + in_quotes(expected), "the end");
        std::size_t const name_at = json_.offset();
        auto const        name = json_.name();
        if (name == expected) return;
        bool const is_elsewhere =
            std::ranges::find(type.parts, name, &Part::name) != type.parts.end();
        json_.fail(name_at, "the field " + in_quotes(expected),
                   quoted(name) +
                       (is_elsewhere ? ", which has another place" : ", which is no field here"));
    }

    [[gnu::noinline]] void tuple(Type const& type) {
        json_.open('[', "an array of " + std::to_string(type.parts.size()));
        show_key("(");
        for (std::uint64_t i = 0; i < type.parts.size(); ++i) {
            take_element(type.parts.size());
            steps_.back().part = i;
            if (i > 0) show_key(",");
            value(*type.parts[i].type);
            steps_.back().part = Step::nowhere;
        }
        show_key(")");
        json_.close(']', "at most " + std::to_string(type.parts.size()) + " elements");
    }

    [[gnu::noinline]] void flags(Type const& type) {
        json_.open('[', "an array of " + std::to_string(type.flag_count));
        for (std::uint32_t i = 0; i < type.flag_count; ++i) {
            take_element(type.flag_count);
            steps_.back().part = i;
            boolean();
            steps_.back().part = Step::nowhere;
        }
        json_.close(']', "at most " + std::to_string(type.flag_count) + " elements");
    }

    [[gnu::noinline]] void take_element(std::uint64_t count) {
        std::size_t const at = json_.offset();
        if (!json_.next(']')) json_.fail(at, std::to_string(count) + " elements", "the end");
    }

    [[gnu::noinline]] void container(Type const& type) {
        json_.open('[', type.kind == Kind::map ? "an array of [key, value]" : "an array");
        std::uint64_t const count_offset = out_.offset();
        word(std::uint32_t{0});
        Keys          keys(&budget_);
        std::uint32_t count = 0;
        std::size_t   at = json_.offset();
        for (; json_.next(']'); ++count, at = json_.offset()) {
            if (count == std::numeric_limits<std::uint32_t>::max())
                json_.fail(at, "no more elements", "one more");
            if (++elements_ > options_.limits.elements)
                json_.fail(at, "elements in all up to " + std::to_string(options_.limits.elements),
                           "one more");
            if (options_.progress != nullptr)
                options_.progress->store(at, std::memory_order_relaxed);
            steps_.back().part = count;
            entry(type, keys);
            steps_.back().part = Step::nowhere;
        }
        out_.patch(count_offset, count);
    }

    using Keys = std::pmr::unordered_set<std::pmr::string, SeededHash>;

    void entry(Type const& type, Keys& keys) {
        if (type.kind == Kind::list) return value(*type.element);
        if (type.kind == Kind::set) {
            key(*type.element, keys);
            return;
        }
        json_.open('[', "an array of a key and a value");
        take_element(2);
        steps_.back().key = key(*type.key, keys);
        take_element(2);
        value(*type.element);
        json_.close(']', "at most a key and a value");
        steps_.back().key.clear();
    }

    /// Takes a key or element. Returns it as paths show it.
    std::string key(Type const& type, Keys& keys) {
        std::size_t const at = json_.offset();
        whole_key_.clear();
        shown_key_.clear();
        in_key_ = true;
        key_is_unequal_ = false;
        value(type);
        in_key_ = false;
        if (!key_is_unequal_ && !keys.insert(whole_key_).second)
            json_.fail(at, "a new key or element", shown_key_ + " again");
        return shown_key_;
    }

    [[gnu::noinline]] void variant(Type const& type) {
        std::int32_t const tag = arm(type);
        word(tag);
        Arm const* const arm = type.arm_of(tag);
        key_is_unequal_ = key_is_unequal_ || tag < 0;
        if (type.has_tag(tag)) show_key(arm->name);
        if (arm != nullptr && arm->payload != nullptr) {
            take_member("args");
            steps_.back().part = static_cast<std::uint64_t>(arm - type.arms.data());
            show_key(" ");
            value(*arm->payload);
            steps_.back().part = Step::nowhere;
        }
        json_.close('}', "the end of the object");
    }

    void reference(Type const& type) {
        std::int32_t const tag = arm(type);
        take_member("args");
        writer_.reference(tag, type.is_signed_word(tag)
                                   ? static_cast<std::uint64_t>(large_integer<std::int64_t>())
                                   : large_integer<std::uint64_t>());
        json_.close('}', "the end of the object");
    }

    /// Takes the start of the object of a variant or reference, up to the member that gives the
    /// tag.
    [[gnu::noinline]] std::int32_t arm(Type const& type) {
        json_.open('{', "an object with \"arm\"");
        take_member("arm");
        std::size_t const at = json_.offset();
        if (json_.take_null()) return unknown_tag(type);
        auto const name = json_.string("the name of an arm, or null");
        auto const found = std::ranges::find(type.arms, name, &Arm::name);
        if (found != type.arms.end()) return static_cast<std::int32_t>(found - type.arms.begin());
        auto const nearest = nearest_name(name, type.arms, [](Arm const& a) { return a.name; });
        json_.fail(at, "an arm such as " + in_quotes(nearest), quoted(name));
    }

    std::int32_t unknown_tag(Type const& type) {
        take_member("tag");
        std::size_t const at = json_.offset();
        auto const        tag = small_integer<std::int32_t>();
        if (type.has_tag(tag))
            json_.fail(at, "the arm " + in_quotes(type.arms[static_cast<std::size_t>(tag)].name),
                       "its tag " + std::to_string(tag));
        return tag;
    }

    [[gnu::noinline]] void take_member(std::string_view expected) {
        std::size_t const at = json_.offset();
        if (!json_.next('}')) json_.fail(at, "the member " + in_quotes(expected), "the end");
        std::size_t const name_at = json_.offset();
        auto const        name = json_.name();
        if (name != expected)
            json_.fail(name_at, "the member " + in_quotes(expected), quoted(name));
    }

    void enumeration(Type const& type) {
        std::size_t const at = json_.offset();
        if (json_.peek() != '"') return unknown_enumerator(type);
        auto const name = json_.string("the name of an enumerator");
        auto const found = std::ranges::find(type.enumerators, name);
        if (found != type.enumerators.end()) {
            show_key(name);
            return word(static_cast<std::int32_t>(found - type.enumerators.begin()));
        }
        auto const nearest =
            nearest_name(name, type.enumerators, [](std::string_view one) { return one; });
        json_.fail(at, "an enumerator such as " + in_quotes(nearest), quoted(name));
    }

    void unknown_enumerator(Type const& type) {
        std::size_t const at = json_.offset();
        auto const number = small_integer<std::int32_t>("the name of an enumerator, or a number");
        if (type.has_tag(number))
            json_.fail(at, in_quotes(type.enumerators[static_cast<std::size_t>(number)]),
                       "its number " + std::to_string(number));
        word(number);
    }

    void optional(Type const& type) {
        bool const is_present = !json_.take_null();
        flag(is_present);
        if (!is_present) show_key("null");
        if (is_present) value(*type.element);
    }

    template <class Word>
    Word small_integer(std::string_view expected = "an integer") {
        std::size_t const      at = json_.offset();
        std::string_view const text = json_.number(expected);
        Budget::Hold const     held(budget_, text.size());
        auto const             number = integer_of_json(text);
        if (!number || *number < std::numeric_limits<Word>::min() ||
            *number > std::numeric_limits<Word>::max())
            json_.fail(at,
                       "an integer from " + std::to_string(std::numeric_limits<Word>::min()) +
                           " to " + std::to_string(std::numeric_limits<Word>::max()),
                       shown_number(text));
        if (in_key_) show_key(std::to_string(*number));
        return static_cast<Word>(*number);
    }

    template <class Word>
    Word large_integer() {
        std::size_t const at = json_.offset();
        auto const        text = json_.string("an integer in a string");
        Word              number = 0;
        char const* const end = text.data() + text.size();
        auto const        parsed = std::from_chars(text.data(), end, number);
        if (parsed.ec != std::errc() || parsed.ptr != end)
            json_.fail(at,
                       "an integer from " + std::to_string(std::numeric_limits<Word>::min()) +
                           " to " + std::to_string(std::numeric_limits<Word>::max()),
                       quoted(text));
        if (in_key_) show_key(std::to_string(number));
        return number;
    }

    void big_integer() {
        std::size_t const at = json_.offset();
        auto const        text = json_.string("an integer in a string");
        std::string_view  digits = text;
        if (digits.starts_with('-')) digits.remove_prefix(1);
        if (digits.empty() || digits.find_first_not_of("0123456789") != digits.npos)
            json_.fail(at, "an integer", quoted(text));
        Budget::Hold const held(budget_, memory_for_conversion(text.size()));
        std::string const  hexadecimal = hexadecimal_of(text);
        show_key(hexadecimal);
        judge_length(json_.offset(), hexadecimal.size() + zeros_behind(hexadecimal));
        write([&](auto& writer) { writer.big_integer(hexadecimal); });
    }

    std::string number() {
        std::size_t const at = json_.offset();
        if (json_.peek() == '"') {
            auto const text = json_.string("a number");
            for (std::string_view const name : {"inf", "-inf", "nan", "-nan"})
                if (text == name) return std::string(name);
            json_.fail(at, R"(a number, "inf", "-inf", "nan" or "-nan")", quoted(text));
        }
        std::string_view const text = json_.number("a number");
        auto const             value = nearest_double(text);
        if (!value) json_.fail(at, "a number that a double holds", shown_number(text));
        return written_double(*value);
    }

    void ieee_float() {
        json_.open('{', "an object with \"width\" and \"hex\"");
        take_member("width");
        std::size_t const width_at = json_.offset();
        auto const        width = small_integer<std::int32_t>();
        if (!is_float_width(width))
            json_.fail(width_at, "16, 32, 40, 48, 64, 80 or 128", std::to_string(width));
        take_member("hex");
        std::size_t const at = json_.offset();
        auto const        text = json_.string("a float in a string");
        if (!is_written_float(text, width))
            json_.fail(at,
                       "a float of this width as a writer spells it, such as " +
                           quoted(float_of(text, width)),
                       quoted(text));
        json_.close('}', "the end of the object");
        judge_length(json_.offset(), text.size());
        writer_.ieee_float(text, width);
    }

    void string() {
        std::size_t const at = json_.offset();
        auto              text = json_.string("a string");
        judge_length(at, text.size());
        if (in_key_) show_key(quoted(text));
        auto const known = ids_.try_emplace(std::move(text), 0).first;
        if (ids_.size() > longest_block) json_.fail(at, "fewer strings", "one more");
        writer_.string(known->first, known->second);
        if (in_key_) key_writer_.block(known->first);
    }

    void text() {
        auto const text = json_.string("a string");
        if (in_key_) show_key(quoted(text));
        block(text);
    }

    void boolean() {
        bool const is_true = json_.boolean();
        show_key(is_true ? "true" : "false");
        flag(is_true);
    }

    void judge_length(std::size_t at, std::uint64_t length) const {
        std::uint64_t const most = std::min(longest_block, options_.limits.text_bytes);
        if (length > most)
            json_.fail(at, "a text of at most " + std::to_string(most) + " bytes",
                       std::to_string(length));
    }

    static std::string shown_number(std::string_view text) {
        constexpr std::size_t longest = 40;
        return std::string(text.substr(0, longest)) + (text.size() > longest ? "..." : "");
    }

    // These write to the key, too, while there is one. All that a key can hold but strings is
    // written by them.
    void flag(bool is_true) {
        write([&](auto& writer) { writer.flag(is_true); });
    }

    template <class Word>
    void word(Word word) {
        write([&](auto& writer) { writer.word(word); });
    }

    void block(std::string_view bytes) {
        judge_length(json_.offset(), bytes.size());
        write([&](auto& writer) { writer.block(bytes); });
    }

    template <class Write>
    void write(Write const& write_to) {
        write_to(writer_);
        if (in_key_) write_to(key_writer_);
    }

    void show_key(std::string_view text) {
        if (in_key_) shown_key_ += text;
    }

    using Ids = std::pmr::unordered_map<std::pmr::string, std::int32_t, SeededHash>;

    Budget        budget_;
    JsonReader    json_;
    PatchedOutput out_;

    Writer<PatchedOutput> writer_{out_};

    EncodeOptions const& options_;
    std::vector<Step>    steps_;
    std::uint32_t        nesting_ = 0;
    std::uint64_t        elements_ = 0;
    Ids                  ids_;
    bool                 in_key_ = false;
    bool                 key_is_unequal_ = false;
    std::pmr::string     whole_key_;  // its bytes with texts for strings, which are compared
    std::string          shown_key_;  // as paths show it

    Writer<std::pmr::string> key_writer_{whole_key_};
};

}  // namespace

Encoded encode(std::string_view json, std::ostream& out, EncodeOptions const& options) {
    Encoder encoder(json, out, options);
    try {
        return {&encoder.run(), std::nullopt};
    } catch (JsonMisfit const& misfit) {
        return {nullptr, EncodeError{position_of(json, misfit.offset), encoder.path(),
                                     misfit.expected, misfit.found}};
    }
}

}  // namespace sml::inspect

#include "fuzz/plain_checker.hpp"

#include <sml/bindings/bindings.hpp>
#include <sml/core/kinds.hpp>
#include <sml/core/text_blocks.hpp>

#include <locale.h>
#include <stdlib.h>
#include <strings.h>
#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace plain {

namespace {

using namespace sml::core;

/// Thrown at what is unsafe; without offset if bytes are missing.
struct Unsafe {
    std::optional<std::uint64_t> offset;
};

template <class... T>
struct Types {};

/// The types of the parts of a record, a group, a pair or a tuple, in wire order.
template <class T>
struct PartsOf {
    using types = decltype(std::declval<T&>().with_fields(
        [](auto&... part) { return Types<std::remove_cvref_t<decltype(part)>...>{}; }));
};
template <class... T>
struct PartsOf<std::pair<T...>> {
    using types = Types<std::remove_const_t<T>...>;
};
template <class... T>
struct PartsOf<std::tuple<T...>> {
    using types = Types<T...>;
};

template <class T>
concept Reference = requires(T value) {
    value.which;
};
template <class T>
concept Variant = !Reference<T> && requires {
    T::arms::count;
};
template <class T>
concept HasParts = PairOrTuple<T> ||(Fielded<T> && !Reference<T>);
template <class T>
concept Nests = Variant<T> || List<T> || Set<T> || Map<T>;

template <class T>
constexpr std::uint64_t least();

template <class... T>
constexpr std::uint64_t sum_of_least(Types<T...>) {
    return (0 + ... + least<T>());
}

template <class Arms, std::int32_t... Index>
constexpr std::uint64_t least_of_arms(std::integer_sequence<std::int32_t, Index...>) {
    return std::min({least<typename Arms::template payload<Index>>()...});
}

/// The fewest bytes that a value takes.
template <class T>
constexpr std::uint64_t least() {
    if constexpr (std::is_void_v<T>)
        return 0;
    else if constexpr (Word<T>)
        return sizeof(T);
    else if constexpr (std::is_same_v<T, bool> || Optional<T>)
        return 1;
    else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>)
        return 8;
    else if constexpr (Boxed<T>)
        return least<std::remove_cvref_t<decltype(*std::declval<T&>())>>();
    else if constexpr (FlagArray<T>)
        return std::tuple_size_v<T>;
    else if constexpr (Reference<T>)
        return 12;
    else if constexpr (HasParts<T>)
        return sum_of_least(typename PartsOf<T>::types{});
    else if constexpr (Variant<T>) {
        using Arms = typename T::arms;
        if constexpr (Arms::has_catch_all)
            return 4 + least_of_arms<Arms>(std::make_integer_sequence<std::int32_t, Arms::count>{});
        return 4;
    } else
        return 4;
}

/// Whether a text, parsed in the "C" locale, is within the range of doubles in every rounding mode.
bool is_in_range_in_every_rounding(std::string const& text) {
    static locale_t const plain = newlocale(LC_ALL_MASK, "C", nullptr);
    int const             before = std::fegetround();
    bool                  is_in_range = true;
    for (int const mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(mode);
        errno = 0;
        strtod_l(text.c_str(), nullptr, plain);
        is_in_range = is_in_range && errno != ERANGE;
    }
    std::fesetround(before);
    return is_in_range;
}

/// Whether a text, up to its first zero byte, is read without an exception in every locale and
/// rounding mode. Only the characters after the leading digits, up to a letter or digit, can be a
/// decimal point: the number must be in range both if they are, and if it ends before them.
bool is_double_in_every_process(std::string text) {
    constexpr char const* digits = "0123456789";
    constexpr char const* hexadecimal = "0123456789abcdefABCDEF";
    constexpr char const* letters_and_digits =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

    text.erase(0, std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with('-') || text.starts_with('+')) text.erase(0, 1);
    for (char const* name : {"inf", "nan"})
        if (strncasecmp(text.c_str(), name, 3) == 0) return true;
    // A text that starts with a decimal point is no number in a process with another one.
    if (text.find_first_of(digits) != 0) return false;

    bool const        is_hexadecimal = strncasecmp(text.c_str(), "0x", 2) == 0;
    std::size_t const start = std::min(
        text.find_first_not_of(is_hexadecimal ? hexadecimal : digits, is_hexadecimal ? 2 : 0),
        text.size());
    std::size_t const end = std::min(text.find_first_of(letters_and_digits, start), text.size());
    std::string const as_it_is = start == end ? text : text.substr(0, start);
    std::string const with_point = text.substr(0, start) + '.' + text.substr(end);
    return is_in_range_in_every_rounding(as_it_is) && is_in_range_in_every_rounding(with_point);
}

/// Each function takes a value and returns its content, as a text that is the same for equal values
/// only.
class Judge {
public:
    Judge(std::string_view bytes, std::uint32_t depth) : bytes_(bytes), depth_(depth) {}

    template <class T>
    Judgement judge() try {
        value<T>();
        if (left() > 0) throw Unsafe{at_};
        judgement_.answer = judgement_.odd_offsets.empty() ? Answer::good : Answer::odd;
        return judgement_;
    } catch (Unsafe const& unsafe) {
        judgement_.answer = Answer::unsafe;
        judgement_.unsafe_offset = unsafe.offset;
        return judgement_;
    }

private:
    template <class T>
    std::string value() {
        if (left() < least<T>()) throw Unsafe{};
        if constexpr (!Nests<T>) {
            return single<T>();
        } else {
            if (nesting_ == depth_) throw Unsafe{at_};
            ++nesting_;
            std::string content = composite<T>();
            --nesting_;
            return content;
        }
    }

    template <class T>
    std::string single() {
        if constexpr (std::is_enum_v<T>)
            return enumeration<T>();
        else if constexpr (Word<T>)
            return std::string(take(sizeof(T)));
        else if constexpr (std::is_same_v<T, bool>)
            return flag() ? "T" : "F";
        else if constexpr (std::is_same_v<T, std::string>)
            return block();
        else if constexpr (std::is_same_v<T, sml::Strings_T>)
            return string();
        else if constexpr (std::is_same_v<T, double>)
            return real();
        else if constexpr (std::is_same_v<T, sml::BigInteger>)
            return big_integer();
        else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>)
            return ieee_float();
        else if constexpr (Reference<T>)
            return reference<T>();
        else if constexpr (HasParts<T>)
            return parts(typename PartsOf<T>::types{});
        else if constexpr (FlagArray<T>)
            return flags(std::tuple_size_v<T>);
        else if constexpr (Optional<T>)
            return flag() ? "T" + value<typename T::value_type>() : "F";
        else
            return value<std::remove_cvref_t<decltype(*std::declval<T&>())>>();
    }

    template <class T>
    std::string composite() {
        if constexpr (Variant<T>)
            return variant<T>();
        else
            return container<T>();
    }

    std::string flags(std::size_t count) {
        std::string content;
        for (std::size_t i = 0; i < count; ++i) content += flag() ? 'T' : 'F';
        return content;
    }

    template <class... T>
    std::string parts(Types<T...>) {
        std::string content;
        ((content += framed(value<T>())), ...);
        return content;
    }

    template <class T>
    std::string variant() {
        using Arms = typename T::arms;
        std::uint64_t const at = at_;
        auto const          tag = word<std::int32_t>();
        std::string         content = std::to_string(tag) + ' ';
        if (tag < 0 || tag >= Arms::count) odd(at);
        // A variant with a negative tag is unequal even to itself.
        if (tag < 0) content += "at " + std::to_string(at);
        return content + payload<Arms>(Arms::arm_with_payload(tag),
                                       std::make_integer_sequence<std::int32_t, Arms::count>{});
    }

    template <class Arms, std::int32_t... Index>
    std::string payload(std::int32_t arm, std::integer_sequence<std::int32_t, Index...>) {
        std::string content;
        ((arm == Index ? void(content = payload<typename Arms::template payload<Index>>())
                       : void()),
         ...);
        return content;
    }

    template <class Payload>
    std::string payload() {
        if constexpr (std::is_void_v<Payload>)
            return {};
        else
            return value<Payload>();
    }

    template <class T>
    std::string container() {
        using Element = typename T::value_type;
        std::uint64_t const at = at_;
        auto const          count = word<std::uint32_t>();
        if (count * least<Element>() > left()) throw Unsafe{at};
        std::string           content = std::to_string(count) + ' ';
        std::set<std::string> keys;
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint64_t const start = at_;
            std::string         key;
            if constexpr (Map<T>)
                key = value<typename T::key_type>();
            else
                key = value<Element>();
            if (!List<T> && !keys.insert(key).second) odd(start);
            content += framed(key);
            if constexpr (Map<T>) content += framed(value<typename T::mapped_type>());
        }
        return content;
    }

    template <class T>
    std::string enumeration() {
        std::uint64_t const at = at_;
        auto const          number = word<std::int32_t>();
        auto const          count = static_cast<std::int32_t>(enumerators(T{}).start.size());
        if (number < 0 || number >= count) odd(at);
        return std::to_string(number);
    }

    template <class T>
    std::string reference() {
        std::uint64_t const at = at_;
        auto const          tag = word<std::int32_t>();
        if (tag < 0 || tag >= T::arms::count) odd(at);
        return std::to_string(tag) + ' ' + std::string(take(8));
    }

    bool flag() {
        std::uint64_t const at = at_;
        char const          byte = take(1).front();
        if (byte != 'T' && byte != 'F') odd(at);
        return byte == 'T';
    }

    std::string string() {
        std::uint64_t const at = at_;
        std::int64_t const  id = word<std::int32_t>();
        if (id >= 1) {
            auto const [entry, is_new] = texts_by_id_.try_emplace(id);
            if (is_new) odd(at);
            return entry->second;
        }
        std::string const text = block();
        if (-id != ++definitions_) odd(at);
        if (!texts_.insert(text).second) odd(at);
        texts_by_id_.try_emplace(-id, text);
        return text;
    }

    std::string real() {
        std::uint64_t const at = at_;
        std::string const   text = block();
        if (!is_double_in_every_process(text.c_str())) throw Unsafe{at};
        double const number = double_of(as_block(text));
        if (text_of(number) != text) odd(at);
        return std::isnan(number) ? "at " + std::to_string(at) : text_of(number);
    }

    std::string big_integer() {
        std::uint64_t const at = at_;
        std::string const   text = block();
        sml::BigInteger     number;
        parse(as_block(text), number);
        if (text_of(number) != text) odd(at);
        return text_of(number);
    }

    std::string ieee_float() {
        std::uint64_t const at = at_;
        std::string const   text = block();
        std::uint64_t const width_at = at_;
        if (left() < 4) throw Unsafe{};
        zelvanite::IEEE754Float number;
        number.width = static_cast<std::uint64_t>(std::int64_t{word<std::int32_t>()});
        if (zelvanite::IEEE754Float::Format::of(number.width).mantissa_bits == 0)
            throw Unsafe{width_at};
        parse(as_block(text), number);
        FloatText const   printed(number);
        std::string const content(printed.data(), printed.size());
        if (content != text) odd(at);
        return content + ' ' + std::to_string(number.width);
    }

    /// Takes a length word and as many bytes.
    std::string block() {
        std::uint64_t const at = at_;
        if (left() < 4) throw Unsafe{};
        std::int64_t const length = word<std::int32_t>();
        if (length < 0 || static_cast<std::uint64_t>(length) > left()) throw Unsafe{at};
        return std::string(take(static_cast<std::uint64_t>(length)));
    }

    static TextBlock as_block(std::string const& text) {
        TextBlock block = make_block(static_cast<std::int32_t>(text.size()));
        std::ranges::copy(text, block.get());
        return block;
    }

    static std::string framed(std::string const& content) {
        return std::to_string(content.size()) + ' ' + content;
    }

    std::uint64_t left() const { return bytes_.size() - at_; }

    std::string_view take(std::uint64_t size) {
        at_ += size;
        return bytes_.substr(at_ - size, size);
    }

    template <class T>
    T word() {
        T word;
        std::memcpy(&word, take(sizeof word).data(), sizeof word);
        return word;
    }

    void odd(std::uint64_t at) { judgement_.odd_offsets.insert(at); }

    std::string_view                    bytes_;
    std::uint32_t                       depth_;
    std::uint64_t                       at_ = 0;
    std::uint32_t                       nesting_ = 0;
    std::int64_t                        definitions_ = 0;
    std::map<std::int64_t, std::string> texts_by_id_;
    std::set<std::string>               texts_;
    Judgement                           judgement_;
};

}  // namespace

Judgement judge(std::size_t root, std::string_view bytes, std::uint32_t depth) {
    Judge       judge(bytes, depth);
    std::size_t place = 0;
#define SML_ROOT(Stem, ...) \
    if (root == place++) return judge.template judge<__VA_ARGS__>();
#include <sml/bindings/roots.def>
    throw std::out_of_range("no such root");
}

}  // namespace plain

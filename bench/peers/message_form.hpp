#pragma once
// Shared by the peers that have a schema of their own: texts by number, numbers by limbs, arms and
// containers.

#include <sml/core/kinds.hpp>
#include <sml/core/string_ids.hpp>

#include <gmp.h>
#include <mpfr.h>
#include <cstdio>

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace peers {

/// Numbers texts from 0, in the order of their first occurrence.
class TextNumbers {
public:
    std::uint32_t operator()(sml::Strings_T const& handle) {
        auto const id = static_cast<std::uint32_t>(ids_.find_or_add(handle));
        if (id != 0) return id - 1;
        texts_.push_back(&handle.str());
        return static_cast<std::uint32_t>(texts_.size() - 1);
    }

    /// The texts by number; the pointers are valid as long as the strings' handles live.
    std::vector<std::string const*> const& texts() const { return texts_; }

private:
    sml::core::IdsByString          ids_;
    std::vector<std::string const*> texts_;
};

/// A float with a mantissa of at most 128 bits, as plain words.
struct FloatWords {
    enum Kind : std::uint8_t { Regular, Zero, Infinite, NotANumber };

    static constexpr std::uint8_t negative = 4;  // added to the kind

    std::uint64_t high{};
    std::uint64_t low{};
    std::int32_t  exponent{};
    std::uint32_t width{};
    std::uint8_t  kind{};
};

inline FloatWords words_of(zelvanite::IEEE754Float const& value) {
    mpfr_srcptr const number = value.number();
    FloatWords        words;
    words.width = static_cast<std::uint32_t>(value.width);
    if (mpfr_regular_p(number) != 0) {
        words.exponent = static_cast<std::int32_t>(number->_mpfr_exp);
        bool const is_long = mpfr_get_prec(number) > 64;
        words.high = number->_mpfr_d[is_long ? 1 : 0];
        if (is_long) words.low = number->_mpfr_d[0];
    } else {
        words.kind = mpfr_nan_p(number) != 0   ? FloatWords::NotANumber
                     : mpfr_inf_p(number) != 0 ? FloatWords::Infinite
                                               : FloatWords::Zero;
    }
    if (mpfr_signbit(number) != 0) words.kind |= FloatWords::negative;
    return words;
}

inline void set_float(zelvanite::IEEE754Float& value, FloatWords const& words) {
    auto const format = zelvanite::IEEE754Float::Format::of(words.width);
    zelvanite::IEEE754Float::set_range(format);
    mpfr_ptr const number = value.number();
    value.width = words.width;
    mpfr_set_prec(number, format.mantissa_bits);
    int const sign = (words.kind & FloatWords::negative) != 0 ? -1 : 1;
    switch (words.kind % FloatWords::negative) {
        case FloatWords::Zero: mpfr_set_zero(number, sign); break;
        case FloatWords::Infinite: mpfr_set_inf(number, sign); break;
        case FloatWords::NotANumber: break;  // which it already is
        default:
            number->_mpfr_sign = sign;
            number->_mpfr_exp = words.exponent;
            number->_mpfr_d[format.mantissa_bits > 64 ? 1 : 0] = words.high;
            if (format.mantissa_bits > 64) number->_mpfr_d[0] = words.low;
    }
}

inline bool is_small(sml::BigInteger const& value) {
    mpz_srcptr const number = value.backend().data();
    return mpz_size(number) <= 1 && mpz_getlimbn(number, 0) <= INT64_MAX;
}
inline std::int64_t small(sml::BigInteger const& value) {
    mpz_srcptr const number = value.backend().data();
    auto const       absolute = static_cast<std::int64_t>(mpz_getlimbn(number, 0));
    return mpz_sgn(number) < 0 ? -absolute : absolute;
}

/// Appends the sign and the limbs.
inline void append_large(std::string& bytes, sml::BigInteger const& value) {
    mpz_srcptr const number = value.backend().data();
    bytes += static_cast<char>(mpz_sgn(number));
    bytes.append(reinterpret_cast<char const*>(mpz_limbs_read(number)),
                 mpz_size(number) * sizeof(mp_limb_t));
}

/// If there are no bytes, the value is `small`.
inline void set_integer(sml::BigInteger& value, std::int64_t small, char const* bytes,
                        std::size_t size) {
    mpz_ptr const number = value.backend().data();
    if (size == 0) return mpz_set_si(number, small);
    mpz_import(number, (size - 1) / sizeof(mp_limb_t), -1, sizeof(mp_limb_t), 0, 0, bytes + 1);
    if (bytes[0] < 0) mpz_neg(number, number);
}

/// Converts enumerators to numbers; returns other values unchanged.
template <class T>
auto word_of(T const& value) {
    if constexpr (std::is_enum_v<T>)
        return static_cast<std::int32_t>(value);
    else
        return value;
}

/// The arm whose payload follows the tag; -1 if there is no payload.
template <class Variant>
std::int32_t arm_of(Variant const& variant) {
    return Variant::arms::arm_with_payload(variant.tag);
}

/// Calls `use` with the payload of the catch-all arm, which is the last. A payload that was not
/// built counts as its default value.
template <std::int32_t Last, class Variant, class Use>
void with_last_payload(Variant const& variant, Use const& use) {
    using Payload = typename Variant::arms::template payload<Last>;
    variant.visit_payload([&]<class Held>(Held const& held) {
        if constexpr (std::is_same_v<Held, Payload>) use(held);
    });
}

template <class T, class Size>
void reserve(T& container, Size size) {
    if constexpr (sml::core::HashSet<T> || sml::core::HashMap<T>)
        container.reserve(static_cast<std::size_t>(size));
}

template <class T, class Fill>
void load_element(T& container, Fill const& fill) {
    if constexpr (sml::core::List<T>) {
        fill(container.emplace_back());
    } else {
        typename T::value_type element{};
        fill(element);
        container.emplace_hint(container.end(), std::move(element));
    }
}

template <class T, class FillKey, class FillValue>
void load_entry(T& container, FillKey const& fill_key, FillValue const& fill_value) {
    typename T::key_type key{};
    fill_key(key);
    fill_value(container.try_emplace(container.end(), std::move(key))->second);
}

}  // namespace peers

#pragma once
// Makes random values of every type of the schema, from a seed.

#include <sml/core/kinds.hpp>

#include <cstdint>
#include <random>
#include <string>
#include <type_traits>

/// Fills values at random. A value that it makes is equal to its copy and is the same after writing
/// and reading: every variant is set, no float is NaN, and doubles have at most six decimals.
class RandomValues {
public:
    struct Limits {
        int elements = 3;  ///< most entries of a container
        int depth = 6;     ///< most variants in one another
    };

    explicit RandomValues(std::uint64_t seed) : RandomValues(seed, Limits{}) {}
    RandomValues(std::uint64_t seed, Limits limits) : engine_(seed), limits_(limits) {}

    template <class T>
    T make() {
        T value{};
        fill(value);
        return value;
    }

    /// Fills `value`, which must be fresh.
    template <class T>
    void fill(T& value) {
        using namespace sml::core;
        if constexpr (std::is_enum_v<T>) {
            value = static_cast<T>(below(static_cast<int>(enumerators(T{}).start.size())));
        } else if constexpr (Word<T>) {
            value = word<T>();
        } else if constexpr (Optional<T>) {
            fill_optional(value);
        } else if constexpr (Boxed<T>) {
            fill(*value);
        } else if constexpr (List<T>) {
            for (int i = below(limits_.elements + 1); i > 0; --i) fill(value.emplace_back());
        } else if constexpr (Set<T>) {
            for (int i = below(limits_.elements + 1); i > 0; --i)
                value.insert(make<typename T::value_type>());
        } else if constexpr (Map<T>) {
            for (int i = below(limits_.elements + 1); i > 0; --i)
                value.emplace(make<typename T::key_type>(), make<typename T::mapped_type>());
        } else if constexpr (PairOrTuple<T>) {
            std::apply([this](auto&... part) { (this->fill(part), ...); }, value);
        } else if constexpr (FlagArray<T>) {
            for (bool& flag : value) fill(flag);
        } else if constexpr (requires { value.which; }) {
            value.which = below(2);
            value.value = word<std::uint64_t>();
        } else if constexpr (HashedVariant<T>) {
            fill_arm(value, below(T::arms::count));
        } else if constexpr (Fielded<T>) {
            value.with_fields([this](auto&... field) { (this->fill(field), ...); });
        } else {
            fill_leaf(value);
        }
    }

    /// Chooses the arm with this tag and fills its payload. If values are nested too deeply, it
    /// chooses an arm without a payload instead, where there is one.
    template <class Variant>
    void fill_arm(Variant& value, std::int32_t tag) {
        ++nesting_;
        if constexpr (requires { Variant::arms::names; }) {
            value.choose_tag(nesting_ > limits_.depth ? shallow_tag<Variant>() : tag);
            value.visit_payload([this](auto const& payload) {
                this->fill(const_cast<std::remove_cvref_t<decltype(payload)>&>(payload));
            });
        }
        --nesting_;
    }

    /// A number from 0 to `bound` - 1.
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(engine_); }

private:
    template <class T>
    T word() {
        // Words of each length in bytes are drawn equally often; half of them are inverted, so that
        // those of few bytes are small or negative.
        auto const bits = engine_() >> (8 * static_cast<unsigned>(below(8)));
        return static_cast<T>(below(2) == 0 ? bits : ~bits);
    }

    template <class T>
    void fill_optional(T& value) {
        value.reset();
        if (below(2) == 1 && nesting_ <= limits_.depth) fill(value.emplace());
    }

    void fill_leaf(bool& value) { value = below(2) == 1; }
    void fill_leaf(double& value) { value = static_cast<double>(word<std::int32_t>()) / 64.0; }
    void fill_leaf(sml::Strings_T& value) { value = text(); }
    void fill_leaf(std::string& value) { value = text(); }

    void fill_leaf(sml::BigInteger& value) {
        value = word<std::int64_t>();
        for (int i = below(4); i > 0; --i) value = value * word<std::int64_t>();
    }

    void fill_leaf(zelvanite::IEEE754Float& value) {
        constexpr std::uint64_t widths[] = {16, 32, 40, 48, 64, 80, 128};
        value.width = widths[below(7)];
        auto const format = zelvanite::IEEE754Float::Format::of(value.width);
        zelvanite::IEEE754Float::set_range(format);
        mpfr_set_prec(value.number(), format.mantissa_bits);
        mpfr_set_si(value.number(), word<std::int32_t>() % 1000, MPFR_RNDN);
        mpfr_div_ui(value.number(), value.number(), 3, MPFR_RNDN);
    }

    // Draws from few texts, so that they repeat. Among them are the empty text and texts of
    // arbitrary bytes.
    std::string text() {
        std::string result;
        for (int i = below(4); i > 0; --i) result += static_cast<char>(word<std::uint32_t>());
        return below(3) == 0 ? result : "name " + std::to_string(below(12));
    }

    // The first arm without a payload, which ends the nesting.
    template <class Variant>
    static std::int32_t shallow_tag() {
        for (std::int32_t tag = 0; tag < Variant::arms::count; ++tag)
            if (!Variant::arms::has_payload[static_cast<std::size_t>(tag)]) return tag;
        return 0;
    }

    std::mt19937_64 engine_;
    Limits          limits_;
    int             nesting_ = 0;
};

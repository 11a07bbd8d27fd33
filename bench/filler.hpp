#pragma once
// Fills values of the schema's types with content that a real analysis would produce.

#include "bench/draws.hpp"
#include "bench/mix.hpp"
#include "bench/names.hpp"

#include <sml/core/kinds.hpp>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace bench {

/// The arms that are drawn for variants.
enum class Arms_Drawn { usual, with_payload };

/// Fills fresh values: visits the fields in a fixed order and draws each leaf.
class Filler {
public:
    Filler(Names const& names, std::uint64_t seed, Arms_Drawn arms)
        : draws_(seed), names_(&names), arms_(arms) {}

    Draws& draws() { return draws_; }

    template <class T>
    void fill(T& value) {
        using namespace sml::core;
        if constexpr (requires(Filler & self) { self.draw(value); }) {
            draw(value);
        } else if constexpr (std::is_enum_v<T>) {
            value = static_cast<T>(draws_.below(enumerators(T{}).start.size()));
        } else if constexpr (Optional<T>) {
            if (draws_.chance(percent_present<typename T::value_type>)) fill(value.emplace());
        } else if constexpr (Boxed<T>) {
            fill(*value);
        } else if constexpr (List<T> || Set<T> || Map<T>) {
            for (auto left = draw_count<T>(); left > 0; --left) add_entry(value);
        } else if constexpr (PairOrTuple<T>) {
            std::apply([this](auto&... part) { (this->fill(part), ...); }, value);
        } else if constexpr (HashedVariant<T>) {
            fill_any_arm(value);
        } else {
            static_assert(Fielded<T>, "nothing says how to draw this type");
            value.with_fields([this](auto&... field) { (this->fill(field), ...); });
        }
    }

    /// Adds a drawn entry; an entry with a repeated key is dropped.
    template <class T>
    void add_entry(T& container) {
        using namespace sml::core;
        if constexpr (List<T>) {
            fill(container.emplace_back());
        } else if constexpr (Set<T>) {
            typename T::value_type element{};
            fill(element);
            container.insert(std::move(element));
        } else {
            typename T::key_type key{};
            fill(key);
            auto const [entry, inserted] = container.try_emplace(std::move(key));
            if (inserted) fill(entry->second);
        }
    }

private:
    void draw(bool& value) { value = draws_.chance(50); }
    void draw(std::int32_t& value) { value = static_cast<std::int32_t>(draws_.below(10000)); }
    void draw(std::uint32_t& value) { value = draws_.below(4); }
    void draw(std::int64_t& value) { value = static_cast<std::int64_t>(draws_.bits() >> 24); }
    void draw(std::uint64_t& value) { value = draws_.bits() >> 24; }
    void draw(double& value) { value = draws_.below(10000); }
    void draw(zelvanite::IEEE754Float& value) { draws_.real(value, draws_.width()); }
    void draw(sml::Strings_T& value) { value = names_->draw_identifier(draws_); }
    void draw(sml::BigInteger& value) { draws_.integer(value); }
    void draw(sml::Localization::T_Localization& value);
    void draw(sml::Checks::T_Check_Category& value);
    void draw(sml::Infos::T_Information_Category& value);
    void draw(sml::Infos::T_Information_Value& value);
    void draw(sml::Infos::T_Range& value);

    void fill_integral(sml::Infos::T_Information_Value& value);
    void fill_real(sml::Infos::T_Information_Value& value);
    void fill_interval(sml::Infos::T_Range::Int_Interval_parts& interval);
    void fill_interval(sml::Infos::T_Range::Real_Interval_parts& interval, std::uint64_t width);
    void fill_bounds(zelvanite::IEEE754Float& lower, zelvanite::IEEE754Float& upper,
                     std::uint64_t width);
    void fill_other_category(sml::Checks::T_Check_Category& value);

    template <class T>
    std::uint32_t draw_count() {
        if (!draws_.chance(entries<T>.percent_filled)) return 0;
        return 1 + draws_.below(entries<T>.most);
    }

    template <class Variant>
    void fill_any_arm(Variant& variant) {
        constexpr auto count = static_cast<std::uint32_t>(Variant::arms::count);
        static_assert(std::ranges::count(Variant::arms::has_payload, true) > 0);
        std::uint32_t tag = draws_.below(count);
        if (arms_ == Arms_Drawn::with_payload)
            while (!Variant::arms::has_payload[tag]) tag = (tag + 1) % count;
        variant.choose_tag(static_cast<std::int32_t>(tag));
        variant.visit_payload([this](auto const& payload) {
            this->fill(const_cast<std::remove_cvref_t<decltype(payload)>&>(payload));
        });
    }

    template <sml::core::Name ArmName, class Variant>
    void fill_arm(Variant& variant) {
        if constexpr (Variant::arms::has_payload[Variant::arms::template tag_of<ArmName>()])
            fill(variant.template choose<ArmName>());
        else if (arms_ == Arms_Drawn::with_payload)
            fill_any_arm(variant);
        else
            variant.template choose<ArmName>();
    }

    Draws        draws_;
    Names const* names_;
    Arms_Drawn   arms_;
};

}  // namespace bench

#include "bench/workload.hpp"

#include <sml/bindings/bindings.hpp>
#include "bench/figures.hpp"
#include "bench/names.hpp"
#include "bench/special_files.hpp"
#include "bench/walk.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace {

using sml::Application_Results::T_Application_Results;

constexpr std::size_t many_checks = 10000;

// Shared by all tests of the mix: a process runs one of them or all.
T_Application_Results const& large_workload() {
    static T_Application_Results const value = bench::workload(many_checks);
    return value;
}

std::string bytes_of(T_Application_Results const& value) {
    return sml::Application_Results_Application_Results_fromCxx(value);
}

std::uint64_t hash_of(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (char const c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

std::uint64_t hash_of(sml::BigInteger const& value) { return hash_of(value.str()); }

std::uint64_t hash_of(zelvanite::IEEE754Float const& value) {
    mpfr_exp_t        exponent = 0;
    char* const       digits = mpfr_get_str(nullptr, &exponent, 16, 0, value.number(), MPFR_RNDN);
    std::string const text = digits;
    mpfr_free_str(digits);
    return hash_of(text + std::to_string(exponent) + ':' + std::to_string(value.width));
}

// A hash of the content of a value. It does not depend on the addresses of strings or the order of
// entries in hash tables, which differ between processes.
template <class T>
std::uint64_t content_hash(T const& value) {
    using namespace sml::core;
    std::uint64_t hash = 0;
    auto const    fold = [&hash](auto const&... parts) {
        ((hash = combine(hash, content_hash(parts))), ...);
    };
    if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>) {
        return static_cast<std::uint64_t>(value);
    } else if constexpr (std::is_same_v<T, sml::Strings_T>) {
        return hash_of(std::string_view(value.str()));
    } else if constexpr (std::is_same_v<T, sml::BigInteger> ||
                         std::is_same_v<T, zelvanite::IEEE754Float>) {
        return hash_of(value);
    } else if constexpr (Set<T> || Map<T>) {
        for (auto const& entry : value) hash += combine(0, content_hash(entry));
    } else if constexpr (List<T>) {
        for (auto const& element : value) fold(element);
    } else if constexpr (Optional<T>) {
        fold(value.has_value());
        if (value) fold(*value);
    } else if constexpr (Boxed<T>) {
        return content_hash(*value);
    } else if constexpr (PairOrTuple<T>) {
        std::apply(fold, value);
    } else if constexpr (HashedVariant<T>) {
        fold(std::int32_t{value.tag});
        value.visit_payload(fold);
    } else {
        value.with_fields(fold);
    }
    return hash;
}

// The classes of integers that the test of the mix counts.
enum class IntegerClass { below_300, bits_32, lowest_32, bits_64, larger };

IntegerClass class_of(sml::BigInteger const& value) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    if (value == lowest) return IntegerClass::lowest_32;
    if (value >= 0 && value < 300) return IntegerClass::below_300;
    if (value > lowest && value <= std::numeric_limits<std::int32_t>::max())
        return IntegerClass::bits_32;
    bool const is_64 = value >= std::numeric_limits<std::int64_t>::min() &&
                       value <= std::numeric_limits<std::int64_t>::max();
    return is_64 ? IntegerClass::bits_64 : IntegerClass::larger;
}

struct Mix {
    template <class T>
    void operator()(T const& part) {
        if constexpr (std::is_same_v<T, sml::BigInteger>) ++integers[class_of(part)];
        if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) ++widths[part.width];
        if constexpr (std::is_same_v<T, sml::Strings_T>) ++strings[part.str()];
    }

    std::map<IntegerClass, std::size_t>  integers;
    std::map<std::uint64_t, std::size_t> widths;
    std::map<std::string, std::size_t>   strings;
};

Mix const& large_mix() {
    static Mix const mix = [] {
        Mix counted;
        bench::walk(large_workload(), counted);
        return counted;
    }();
    return mix;
}

template <class Counts>
double total(Counts const& counts) {
    double sum = 0;
    for (auto const& [key, count] : counts) sum += static_cast<double>(count);
    return sum;
}

template <class Counts, class Key>
double percent(Counts const& counts, Key const& key) {
    auto const found = counts.find(key);
    EXPECT_NE(found, counts.end());
    return found == counts.end() ? 0 : 100 * static_cast<double>(found->second) / total(counts);
}

template <class Table>
std::map<std::string, std::size_t> arms_of(Table const& table) {
    std::map<std::string, std::size_t> arms;
    for (auto const& [key, entry] : table) ++arms[entry.category.toString()];
    return arms;
}

void expect_about(double value, double expected, double share) {
    EXPECT_NEAR(value, expected, expected * share);
}

TEST(Workload, IsTheSameForTheSameSeed) {
    auto const first = bench::workload(200, 7);
    auto const second = bench::workload(200, 7);
    EXPECT_EQ(first, second);
    EXPECT_EQ(bytes_of(first), bytes_of(second));
}

TEST(Workload, IsTheSameOnEveryMachine) {
    EXPECT_EQ(content_hash(bench::workload(200, 7)), 0xd9be92e93548f8ed);
}

TEST(Workload, DiffersWithTheSeed) {
    EXPECT_NE(content_hash(bench::workload(200, 7)), content_hash(bench::workload(200, 8)));
}

TEST(Workload, HasTablesOfTheRightSizes) {
    auto const& value = large_workload();
    EXPECT_EQ(value.checks.size(), many_checks);
    EXPECT_EQ(value.infos.size(), 3 * many_checks);
    EXPECT_EQ(value.events.size(), many_checks);
    EXPECT_EQ(value.blocks.size(), many_checks / 2);
    EXPECT_EQ(value.functions.size(), many_checks / 20);
    EXPECT_EQ(value.first_key_sets.size(), many_checks / 4);
    EXPECT_EQ(value.second_key_sets.size(), many_checks / 4);
    EXPECT_EQ(value.integer_sets.size(), many_checks / 100);
    EXPECT_EQ(value.signatures.size(), many_checks / 20);
}

TEST(Workload, NumbersCountTheKeysOfEachName) {
    auto const& value = large_workload();
    EXPECT_EQ(value.check_numbers.size(), many_checks / 10);
    EXPECT_EQ(total(value.block_numbers), many_checks / 2);
    EXPECT_EQ(total(value.check_numbers), many_checks);
    EXPECT_EQ(total(value.event_numbers), many_checks);
    EXPECT_EQ(total(value.info_numbers), 3 * many_checks);
    for (auto const& [key, check] : value.checks)
        ASSERT_LT(key.second, value.check_numbers.at(key.first));
}

TEST(Workload, HasFourLargeAndTwentyOtherCategoriesOfChecks) {
    auto const arms = arms_of(large_workload().checks);
    EXPECT_EQ(arms.size(), 24u);
    for (char const* const large : {"OVFL", "NIV", "ZDV", "ASSERT"})
        EXPECT_GT(percent(arms, large), 8) << large;
}

TEST(Workload, HasFourCategoriesOfInfosAlike) {
    auto const arms = arms_of(large_workload().infos);
    EXPECT_EQ(arms.size(), 4u);
    for (char const* const arm : {"IPT", "VAI", "VOO", "VORS"})
        expect_about(percent(arms, arm), 25, 0.05);
}

TEST(Workload, EveryTenthCheckHasAFailureOfZeroToEightSteps) {
    std::map<std::size_t, std::size_t> failures_by_steps;
    for (auto const& [key, check] : large_workload().checks)
        if (check.failure) ++failures_by_steps[check.failure->steps.size()];
    EXPECT_EQ(total(failures_by_steps), many_checks / 10);
    EXPECT_EQ(failures_by_steps.size(), 9u);
    EXPECT_EQ(failures_by_steps.begin()->first, 0u);
    EXPECT_EQ(failures_by_steps.rbegin()->first, 8u);
}

struct Arms {
    template <class T>
    void operator()(T const& part) {
        if constexpr (sml::core::HashedVariant<T>) {
            ++variants;
            auto const tag = static_cast<std::size_t>(std::int32_t{part.tag});
            if (part.tag < 0 || !T::arms::has_payload[tag]) ++bare;
        } else if constexpr (std::is_same_v<T, sml::Failure::T>) {
            ++failures;
            if (part.technology.tag == 3) ++failures_with_arm_3;
        }
    }

    std::size_t variants = 0;
    std::size_t bare = 0;
    std::size_t failures = 0;
    std::size_t failures_with_arm_3 = 0;
};

TEST(Workload, HasNoArmWithoutPayloadWhereNoneIsWanted) {
    Arms usual;
    bench::walk(large_workload(), usual);
    EXPECT_GT(usual.bare, many_checks);
    EXPECT_LT(usual.failures_with_arm_3, usual.failures);

    auto const value = bench::workload_with_payloads(many_checks);
    Arms       wanted;
    bench::walk(value, wanted);
    EXPECT_GT(wanted.variants, many_checks);
    EXPECT_EQ(wanted.bare, 0u);
    EXPECT_EQ(wanted.failures, many_checks / 10);
    EXPECT_EQ(wanted.failures_with_arm_3, wanted.failures);

    T_Application_Results other;
    sml::Application_Results_Application_Results_toCxx(other, bytes_of(value).c_str());
    EXPECT_TRUE(value == other);
    EXPECT_FALSE(value < other);
    EXPECT_FALSE(other < value);
}

TEST(Workload, HasTheFixedMixOfIntegers) {
    auto const& integers = large_mix().integers;
    expect_about(percent(integers, IntegerClass::below_300), 45, 0.03);
    expect_about(percent(integers, IntegerClass::bits_32), 30, 0.03);
    expect_about(percent(integers, IntegerClass::lowest_32), 13, 0.03);
    expect_about(percent(integers, IntegerClass::bits_64), 8, 0.03);
    expect_about(percent(integers, IntegerClass::larger), 4, 0.05);
}

TEST(Workload, HasTheFixedMixOfFloats) {
    auto const& widths = large_mix().widths;
    EXPECT_EQ(widths.size(), 4u);
    expect_about(percent(widths, 64u), 60, 0.03);
    expect_about(percent(widths, 32u), 34, 0.03);
    expect_about(percent(widths, 80u), 4, 0.15);
    expect_about(percent(widths, 128u), 2, 0.15);
    double const floats = total(widths);
    expect_about(floats / (floats + total(large_mix().integers)), 0.18, 0.02);
}

TEST(Workload, DrawsItsNamesFromAPool) {
    auto const& strings = large_mix().strings;
    EXPECT_EQ(strings.size(), many_checks / 10);
    bench::Names const names(many_checks, bench::default_seed);
    std::size_t        paths = 0;
    std::size_t        hot_draws = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string const& name = names[i].str();
        EXPECT_GE(name.size(), 10u);
        EXPECT_LE(name.size(), 60u);
        if (name.find('/') != std::string::npos) ++paths;
        if (i < names.hot()) hot_draws += strings.at(name);
    }
    EXPECT_EQ(paths * 5, names.size());
    expect_about(static_cast<double>(hot_draws) / total(strings), 0.5, 0.03);
}

TEST(Workload, HasTheCheckFigures) {
    auto const   figures = bench::figures(large_workload());
    double const checks = many_checks;
    EXPECT_EQ(figures.checks, many_checks);
    expect_about(static_cast<double>(figures.wire_bytes) / checks, 950, 0.05);
    expect_about(static_cast<double>(figures.string_references) / checks, 55, 0.05);
    expect_about(static_cast<double>(figures.integers) / checks, 15, 0.05);
    expect_about(static_cast<double>(figures.nodes()) / checks, 34, 0.05);
}

TEST(Workload, SurvivesTheWire) {
    auto const            value = bench::workload(200);
    std::string const     bytes = bytes_of(value);
    T_Application_Results back;
    sml::Application_Results_Application_Results_toCxx(back, bytes.data());
    EXPECT_EQ(back, value);
    EXPECT_EQ(bytes_of(back).size(), bytes.size());
}

constexpr std::size_t asked_bytes = 200000;

TEST(SpecialFiles, HaveAboutTheAskedSize) {
    using namespace sml;
    expect_about(
        static_cast<double>(
            Answers_AnswerInspectionPoint_fromCxx(bench::short_numbers(asked_bytes, 1)).size()),
        asked_bytes, 0.02);
    expect_about(static_cast<double>(
                     String_To_StringSet_T_fromCxx(bench::distinct_strings(asked_bytes, 1)).size()),
                 asked_bytes, 0.02);
    expect_about(
        static_cast<double>(Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T_fromCxx(
                                bench::string_references(asked_bytes, 1))
                                .size()),
        asked_bytes, 0.02);
}

TEST(SpecialFiles, AreNearlyAllOfOneKind) {
    Mix mix;
    bench::walk(bench::short_numbers(asked_bytes, 1), mix);
    EXPECT_EQ(mix.integers.size(), 1u);
    EXPECT_GT(mix.integers[IntegerClass::below_300], asked_bytes / 12);
    EXPECT_TRUE(mix.strings.empty());

    mix = {};
    bench::walk(bench::distinct_strings(asked_bytes, 1), mix);
    EXPECT_EQ(total(mix.strings), mix.strings.size());

    mix = {};
    bench::walk(bench::string_references(asked_bytes, 1), mix);
    EXPECT_GT(total(mix.strings), asked_bytes / 4 * 0.98);
    EXPECT_LT(mix.strings.size(), asked_bytes / 4 / 500);
}

}  // namespace

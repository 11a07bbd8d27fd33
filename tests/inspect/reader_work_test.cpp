// Tests the estimate of verify: the comparisons of keys in a reader's hash tables.

#include <sml/bindings/bindings.hpp>
#include <sml/core/kinds.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/inspect/walk/walker.hpp>
#include "tests/hash_of_16.hpp"
#include "tests/inspect/wire_bytes.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

using namespace sml::inspect;
using wire_bytes::block;
using wire_bytes::in_full;
using wire_bytes::word;

// The hashes of the keys of all hashed containers, in the order in which they are written.

template <class T>
void collect_hashes(T const& value, std::vector<std::uint64_t>& hashes) {
    using namespace sml::core;
    auto const collect = [&](auto const&... part) { (collect_hashes(part, hashes), ...); };
    if constexpr (Leaf<T> || FlagArray<T>) {
        return;
    } else if constexpr (Optional<T>) {
        if (value) collect(*value);
    } else if constexpr (Boxed<T>) {
        collect(*value);
    } else if constexpr (List<T>) {
        for (auto const& element : value) collect(element);
    } else if constexpr (Set<T>) {
        for (auto const& element : value) {
            if constexpr (HashSet<T>) hashes.push_back(value.hash_function()(element));
            collect(element);
        }
    } else if constexpr (Map<T>) {
        for (auto const& [key, mapped] : value) {
            if constexpr (HashMap<T>) hashes.push_back(value.hash_function()(key));
            collect(key, mapped);
        }
    } else if constexpr (PairOrTuple<T>) {
        std::apply(collect, value);
    } else if constexpr (requires { value.which; }) {
        return;
    } else if constexpr (HashedVariant<T>) {
        value.visit_payload(collect);
    } else {
        const_cast<T&>(value).with_fields(collect);
    }
}

constexpr std::uint64_t none = 0x6e6f6e65'6e6f6e65;

/// Collects the hashes that the walk computes for the same keys.
class HashListener : public BaseVisitor {
public:
    explicit HashListener(Walk& walk) : walk_(walk), model_(&walk.budget) {
        walk.strings.model_reader(model_);
    }

    static constexpr bool compares_keys = true;

    void part(Type const& type, std::uint64_t) {
        places_.resize(walk_.depth());
        places_.back() = {&type, walk_.offset(), hashes.size()};
        if (type.hashed) hashes.push_back(none);
    }
    // This event comes after the key, when all of its strings are known.
    void entry_value(Type const& type) {
        if (type.hashed) take(*type.key);
    }
    bool add_key(Type const& key, std::uint64_t offset, std::uint64_t) {
        places_.resize(walk_.depth());
        bool const is_set = places_.back().type->kind == Kind::set;
        if (is_set && places_.back().type->hashed && places_.back().offset == offset) take(key);
        return true;
    }

    std::vector<std::uint64_t> hashes;

private:
    struct Place {
        Type const*   type;
        std::uint64_t offset;
        std::size_t   number;
    };

    void take(Type const& key) {
        places_.resize(walk_.depth());
        hashes[places_.back().number] = walk_.keys.readers_hash(key, places_.back().offset).hash;
    }

    Walk&              walk_;
    ReaderModel        model_;
    std::vector<Place> places_;
};

template <class T>
void expect_same_hashes(char const*   stem, std::string const& (*from_cxx)(T const&),
                        std::uint64_t seed, std::size_t& compared) {
    SCOPED_TRACE(stem + (", seed " + std::to_string(seed)));
    RandomValues      random(seed, {.elements = 5, .depth = 6});
    T const           value = random.make<T>();
    std::string const bytes = from_cxx(value);
    Budget            budget(~std::uint64_t{0});
    Walk              walk(bytes, {}, budget);
    HashListener      listener(walk);
    ASSERT_TRUE(Walker(walk, listener).run(*find_root(stem)->type));
    std::vector<std::uint64_t> expected;
    collect_hashes(value, expected);
    ASSERT_EQ(listener.hashes.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (listener.hashes[i] == none) continue;  // a set with one element compares no keys
        ++compared;
        ASSERT_EQ(listener.hashes[i], expected[i]) << i;
    }
}

TEST(ReaderWork, HashesAreThoseOfTheReadersTables) {
    std::uint64_t const seed = runs::seed();
    std::size_t         compared = 0;
    for (std::uint64_t i = 0; i < 40; ++i) {
#define SML_ROOT(Stem, ...) \
    expect_same_hashes<__VA_ARGS__>(#Stem, &sml::Stem##_fromCxx, seed + i, compared);
#include <sml/bindings/roots.def>
    }
    EXPECT_GT(compared, 5000u);
}

// The number of times that the standard library's hash table compares two keys.

std::uint64_t asked = 0;

struct Key {
    std::uint64_t hash;
    bool          operator==(Key const& other) const {
                 ++asked;
                 return hash == other.hash;
    }
};
struct OwnHash {
    std::size_t operator()(Key const& key) const noexcept { return key.hash; }
};
}  // namespace
// Hashes are not stored beside the keys, so every key of a bucket is compared.
template <>
struct std::__is_fast_hash<OwnHash> : std::true_type {};
namespace {

TEST(ReaderWork, ComparisonsAreThoseOfTheStandardLibrarysTable) {
    std::mt19937_64 engine(7);
    for (std::uint64_t const stride : {std::uint64_t{1}, std::uint64_t{541}, std::uint64_t{5087}}) {
        for (std::size_t const count : {64u, 300u, 541u, 1000u, 5000u}) {
            Hashes                           hashes;
            std::unordered_set<Key, OwnHash> table;
            while (hashes.size() < count) hashes.push_back(hashes.size() * stride + (engine() % 2));
            asked = 0;
            for (std::uint64_t const hash : hashes)
                if (!table.insert({hash}).second) break;
            if (table.size() < count) continue;  // two keys were equal
            // The estimate does not count the first keys one by one.
            EXPECT_NEAR(static_cast<double>(comparisons_of(hashes, 0)), static_cast<double>(asked),
                        64.0 * 64 + 0.01 * static_cast<double>(asked))
                << stride << ' ' << count;
        }
    }
}

Root const& numbers_root() {
    return *find_root("Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T");
}

/// The bytes of an entry's value. The first one also has the definition of the empty text.
std::string number_entry(bool is_first) {
    std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Info_Definition> table;
    table[0];
    std::string const one =
        sml::Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T_fromCxx(table);
    table[1];
    std::string const two =
        sml::Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T_fromCxx(table);
    return is_first ? one.substr(8) : two.substr(one.size() + 4);
}

/// A map with number keys at a distance of `apart`. The first key is repeated `again` times.
std::string numbers(std::int32_t count, std::int32_t apart, std::int32_t again = 0) {
    std::string const first = number_entry(true);
    std::string const other = number_entry(false);
    std::string       bytes = word(count + again);
    for (std::int32_t i = 0; i < count; ++i) bytes += word(i * apart) + (i == 0 ? first : other);
    for (std::int32_t i = 0; i < again; ++i) bytes += word(0) + other;
    return bytes;
}

Verdict judge(Root const& root, std::string_view bytes, std::uint64_t work = ~std::uint64_t{0}) {
    return verify(root, bytes, {.limits = {.work = work}});
}

// The test compares two sizes: twice as many keys need twice the comparisons, or four times as many
// if they share a bucket.
TEST(ReaderWork, GrowsWithTheSquareOfKeysThatShareABucket) {
    auto const ratio = [](std::int32_t apart) {
        auto const some = judge(numbers_root(), numbers(10'000, apart));
        auto const twice = judge(numbers_root(), numbers(20'000, apart));
        EXPECT_EQ(twice.answer, Answer::good);
        return static_cast<double>(twice.work) / static_cast<double>(some.work);
    };
    EXPECT_LT(ratio(1), 2.5);
    EXPECT_GT(ratio(20'753), 3.0);
}

TEST(ReaderWork, BeyondTheLimitIsUnsafe) {
    std::string const   bytes = numbers(20'000, 20'753);
    std::uint64_t const work = judge(numbers_root(), bytes).work;
    EXPECT_GT(work, 20'000'000u);
    EXPECT_EQ(judge(numbers_root(), bytes, work).answer, Answer::good);
    Verdict const refused = judge(numbers_root(), bytes, work - 1);
    ASSERT_EQ(refused.answer, Answer::unsafe);
    EXPECT_EQ(refused.findings.back().expected,
              "at most " + std::to_string(work - 1) + " comparisons of keys by a reader");
}

TEST(ReaderWork, OfOrdinaryBytesIsAFewComparisonsAKey) {
    EXPECT_LT(judge(numbers_root(), numbers(100'000, 1)).work, 500'000u);
}

/// Texts whose hashes are multiples of `divisor`.
std::vector<std::string> texts(std::size_t count, std::uint64_t divisor) {
    std::vector<std::string> all;
    for (std::uint64_t i = 0; all.size() < count; ++i) {
        std::string text = std::to_string(i);
        if (ReaderModel::text_hash(text) % divisor == 0) all.push_back(std::move(text));
    }
    return all;
}

std::string string_table(std::vector<std::string> const& texts) {
    std::string bytes = word(static_cast<std::int32_t>(texts.size()));
    for (std::size_t i = 0; i < texts.size(); ++i)
        bytes += in_full(static_cast<std::int32_t>(i + 1), texts[i]) + word(0);
    return bytes;
}

TEST(ReaderWork, TextsOfOneHashAreTwo) {
    std::uint64_t const      wanted = HashOf16::unfinished(0x123456789abcdef0);
    std::vector<std::string> all;
    for (std::uint64_t const first : {1u, 2u}) {
        std::uint64_t const halves[] = {first, HashOf16::second_half(first, wanted)};
        all.emplace_back(reinterpret_cast<char const*>(halves), sizeof halves);
    }
    ASSERT_EQ(ReaderModel::text_hash(all[0]), ReaderModel::text_hash(all[1]));
    Verdict const verdict = judge(*find_root("String_To_StringSet_T"), string_table(all));
    EXPECT_EQ(verdict.answer, Answer::good);
    EXPECT_EQ(verdict.strings, 2u);
}

TEST(ReaderWork, CountsTextsThatShareABucket) {
    Root const&   root = *find_root("String_To_StringSet_T");
    Verdict const spread = judge(root, string_table(texts(2000, 1)));
    Verdict const together = judge(root, string_table(texts(2000, 2357)));
    EXPECT_EQ(together.answer, Answer::good);
    // The keys are compared in the string table and in the map.
    EXPECT_GT(together.work, 2u * 1'000'000);
    EXPECT_LT(spread.work, 20'000u);
}

// One key is looked up repeatedly among others that share its bucket.
TEST(ReaderWork, CountsKeysThatAreFoundAgain) {
    Verdict const verdict = judge(numbers_root(), numbers(2000, 2357, 50'000));
    EXPECT_EQ(verdict.answer, Answer::odd);
    EXPECT_GT(verdict.work, 50'000'000u);
}

// Each back-reference to an id without a definition is looked up.
TEST(ReaderWork, CountsIdsOutOfSequence) {
    std::int32_t const count = 5000;
    std::string        bytes = word(count);
    for (std::int32_t i = 1; i <= count; ++i) bytes += word(i * 5087) + word(0);
    EXPECT_GT(judge(*find_root("String_To_StringSet_T"), bytes).work, 5'000'000u);
}

// The chain at the time of the look-up counts, not that of the final table.
TEST(ReaderWork, CountsKeysThatWereFoundBeforeTheTableGrew) {
    std::uint64_t const all = judge(numbers_root(), numbers(5087, 5087, 20'000)).work;
    EXPECT_GT(all, 5087u * 20'000);
    Hashes hashes;
    for (std::uint64_t i = 0; i < 5087; ++i) hashes.push_back(i * 5087);
    std::uint64_t const before = comparisons_of(hashes, 20'000);
    hashes.push_back(1);
    EXPECT_GE(comparisons_of(hashes, 20'000), before);
}

// Releasing texts looks each of them up again, in the table at its final size.
TEST(ReaderWork, CountsTextsThatShareABucketWhenTheyAreGivenUp) {
    // The texts are added while the table has 1109 buckets. The last ones make it grow.
    std::vector<std::string> all = texts(1000, 2357);
    for (std::string& text : texts(200, 1)) all.push_back("other " + text);
    EXPECT_GT(judge(*find_root("String_To_StringSet_T"), string_table(all)).work, 1000u * 999 / 2);
}

TEST(ReaderWork, AnIdBelowOneIsOneId) {
    std::string bytes = word(20'000);
    for (std::int32_t i = 0; i < 20'000; ++i) bytes += in_full(0, std::to_string(i)) + word(0);
    Verdict const verdict = judge(*find_root("String_To_StringSet_T"), bytes);
    EXPECT_EQ(verdict.answer, Answer::odd);
    EXPECT_LT(verdict.work, 200'000u);
}

}  // namespace

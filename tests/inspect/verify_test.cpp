#include <sml/inspect/verify.hpp>

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/schema/BlockKind.hpp>
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <list>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using sml::inspect::Answer;
using sml::inspect::describe;
using sml::inspect::digest;
using sml::inspect::find_root;
using sml::inspect::Finding;
using sml::inspect::Limits;
using sml::inspect::Root;
using sml::inspect::Verdict;
using sml::inspect::verify;
using wire_bytes::in_full;
using wire_bytes::word;

std::string text_of(Finding const& finding) {
    return std::to_string(finding.offset) + " " + finding.path + ": expected " + finding.expected +
           ", found " + finding.found;
}

std::string text_of(Verdict const& verdict) {
    std::string all;
    for (Finding const& finding : verdict.findings) all += text_of(finding) + "\n";
    return all;
}

Verdict verify_hex(char const* stem, std::string_view bytes) {
    return verify(*find_root(stem), hex::bytes(bytes));
}

TEST(Verify, WhatIsWrittenIsGood) {
    for (RealRoot const& root : real_roots()) {
        for (std::uint64_t seed = 1; seed <= 20; ++seed) {
            SCOPED_TRACE(root.stem + std::string(", seed ") + std::to_string(seed));
            RandomValues  random(seed);
            Verdict const verdict = verify(*find_root(root.stem), root.random_bytes(random));
            EXPECT_EQ(verdict.answer, Answer::good) << text_of(verdict);
        }
    }
}

TEST(Verify, EveryCutIsUnsafe) {
    for (RealRoot const& root : real_roots()) {
        SCOPED_TRACE(root.stem);
        RandomValues      random(3, {.elements = 1, .depth = 3});
        std::string const bytes = root.random_bytes(random);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            Verdict const verdict = verify(*find_root(root.stem), bytes.substr(0, size));
            ASSERT_EQ(verdict.answer, Answer::unsafe) << size << " of " << bytes.size();
            EXPECT_LE(verdict.findings.back().offset, size);
        }
    }
}

TEST(Verify, OneByteMoreIsUnsafe) {
    for (RealRoot const& root : real_roots()) {
        SCOPED_TRACE(root.stem);
        RandomValues  random(4);
        std::string   bytes = root.random_bytes(random);
        Verdict const verdict = verify(*find_root(root.stem), bytes + '\0');
        EXPECT_EQ(verdict.answer, Answer::unsafe);
        EXPECT_EQ(verdict.findings.back().offset, bytes.size());
    }
}

TEST(Verify, WhatIsNotUnsafeIsReadToTheLastByte) {
    constexpr char         bytes_tried[] = {'\0', '\1', 'F', 'T', '0', ' ', '\x7F', '\xFF'};
    constexpr std::int32_t words_tried[] = {0, -1, std::numeric_limits<std::int32_t>::max(),
                                            std::numeric_limits<std::int32_t>::min()};
    Limits const           limits{.memory = std::uint64_t{1} << 24};
    int                    accepted = 0;
    for (RealRoot const& root : real_roots()) {
        SCOPED_TRACE(root.stem);
        RandomValues      random(5, {.elements = 1, .depth = 3});
        std::string const bytes = root.random_bytes(random);
        auto              try_bytes = [&](std::string const& mutated) {
            if (verify(*find_root(root.stem), mutated, {.limits = limits}).answer == Answer::unsafe)
                return;
            ++accepted;
            EXPECT_EQ(root.fault_of_only_reading(mutated), "");
        };
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            std::string mutated = bytes;
            for (char const byte : bytes_tried) {
                mutated[at] = byte;
                try_bytes(mutated);
            }
            if (at + sizeof(std::int32_t) > bytes.size()) continue;
            for (std::int32_t const word : words_tried) {
                mutated = bytes;
                std::memcpy(mutated.data() + at, &word, sizeof word);
                try_bytes(mutated);
            }
        }
    }
    EXPECT_GT(accepted, 1000);
}

/// The only finding of bytes that are otherwise good; it must be odd.
Finding the_odd_finding(char const* stem, std::string_view bytes) {
    Verdict const verdict = verify_hex(stem, bytes);
    EXPECT_EQ(verdict.answer, Answer::odd) << text_of(verdict);
    EXPECT_EQ(verdict.odd_count, 1u) << text_of(verdict);
    return verdict.findings.empty() ? Finding{} : verdict.findings.front();
}

TEST(Verify, FlagOtherThanTOrFIsOdd) {
    Finding const finding = the_odd_finding("Answers_Answer", "20");
    EXPECT_EQ(text_of(finding),
              "0 flag: expected T or F, found ' ', which a reader of a stream skips");
    EXPECT_EQ(the_odd_finding("Answers_Answer", "'t'").found, "'t'");
}

TEST(Verify, UnsetVariantIsOdd) {
    Finding const finding =
        the_odd_finding("Interrogators_QuestionRef", "FF FF FF FF  00 00 00 00 00 00 00 00");
    EXPECT_EQ(text_of(finding), "0 : expected a tag from 0 to 1, found -1, an unset variant");
}

TEST(Verify, UnknownTagIsOddAndServedByTheLastArm) {
    Finding const finding =
        the_odd_finding("IL_Extras_ZelvaniteResultData", "1A 00 00 00  01 00 00 00");
    EXPECT_EQ(text_of(finding), "0 : expected a tag from 0 to 25, found 26");
}

TEST(Verify, UnknownEnumeratorIsOdd) {
    Finding const finding =
        the_odd_finding("IL_Extras_ZelvaniteResultData", "19 00 00 00  04 00 00 00");
    EXPECT_EQ(text_of(finding),
              "4 Variable_Value_Scalar: expected an enumerator from 0 to 3, found 4");
}

TEST(Verify, DuplicateKeyIsOddWhateverItsSpelling) {
    Finding const finding = the_odd_finding("String_To_StringSet_T",
                                            "02 00 00 00"
                                            "FF FF FF FF  01 00 00 00 'a'  00 00 00 00"
                                            "01 00 00 00  00 00 00 00");
    EXPECT_EQ(text_of(finding),
              "17 [#1].key: expected a new key or element, "
              "found \"a\" again");
}

TEST(Verify, DuplicateElementIsOdd) {
    Finding const finding = the_odd_finding("String_To_StringSet_T",
                                            "01 00 00 00"
                                            "FF FF FF FF  01 00 00 00 'a'"
                                            "02 00 00 00  01 00 00 00  01 00 00 00");
    EXPECT_EQ(finding.offset, 21u);
    EXPECT_EQ(finding.path, "[\"a\"][1]");
}

TEST(Verify, TextDefinedTwiceIsOdd) {
    Finding const finding = the_odd_finding("String_To_StringSet_T",
                                            "01 00 00 00"
                                            "FF FF FF FF  01 00 00 00 'a'"
                                            "01 00 00 00  FE FF FF FF  01 00 00 00 'a'");
    EXPECT_EQ(text_of(finding),
              "17 [\"a\"][0]: expected a back-reference, "
              "found a second definition of the same text");
}

TEST(Verify, IdOutOfSequenceIsOdd) {
    EXPECT_EQ(the_odd_finding("String_To_StringSet_T",
                              "01 00 00 00  FD FF FF FF  01 00 00 00 'a'  00 00 00 00")
                  .found,
              "id 3");
    EXPECT_EQ(the_odd_finding("String_To_StringSet_T",
                              "01 00 00 00  00 00 00 00  01 00 00 00 'a'  00 00 00 00")
                  .found,
              "id 0");
    EXPECT_EQ(the_odd_finding("String_To_StringSet_T",
                              "01 00 00 00  00 00 00 80  01 00 00 00 'a'  00 00 00 00")
                  .found,
              "id 2147483648");
}

TEST(Verify, UndefinedIdIsOddAndIsTheEmptyTextFromThenOn) {
    // Id 1 is used, then defined: the reader keeps the empty text for it.
    Verdict const verdict = verify_hex("String_To_StringSet_T",
                                       "02 00 00 00"
                                       "01 00 00 00  00 00 00 00"
                                       "FF FF FF FF  01 00 00 00 'a'"
                                       "01 00 00 00  01 00 00 00");
    ASSERT_EQ(verdict.odd_count, 1u) << text_of(verdict);
    EXPECT_EQ(text_of(verdict.findings.front()),
              "4 [#0].key: expected an id that is defined before, found id 1");
}

TEST(Verify, LengthBeyondTheBytesIsUnsafe) {
    Verdict const verdict =
        verify_hex("String_To_StringSet_T", "01 00 00 00  FF FF FF FF  02 00 00 00 'a'");
    ASSERT_EQ(verdict.answer, Answer::unsafe);
    EXPECT_EQ(text_of(verdict), "8 [#0].key: expected a length from 0 to 1, found 2\n");
}

TEST(Verify, NegativeLengthIsUnsafe) {
    Verdict const verdict =
        verify_hex("String_To_StringSet_T", "01 00 00 00  FF FF FF FF  FF FF FF FF  00 00 00 00");
    ASSERT_EQ(verdict.answer, Answer::unsafe);
    EXPECT_EQ(verdict.findings.back().found, "-1");
}

TEST(Verify, CountThatCannotFitIsUnsafe) {
    Verdict const verdict = verify_hex("String_To_StringSet_T", "FF FF FF FF  00 00 00 00");
    ASSERT_EQ(verdict.answer, Answer::unsafe);
    EXPECT_EQ(text_of(verdict), "0 : expected a count of at most 0, found 4294967295\n");
}

TEST(Verify, ListedFindingsAreBoundedAllAreCounted) {
    Verdict const verdict =
        verify(*find_root("IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList"),
               hex::bytes("05 00 00 00  00 00 00 00 00  00 00 00 00 00  00 00 00 00 00"
                          "00 00 00 00 00  00 00 00 00 00"),
               {.limits = {}, .listed = 2});
    EXPECT_EQ(verdict.answer, Answer::odd);
    EXPECT_EQ(verdict.odd_count, 5u);
    EXPECT_EQ(verdict.findings.size(), 2u);
}

TEST(Verify, AListenerGetsWhatWouldBeListed) {
    std::vector<std::string>    heard;
    sml::inspect::VerifyOptions options{.listed = 2};
    options.listener = [&](Finding const& finding) { heard.push_back(finding.path); };
    Verdict const verdict = verify(
        *find_root("IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList"),
        hex::bytes("03 00 00 00  00 00 00 00 00  00 00 00 00 00  00 00 00 00 00 00"), options);
    EXPECT_EQ(heard,
              (std::vector<std::string>{"[0].BOOL_PRAGMA_PARAMETER", "[1].BOOL_PRAGMA_PARAMETER"}));
    EXPECT_EQ(verdict.odd_count, 3u);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_EQ(verdict.findings.front().severity, sml::inspect::Severity::unsafe);
}

// Equal elements do not cause another comparison of their long text. With these sizes, that would
// read four terabytes.
TEST(Verify, LongElementsThatAreThereAlreadyTakeNoTime) {
    constexpr std::int32_t length = 4'000'000;
    constexpr std::int32_t count = 1'000'000;
    std::string const      text(length, 'a');
    // The element that the others are compared with defines the text again.
    std::string bytes = word(1) + in_full(1, text) + word(count) + in_full(2, text);
    for (std::int32_t i = 1; i < count; ++i) bytes += word(1);
    auto const verdict = verify(*find_root("String_To_StringSet_T"), bytes, {.listed = 1});
    EXPECT_EQ(verdict.answer, Answer::odd);
    EXPECT_EQ(verdict.odd_count, static_cast<std::uint64_t>(count));
    std::ostringstream json;
    EXPECT_EQ(
        dump(*find_root("String_To_StringSet_T"), bytes, json, {.walk = {.listed = 1}}).odd_count,
        verdict.odd_count);
}

// Good bytes with many back-references to a long text. Making them canonical reads the text once.
TEST(Verify, LongTextsReferredToOftenTakeNoTime) {
    constexpr std::int32_t length = 4'000'000;
    constexpr std::int32_t count = 300'000;
    std::string            bytes = word(count);
    for (std::int32_t i = 1; i <= count; ++i) {
        bytes += in_full(i == 1 ? 1 : i + 1, std::to_string(i));
        bytes += word(1) + (i == 1 ? in_full(2, std::string(length, 'a')) : word(2));
    }
    auto const& root = *find_root("String_To_StringSet_T");
    EXPECT_EQ(verify(root, bytes).answer, Answer::good);
    EXPECT_EQ(digest(root, bytes).size(), 64u);
}

TEST(Verify, AKeyThatIsThereAlreadyIsFoundBeforeItsUnsafeValue) {
    // {"a": {}, "a": {...}}, in which the second set is damaged.
    std::string const bytes = word(2) + in_full(1, "a") + word(0) + word(1) + word(9);
    auto const        verdict = verify(*find_root("String_To_StringSet_T"), bytes);
    EXPECT_EQ(verdict.answer, Answer::unsafe);
    EXPECT_EQ(verdict.odd_count, 1u);
    ASSERT_EQ(verdict.findings.size(), 2u);
    EXPECT_EQ(verdict.findings[0].path, "[#1].key");
    EXPECT_EQ(verdict.findings[1].path, "[\"a\"]");
}

TEST(Verify, TheEmptyTextOfAnIdNotDefinedEqualsTheOneThatIs) {
    // {"": {7, "", 7}}, in which id 7 has no definition: the empty text, three times.
    std::string const bytes = word(1) + in_full(1, "") + word(3) + word(7) + word(1) + word(7);
    auto const        verdict = verify(*find_root("String_To_StringSet_T"), bytes);
    EXPECT_EQ(verdict.odd_count, 3u);  // the id, and two repeated elements
}

/// Writes strings as no writer would: ids in any order, texts defined again, ids without a
/// definition.
class AnyStrings {
public:
    explicit AnyStrings(std::uint64_t seed) : random_(seed) {}

    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_() % end); }

    /// Appends a string to the bytes and returns the text that a reader has for it.
    std::string append(std::string& bytes) {
        constexpr std::array<std::string_view, 5> texts{"", "a", "b", "cc", "d"};
        auto const                                id = static_cast<std::int32_t>(below(6)) + 1;
        if (below(2) == 0) {
            bytes += word(id);
            return by_id_[id];
        }
        std::string const text(texts[below(texts.size())]);
        bytes += in_full(id, text);
        by_id_.emplace(id, text);
        return text;
    }

private:
    std::mt19937_64                     random_;
    std::map<std::int32_t, std::string> by_id_;  // the first text of each
};

TEST(Verify, EveryStringThatIsAKeyAlreadyIsFound) {
    auto const& root = *find_root("String_To_StringSet_T");
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        AnyStrings            strings(seed);
        std::uint32_t const   count = strings.below(5);
        std::string           bytes = word(static_cast<std::int32_t>(count));
        std::size_t           repeated = 0;
        std::set<std::string> keys;
        for (std::uint32_t i = 0; i < count; ++i) {
            bool const          is_new = keys.insert(strings.append(bytes)).second;
            std::uint32_t const size = strings.below(5);
            bytes += word(static_cast<std::int32_t>(size));
            std::set<std::string> elements;
            for (std::uint32_t j = 0; j < size; ++j)
                repeated += elements.insert(strings.append(bytes)).second ? 0 : 1;
            repeated += is_new ? 0 : 1;
        }
        Verdict const verdict = verify(root, bytes, {.listed = 1000});
        auto const    is_repeated = [](Finding const& finding) {
            return finding.expected == "a new key or element";
        };
        ASSERT_NE(verdict.answer, Answer::unsafe);
        EXPECT_EQ(std::ranges::count_if(verdict.findings, is_repeated), repeated)
            << text_of(verdict);
    }
}

TEST(Verify, DepthBeyondTheLimitIsUnsafe) {
    std::string const bytes = hex::bytes("01 00 00 00  FF FF FF FF  01 00 00 00 'a'  00 00 00 00");
    auto const&       root = *find_root("String_To_StringSet_T");
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 2}}).answer, Answer::good);
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 1}}).answer, Answer::unsafe);
}

TEST(Verify, DepthOfATagThatStandsAloneCounts) {
    using Kind = sml::BlockKind::T_BlockKind;
    Root const        root{"R", describe<std::list<std::pair<std::int32_t, Kind>>>()};
    std::string const bytes = word(1) + word(5) + word(0);
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 2}}).answer, Answer::good);
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 1}}).answer, Answer::unsafe);
}

TEST(Verify, DepthOfAnEmptyListCounts) {
    using List = std::list<std::int32_t>;
    Root const        root{"R", describe<std::list<std::pair<std::int32_t, List>>>()};
    std::string const bytes = word(1) + word(5) + word(0);
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 2}}).answer, Answer::good);
    EXPECT_EQ(verify(root, bytes, {.limits = {.depth = 1}}).answer, Answer::unsafe);
}

TEST(Verify, HeapEstimateBeyondTheLimitIsUnsafe) {
    auto const& root = *find_root("String_To_StringSet_T");
    // While a long text is read it is there twice.
    for (std::size_t const length : {1u, 1000u}) {
        std::string const   bytes = word(1) + in_full(1, std::string(length, 'a')) + word(0);
        std::uint64_t const heap = verify(root, bytes).heap;
        EXPECT_GT(heap, 0u);
        EXPECT_EQ(verify(root, bytes, {.limits = {.memory = heap}}).answer, Answer::good);
        EXPECT_EQ(verify(root, bytes, {.limits = {.memory = heap - 1}}).answer, Answer::unsafe);
    }
}

}  // namespace

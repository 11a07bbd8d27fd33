#include "tests/hex.hpp"
#include "tests/inspect/verify_c_calls.h"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using wire_bytes::in_full;
using wire_bytes::word;

constexpr char const* sets = "String_To_StringSet_T";
constexpr char const* parameters = "IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList";

called call(char const* stem, std::string const& bytes, sml_inspect_limits const* limits = nullptr,
            std::uint64_t listed = 100) {
    return call_verify(stem, bytes.data(), bytes.size(), limits, listed);
}

std::string one_set() {
    return hex::bytes("01 00 00 00  FF FF FF FF 01 00 00 00 'a'  01 00 00 00  01 00 00 00");
}

TEST(VerifyC, GoodBytesHaveNoFindingsAndTheirFigures) {
    called const result = call(sets, one_set());
    EXPECT_EQ(result.answer, SML_INSPECT_GOOD);
    EXPECT_EQ(result.reported, 0);
    EXPECT_EQ(result.verdict.odd_count, 0u);
    EXPECT_EQ(result.verdict.walked, one_set().size());
    EXPECT_EQ(result.verdict.elements, 2u);
    EXPECT_EQ(result.verdict.strings, 1u);
    EXPECT_GT(result.verdict.heap, 0u);
}

TEST(VerifyC, OddFindingIsReported) {
    called const result = call("Answers_Context", "x");
    EXPECT_EQ(result.answer, SML_INSPECT_ODD);
    EXPECT_EQ(result.reported, 1);
    EXPECT_EQ(result.unsafe_reported, 0);
    EXPECT_EQ(result.verdict.odd_count, 1u);
    EXPECT_EQ(result.offset, 0u);
    EXPECT_STREQ(result.path, "flag");
    EXPECT_STREQ(result.expected, "T or F");
    EXPECT_STREQ(result.found, "'x'");
}

TEST(VerifyC, UnsafeFindingIsReportedLast) {
    called const result = call("Interrogators_ZvFunction", hex::bytes("00 00 00 00 'x'  01 00"));
    EXPECT_EQ(result.answer, SML_INSPECT_UNSAFE);
    EXPECT_EQ(result.unsafe_reported, 1);
    EXPECT_STREQ(result.path, "function.key");
    called const later = call("Integers64_T", std::string(9, '\0'));
    EXPECT_EQ(later.answer, SML_INSPECT_UNSAFE);
    EXPECT_EQ(later.offset, 8u);
    EXPECT_EQ(later.verdict.walked, 8u);
}

TEST(VerifyC, ListedBoundsTheOddFindingsThatAreReported) {
    std::string bytes = hex::bytes("03 00 00 00");
    for (int i = 0; i < 3; ++i) bytes += hex::bytes("00 00 00 00 'x'");
    EXPECT_EQ(call(parameters, bytes, nullptr, 2).reported, 2);
    EXPECT_EQ(call(parameters, bytes, nullptr, 2).verdict.odd_count, 3u);
    called const none = call(parameters, bytes, nullptr, 0);
    EXPECT_EQ(none.reported, 0);
    EXPECT_EQ(none.answer, SML_INSPECT_ODD);
    called const cut = call(parameters, bytes + "y", nullptr, 0);
    EXPECT_EQ(cut.reported, 1);
    EXPECT_EQ(cut.unsafe_reported, 1);
}

TEST(VerifyC, EveryLimitCounts) {
    sml_inspect_limits const enough{2, 2, 1, 1000, 10, 100'000, nullptr};
    EXPECT_EQ(call(sets, one_set(), &enough).answer, SML_INSPECT_GOOD);
    for (sml_inspect_limits const& limits : {sml_inspect_limits{1, 2, 1, 1000, 10, 0, nullptr},
                                             sml_inspect_limits{2, 1, 1, 1000, 10, 0, nullptr},
                                             sml_inspect_limits{2, 2, 1, 100, 10, 0, nullptr}})
        EXPECT_EQ(call(sets, one_set(), &limits).answer, SML_INSPECT_UNSAFE);
    std::string const longer =
        hex::bytes("01 00 00 00  FF FF FF FF 02 00 00 00 'ab'  01 00 00 00  01 00 00 00");
    EXPECT_EQ(call(sets, longer, &enough).answer, SML_INSPECT_UNSAFE);
}

TEST(VerifyC, LimitOnWorkCounts) {
    std::string bytes = word(100);
    for (std::int32_t i = 1; i <= 100; ++i) bytes += in_full(i, std::to_string(i)) + word(0);
    sml_inspect_limits const little{0, 0, 0, 0, 1, 0, nullptr};
    EXPECT_EQ(call(sets, bytes).answer, SML_INSPECT_GOOD);
    EXPECT_EQ(call(sets, bytes, &little).answer, SML_INSPECT_UNSAFE);
}

TEST(VerifyC, LimitOfZeroIsTheDefault) {
    sml_inspect_limits const defaults{};
    EXPECT_EQ(call(sets, one_set(), &defaults).answer, SML_INSPECT_GOOD);
}

TEST(VerifyC, DepthBeyondTheCapIsTheCap) {
    sml_inspect_limits const deep{~0u, 0, 0, 0, 0, 0, nullptr};
    EXPECT_EQ(call(sets, one_set(), &deep).answer, SML_INSPECT_GOOD);
}

TEST(VerifyC, AllButTheStemAndTheBytesMayBeMissing) {
    std::string const bytes = one_set();
    EXPECT_EQ(call_verify_bare(sets, bytes.data(), bytes.size()), SML_INSPECT_GOOD);
    EXPECT_EQ(call_verify_bare(sets, bytes.data(), bytes.size() - 1), SML_INSPECT_UNSAFE);
    EXPECT_EQ(call_verify_bare("Answers_Context", "x", 1), SML_INSPECT_ODD);
}

TEST(VerifyC, NoBytesAtAllAreUnsafe) {
    called const result = call_verify(sets, nullptr, 0, nullptr, 100);
    EXPECT_EQ(result.answer, SML_INSPECT_UNSAFE);
    EXPECT_EQ(result.unsafe_reported, 1);
}

TEST(VerifyC, NullWithASizeIsReportedWithoutAWalk) {
    for (std::uint64_t const size : {std::uint64_t{1}, std::uint64_t{8}, ~std::uint64_t{0}}) {
        called const result = call_verify("Integers64_T", nullptr, size, nullptr, 100);
        EXPECT_EQ(result.answer, SML_INSPECT_NO_BYTES);
        EXPECT_EQ(result.reported, 0);
        EXPECT_EQ(result.verdict.walked, 0u);
    }
    EXPECT_EQ(call_verify_null("Integers64_T", 8), SML_INSPECT_NO_BYTES);
    EXPECT_EQ(call_verify_null("Integers64_T", 0), SML_INSPECT_UNSAFE);
    EXPECT_EQ(call_verify_null("Integers64", 8), SML_INSPECT_NO_SUCH_ROOT);
}

TEST(VerifyC, UnknownStemIsReportedWithoutAWalk) {
    called const result = call("Answers_Contex", "T");
    EXPECT_EQ(result.answer, SML_INSPECT_NO_SUCH_ROOT);
    EXPECT_EQ(result.reported, 0);
    EXPECT_EQ(result.verdict.walked, 0u);
    EXPECT_EQ(call_verify_bare("", "T", 1), SML_INSPECT_NO_SUCH_ROOT);
    EXPECT_EQ(call_verify_bare(nullptr, "T", 1), SML_INSPECT_NO_SUCH_ROOT);
}

}  // namespace

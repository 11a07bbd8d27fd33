// The memory that a call takes itself, compared with its budget.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/inspect/text/json_text.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/inspect/counted_heap.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>

namespace {

using namespace sml::inspect;
using wire_bytes::block;
using wire_bytes::in_full;
using wire_bytes::word;

/// The memory for findings, paths and output buffers, which is not part of the budget.
constexpr std::uint64_t beside = std::uint64_t{3} << 20;

/// A buffer that discards all bytes.
class Sink : public std::streambuf {
    std::streamsize xsputn(char const*, std::streamsize size) override { return size; }
    int             overflow(int byte) override { return byte; }
    // The writer seeks.
    pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override { return 0; }
    pos_type seekpos(pos_type, std::ios::openmode) override { return 0; }
};

Root const& strings_root() { return *find_root("String_To_StringSet_T"); }

std::string undefined_ids(std::int32_t count) {
    std::string bytes = word(1) + word(1) + word(count);
    for (std::int32_t i = 1; i <= count; ++i) bytes += word(i + 1);
    return bytes;
}

std::string distinct_strings(std::int32_t count) {
    std::string bytes = word(count);
    for (std::int32_t i = 1; i <= count; ++i)
        bytes += in_full(i, "text number " + std::to_string(i)) + word(0);
    return bytes;
}

Root const& numbers_root() { return *find_root("Application_Results_Application_Results"); }

/// The bytes of one integer of this many digits.
std::string long_integer(std::size_t digits) {
    sml::Application_Results::T_Application_Results results;
    results.integer_sets[sml::Strings_T("a")].insert(sml::BigInteger(17));
    std::string       bytes = sml::Application_Results_Application_Results_fromCxx(results);
    std::string const one = block(std::string("11\0\0", 4));
    return bytes.replace(bytes.find(one), one.size(),
                         block(std::string(digits, 'f') + std::string(2, '\0')));
}

struct Call {
    char const*                        name;
    std::function<void(Limits const&)> make;
};

std::uint64_t peak_of(std::function<void()> const& call) {
    counted_heap::start();
    call();
    return counted_heap::peak();
}

/// Expects that the call stays within any budget, and throws if the budget is not enough.
void expect_kept_budget(Call const& call) {
    SCOPED_TRACE(call.name);
    int refused = 0;
    for (std::uint64_t megabytes : {0u, 1u, 4u, 16u, 64u, 256u, 1024u}) {
        std::uint64_t const budget = megabytes << 20;
        std::uint64_t const peak = peak_of([&] {
            try {
                call.make({.own_memory = budget});
            } catch (BudgetExceeded const&) {
                ++refused;
            }
        });
        EXPECT_LE(peak, budget + beside) << megabytes;
    }
    EXPECT_GE(refused, 2);
    EXPECT_LE(refused, 6);
}

void expect_kept_budget_of_walks(Root const& root, std::string const& bytes) {
    Sink sink;
    expect_kept_budget({"dump", [&](Limits const& limits) {
                            std::ostream out(&sink);
                            dump(root, bytes, out, {.walk = {.limits = limits}});
                        }});
    expect_kept_budget({"canon", [&](Limits const& limits) {
                            std::ostream out(&sink);
                            write_canonical(root, bytes, out, {.limits = limits});
                        }});
}

void expect_kept_budget_of_encode(Root const& root, std::string const& bytes) {
    std::ostringstream json;
    dump(root, bytes, json);
    std::string const text = json.str();
    Sink              sink;
    expect_kept_budget({"encode", [&](Limits const& limits) {
                            std::ostream out(&sink);
                            encode(text, out, {.limits = limits});
                        }});
}

void expect_kept_budget_of_verify(Root const& root, std::string const& bytes) {
    expect_kept_budget({"verify", [&](Limits const& limits) {
                            verify(root, bytes, {.limits = limits, .listed = 10});
                        }});
}

TEST(OwnMemory, CanBeUsedToTheLastByte) {
    constexpr std::uint64_t size = 100;
    Budget                  whole(chunk_of(size));
    EXPECT_NO_THROW(Budget::Hold(whole, size));
    Budget less(chunk_of(size) - 1);
    EXPECT_THROW(Budget::Hold(less, size), BudgetExceeded);
}

TEST(OwnMemory, IsKeptByUndefinedIds) {
    std::string const bytes = undefined_ids(1'000'000);
    expect_kept_budget_of_verify(strings_root(), bytes);
    std::uint64_t const peak = peak_of([&] { verify(strings_root(), bytes, {.listed = 0}); });
    EXPECT_LT(peak, 12 * bytes.size());
}

TEST(OwnMemory, IsKeptByManyStrings) {
    std::string const bytes = distinct_strings(300'000);
    expect_kept_budget_of_verify(strings_root(), bytes);
    expect_kept_budget_of_walks(strings_root(), bytes);
    expect_kept_budget_of_encode(strings_root(), bytes);
}

TEST(OwnMemory, IsKeptByLongNumbers) {
    std::string const bytes = long_integer(5'000'000);
    expect_kept_budget_of_walks(numbers_root(), bytes);
    expect_kept_budget_of_encode(numbers_root(), bytes);
    std::ostringstream  json;
    std::uint64_t const held = memory_for_conversion(6'100'000);  // number of decimal digits
    Sink                sink;
    EXPECT_LE(peak_of([&] {
                  std::ostream out(&sink);
                  dump(numbers_root(), bytes, out);
              }),
              held + beside);
    dump(numbers_root(), bytes, json);
    std::string const text = json.str();
    EXPECT_LE(peak_of([&] {
                  std::ostream out(&sink);
                  encode(text, out);
              }),
              held + 2 * text.size() + beside);
    // Numbers in the form of a writer are not parsed.
    EXPECT_LT(peak_of([&] { verify(numbers_root(), bytes); }), beside);
    std::string odd = bytes;
    odd[odd.find("ffff")] = 'F';
    EXPECT_LT(peak_of([&] { verify(numbers_root(), odd); }), beside);
}

TEST(OwnMemory, IsKeptByLongTexts) {
    std::string const bytes = word(1) + in_full(1, std::string(20'000'000, 'x')) + word(0);
    Sink              sink;
    EXPECT_LT(peak_of([&] {
                  std::ostream out(&sink);
                  dump(strings_root(), bytes, out);
              }),
              beside);
    expect_kept_budget_of_encode(strings_root(), bytes);
}

}  // namespace

// Limits of any size, chosen by the bytes. What a call refuses, it refuses by `std::bad_alloc` or
// by its result; what it accepts, it treats as without limits.

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/verify.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <new>
#include <optional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using namespace sml::inspect;
using Random = std::mt19937_64;

constexpr std::uint64_t most_heap = std::uint64_t{1} << 26;
constexpr Limits        ample{.memory = most_heap};

/// Any number of up to so many bits; small ones are as frequent as large ones.
std::uint64_t any_number(Random& random, unsigned bits) {
    std::uint64_t const size = random() % (bits + 1);
    return random() & ((std::uint64_t{1} << size) - 1);
}

/// Each limit is ample in one of two cases; the budget never is.
Limits any_limits(Random& random) {
    Limits     limits = ample;
    auto const is_limited = [&] { return random() % 2 == 0; };
    if (is_limited()) limits.depth = static_cast<std::uint32_t>(any_number(random, 8));
    if (is_limited()) limits.elements = any_number(random, 10);
    if (is_limited()) limits.text_bytes = any_number(random, 8);
    if (is_limited()) limits.memory = any_number(random, 18);
    if (is_limited()) limits.work = any_number(random, 10);
    limits.own_memory = any_number(random, 20);
    return limits;
}

/// The result of a call; none if it ran out of memory. The call must throw nothing else.
template <class Call>
auto within_budget(fuzz::Input const& input, char const* name, Call call)
    -> std::optional<decltype(call())> try {
    return call();
} catch (std::bad_alloc const&) {
    return std::nullopt;
} catch (std::exception const& thrown) {
    fuzz::fail(input, std::string(name) + " throws: " + thrown.what());
}

Limits with_budget(Limits limits, std::uint64_t own_memory) {
    limits.own_memory = own_memory;
    return limits;
}

Verdict verdict_of(fuzz::Input const& input, Limits const& limits) {
    return verify(*input.root, input.bytes, {.limits = limits});
}

bool are_same(Verdict const& a, Verdict const& b) {
    return a.answer == b.answer && a.odd_count == b.odd_count && a.heap == b.heap &&
           a.work == b.work && a.walked == b.walked && a.elements == b.elements;
}

/// If a budget is enough, the result is as with an ample one, and twice the budget is enough, too.
/// If it is not enough, half of it is not, either.
void check_verify(fuzz::Input const& input, Limits const& limits, Verdict const& unbudgeted) {
    auto const verified = [&](std::uint64_t own_memory) {
        return within_budget(input, "verify",
                             [&] { return verdict_of(input, with_budget(limits, own_memory)); });
    };
    auto const verdict = verified(limits.own_memory);
    if (verdict) {
        fuzz::require(are_same(*verdict, unbudgeted), input, "verify depends on its budget");
        fuzz::require(verified(2 * limits.own_memory).has_value(), input,
                      "verify does with a budget, not with twice as much");
    } else {
        fuzz::require(!verified(limits.own_memory / 2), input,
                      "verify does not do with a budget, but with half of it");
    }
}

/// A limit of exactly what is needed changes nothing; with one less, the bytes are unsafe.
void check_edge(fuzz::Input const& input, std::uint64_t Limits::*limit, std::uint64_t taken,
                Verdict const& unlimited) {
    Limits limits = ample;
    limits.*limit = taken;
    fuzz::require(are_same(verdict_of(input, limits), unlimited), input,
                  "a limit of what is taken changes the verdict");
    if (taken == 0) return;
    limits.*limit = taken - 1;
    fuzz::require(verdict_of(input, limits).answer == Answer::unsafe, input,
                  "a limit lets more through");
}

/// Bytes within the limits have the same verdict as without limits; limits make no bytes safe.
void check_limits(fuzz::Input const& input, Verdict const& limited, Verdict const& unlimited) {
    if (limited.answer != Answer::unsafe)
        fuzz::require(are_same(limited, unlimited), input, "limits change what is within them");
    if (unlimited.answer == Answer::unsafe)
        fuzz::require(limited.answer == Answer::unsafe, input, "limits make bytes safe");
}

std::string dump_of(fuzz::Input const& input, Limits const& limits) {
    std::ostringstream json;
    dump(*input.root, input.bytes, json, {.walk = {.limits = limits}});
    return json.str();
}

void check_dump(fuzz::Input const& input, Limits const& limits) {
    auto const dumped = within_budget(input, "dump", [&] { return dump_of(input, limits); });
    if (!dumped) return;
    std::string const unbudgeted = dump_of(input, with_budget(limits, ample.own_memory));
    fuzz::require(*dumped == unbudgeted, input, "dump depends on its budget");
}

/// None if it ran out of memory; no text if the bytes are refused as unsafe or beyond a limit.
std::optional<std::optional<std::string>> canonical_of(fuzz::Input const& input,
                                                       Limits const&      limits) {
    return within_budget(input, "canonical", [&]() -> std::optional<std::string> {
        std::ostringstream bytes;
        try {
            write_canonical(*input.root, input.bytes, bytes, {.limits = limits});
        } catch (std::invalid_argument const&) {
            return std::nullopt;
        }
        return bytes.str();
    });
}

void check_canonical(fuzz::Input const& input, Limits const& limits) {
    auto const canonical = canonical_of(input, limits);
    if (!canonical || !*canonical) return;
    fuzz::require(canonical == canonical_of(input, ample), input,
                  "canonical depends on its limits");
}

/// All walks apply the limits in the same way, with two exceptions: only verify counts work, and
/// walks that look for no repeated keys count the memory of entries that a reader drops.
void check_agreement(fuzz::Input const& input, Limits limits) {
    limits.memory = ample.memory;
    limits.work = ample.work;
    limits.own_memory = ample.own_memory;
    Verdict const      verdict = verdict_of(input, limits);
    std::ostringstream json;
    Dumped const       dumped = dump(*input.root, input.bytes, json, {.walk = {.limits = limits}});
    fuzz::require(dumped.answer == verdict.answer, input, "dump judges limits in another way");
    bool const is_unsafe = verdict.answer == Answer::unsafe;
    if (is_unsafe)
        fuzz::require(dumped.findings.back().offset == verdict.findings.back().offset, input,
                      "dump stops at another limit");
    if (!is_unsafe && verdict.reason_against_encoding) return;
    auto const canonical = canonical_of(input, limits);
    fuzz::require(canonical && canonical->has_value() == !is_unsafe, input,
                  "canonical judges limits in another way");
}

struct EncodedBytes {
    bool        is_refused;
    std::string bytes;
};

EncodedBytes encoded(std::string_view json, Limits const& limits) {
    std::ostringstream bytes;
    bool const         is_refused = encode(json, bytes, {.limits = limits}).error.has_value();
    return {is_refused, is_refused ? std::string() : bytes.str()};
}

/// Encodes the dump of bytes that are not unsafe, and the first half of the dump, which is no JSON.
void check_encode(fuzz::Input const& input, Limits const& limits) {
    std::string const whole = dump_of(input, ample);
    for (std::string_view const json :
         {std::string_view(whole), std::string_view(whole).substr(0, whole.size() / 2)}) {
        auto const limited = within_budget(input, "encode", [&] { return encoded(json, limits); });
        if (!limited || limited->is_refused) continue;
        auto const unlimited = encoded(json, ample);
        fuzz::require(!unlimited.is_refused && limited->bytes == unlimited.bytes, input,
                      "encode depends on its limits");
    }
    Limits const only_budget = with_budget(ample, limits.own_memory);
    auto const   budgeted =
        within_budget(input, "encode", [&] { return encoded(whole, only_budget); });
    if (budgeted) fuzz::require(!budgeted->is_refused, input, "encode refuses for want of memory");
}

void check_reader(fuzz::Input const& input) {
    std::string const fault = real_root(*input.root).fault_of_only_reading(input.bytes);
    fuzz::require(fault.empty(), input, fault);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    fuzz::Input const input = fuzz::input_of(data, size);
    Random            random(fuzz::hash_of(input));
    Verdict const     unlimited = verdict_of(input, ample);
    if (unlimited.answer != Answer::unsafe) {
        check_edge(input, &Limits::memory, unlimited.heap, unlimited);
        check_edge(input, &Limits::work, unlimited.work, unlimited);
        check_edge(input, &Limits::elements, unlimited.elements, unlimited);
    }
    for (int round = 0; round < 3; ++round) {
        Limits const  limits = any_limits(random);
        Verdict const limited = verdict_of(input, with_budget(limits, ample.own_memory));
        check_limits(input, limited, unlimited);
        check_verify(input, limits, limited);
        check_dump(input, limits);
        check_agreement(input, limits);
        if (!unlimited.reason_against_encoding || unlimited.answer == Answer::unsafe)
            check_canonical(input, limits);
        if (unlimited.answer != Answer::unsafe) check_encode(input, limits);
        if (limited.answer != Answer::unsafe) check_reader(input);
    }
    return 0;
}

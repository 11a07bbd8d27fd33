// Bytes that are not unsafe are read by the real readers, and dump shows what these have read. The
// same holds in another locale and rounding mode, chosen by the bytes, where verify and dump give
// the same results.

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/verify.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "fuzz/process.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

using namespace sml::inspect;

VerifyOptions const options{.limits = {.memory = std::uint64_t{1} << 26}};

bool are_same(Finding const& a, Finding const& b) {
    return a.severity == b.severity && a.offset == b.offset && a.path == b.path &&
           a.expected == b.expected && a.found == b.found;
}

bool are_same(Verdict const& a, Verdict const& b) {
    return a.answer == b.answer && a.odd_count == b.odd_count && a.heap == b.heap &&
           a.work == b.work && std::ranges::equal(a.findings, b.findings, [](auto& x, auto& y) {
               return are_same(x, y);
           });
}

std::string dump_of(fuzz::Input const& input) {
    std::ostringstream json;
    dump(*input.root, input.bytes, json, {.walk = options});
    return json.str();
}

/// One of the seven other processes: with another locale, another rounding mode, or both.
fuzz::Process other_process(fuzz::Input const& input) {
    constexpr int       roundings[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
    std::uint64_t const chosen = 1 + fuzz::hash_of(input) % 7;
    return {chosen >= 4 ? fuzz::Process::comma_locale : "C", roundings[chosen % 4]};
}

/// Most inputs are unsafe; one in four of these is dumped.
void check_elsewhere(fuzz::Input const& input, Verdict const& verdict) {
    bool const          is_unsafe = verdict.answer == Answer::unsafe;
    bool const          is_dumped = !is_unsafe || fuzz::hash_of(input) / 7 % 4 == 0;
    std::string const   dumped = is_dumped ? dump_of(input) : std::string();
    fuzz::Process const process = other_process(input);
    fuzz::require(process.is_set(), input, "the locale can't be set");
    fuzz::require(are_same(verify(*input.root, input.bytes, options), verdict), input,
                  "verify depends on the process");
    if (is_dumped) fuzz::require(dump_of(input) == dumped, input, "dump depends on the process");
    if (is_unsafe) return;
    std::string const fault = real_root(*input.root).fault_of_only_reading(input.bytes);
    fuzz::require(fault.empty(), input, "in another process: " + fault);
}

/// The bytes that a writer with a decimal comma makes of a good value are good, too, and have the
/// same digest.
void check_comma(fuzz::Input const& input) {
    std::string const   bytes = real_root(*input.root).read_and_write_with_comma(input.bytes);
    VerifyOptions const with_comma{.decimal_point = ","};
    fuzz::require(verify(*input.root, bytes, with_comma).answer == Answer::good, input,
                  "what is written with a decimal comma is not good");
    fuzz::require(digest(*input.root, bytes, with_comma.walk()) == digest(*input.root, input.bytes),
                  input, "with a decimal comma the digest is another one");
}

}  // namespace

/// Fails at the start if the locale is missing: half of the checks would then hold in any case.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::Process const process(fuzz::Process::comma_locale, FE_TONEAREST);
    if (process.is_set() && std::string_view(std::localeconv()->decimal_point) == ",") return 0;
    std::cerr << "read_fuzz: the locale " << fuzz::Process::comma_locale << " is missing\n";
    std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    fuzz::Input const input = fuzz::input_of(data, size);
    Verdict const     verdict = verify(*input.root, input.bytes, options);
    check_elsewhere(input, verdict);
    if (verdict.answer == Answer::unsafe) return -1;  // not kept in the corpus
    std::string const fault =
        real_root(*input.root).fault_of_reading(input.bytes, verdict.answer == Answer::good);
    fuzz::require(fault.empty(), input, fault);
    std::string const fault_of_dump = fault_of_dumping(*input.root, input.bytes);
    fuzz::require(fault_of_dump.empty(), input, fault_of_dump);
    if (verdict.answer == Answer::good) check_comma(input);
    return 0;
}

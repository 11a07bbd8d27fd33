// Bytes that are not unsafe are given to the real readers, and what dump shows is what they hold.

#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "inspect/verify.hpp"
#include "tests/inspect/real_roots.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace sml::inspect;
    constexpr std::uint64_t most_heap = std::uint64_t{1} << 26;

    if (size == 0) return 0;
    fuzz::Input const input = fuzz::input_of(data, size);
    Verdict const     verdict = verify(*input.root, input.bytes, {.limits = {.memory = most_heap}});
    if (verdict.answer == Answer::unsafe) return -1;  // not kept in the corpus
    std::string const fault =
        real_root(*input.root).fault_of_reading(input.bytes, verdict.answer == Answer::good);
    fuzz::require(fault.empty(), input, fault);
    std::string const fault_of_dump = fault_of_dumping(*input.root, input.bytes);
    fuzz::require(fault_of_dump.empty(), input, fault_of_dump);
    return 0;
}

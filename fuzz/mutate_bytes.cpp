// New inputs for the targets that take bytes: whole random values, edits of words and flags, pieces
// doubled or left out, entries of sets and tables copied, and what libFuzzer does by itself.

#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "inspect/verify.hpp"
#include "tests/golden/goldens.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

namespace {

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

/// What the writer makes of a random value.
std::string random_value(RealRoot const& root, Random& random) {
    RandomValues values(random(), {.elements = static_cast<int>(below(random, 4)),
                                   .depth = static_cast<int>(below(random, 7))});
    return root.random_bytes(values);
}

void edit_word(std::string& bytes, Random& random) {
    constexpr std::int32_t limit = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t words[] = {0, 1, 2, 3, -1, -2, 16, 64, limit, -limit - 1};
    std::int32_t           word = 0;
    if (bytes.size() < sizeof word) return;
    std::size_t const at = below(random, bytes.size() - sizeof word + 1);
    std::memcpy(&word, bytes.data() + at, sizeof word);
    auto const near =
        static_cast<std::uint32_t>(word) + static_cast<std::uint32_t>(below(random, 7)) - 3u;
    word = below(random, 2) == 0 ? words[below(random, std::size(words))]
                                 : static_cast<std::int32_t>(near);
    std::memcpy(bytes.data() + at, &word, sizeof word);
}

void edit_byte(std::string& bytes, Random& random) {
    constexpr char tried[] = {'T', 'F', '\0', '0', '-', 'A', 'a', '.', 'P', ' '};
    if (!bytes.empty()) bytes[below(random, bytes.size())] = tried[below(random, sizeof tried)];
}

/// Leaves a piece out or puts it in a second time.
void edit_piece(std::string& bytes, Random& random) {
    if (bytes.empty()) return;
    std::size_t const at = below(random, bytes.size());
    std::size_t const size = 1 + below(random, std::min<std::size_t>(bytes.size() - at, 32));
    if (below(random, 2) == 0)
        bytes.erase(at, size);
    else
        bytes.insert(below(random, bytes.size() + 1), bytes.substr(at, size));
}

/// Copies an entry of a set or table beside another one, so that a key is there twice. Leaves bytes
/// that are unsafe or have no entry as they are.
void copy_entry(sml::inspect::Root const& root, std::string& bytes, Random& random) {
    using namespace sml::inspect;
    VerifyOptions const options{.limits = {.memory = std::uint64_t{1} << 26}, .listed = 0};
    if (verify(root, bytes, options).answer == Answer::unsafe) return;
    auto const entries = golden::entries_in(root, bytes);
    if (entries.empty()) return;
    auto const& copied = entries[below(random, entries.size())];
    auto        beside = entries;
    std::erase_if(beside, [&](auto const& entry) { return entry.count_at != copied.count_at; });
    bytes = golden::with_copy(bytes, copied, beside[below(random, beside.size())],
                              below(random, 2) == 0);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned int seed) {
    Random            random(seed);
    std::size_t const choice = below(random, 64);
    if (size == 0 || choice >= 40) return LLVMFuzzerMutate(data, size, max_size);
    fuzz::Input const input = fuzz::input_of(data, size);
    std::string       bytes(input.bytes);
    if (choice == 0)
        bytes = random_value(real_root(*input.root), random);
    else if (choice < 20)
        edit_word(bytes, random);
    else if (choice < 26)
        edit_byte(bytes, random);
    else if (choice < 32)
        copy_entry(*input.root, bytes, random);
    else
        edit_piece(bytes, random);
    if (bytes.size() + 1 > max_size) return LLVMFuzzerMutate(data, size, max_size);
    std::ranges::copy(bytes, data + 1);
    return bytes.size() + 1;
}

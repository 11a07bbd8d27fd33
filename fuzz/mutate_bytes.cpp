// New inputs for the targets that take bytes: whole random values, edits of words and flags, pieces
// repeated or left out, copied entries of sets and maps, also under many keys that share a bucket,
// other texts in place of doubles, and libFuzzer's own mutations.

#include <sml/inspect/verify.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "tests/golden/goldens.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

/// The bytes that a writer makes of a random value.
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

/// Removes a piece, or inserts it a second time.
void edit_piece(std::string& bytes, Random& random) {
    if (bytes.empty()) return;
    std::size_t const at = below(random, bytes.size());
    std::size_t const size = 1 + below(random, std::min<std::size_t>(bytes.size() - at, 32));
    if (below(random, 2) == 0)
        bytes.erase(at, size);
    else
        bytes.insert(below(random, bytes.size() + 1), bytes.substr(at, size));
}

/// The entries of all sets and maps; none if the bytes are unsafe.
std::vector<golden::Entry> entries_of(sml::inspect::Root const& root, std::string_view bytes) {
    using namespace sml::inspect;
    VerifyOptions const options{.limits = {.memory = std::uint64_t{1} << 26}, .listed = 0};
    if (verify(root, bytes, options).answer == Answer::unsafe) return {};
    return golden::entries_in(root, bytes);
}

/// Inserts a copy of an entry next to another one in its set or map, so that its key is repeated.
/// Does nothing if the bytes are unsafe or have no entry.
void copy_entry(sml::inspect::Root const& root, std::string& bytes, Random& random) {
    auto const entries = entries_of(root, bytes);
    if (entries.empty()) return;
    auto const& copied = entries[below(random, entries.size())];
    auto        beside = entries;
    std::erase_if(beside, [&](auto const& entry) { return entry.count_at != copied.count_at; });
    bytes = golden::with_copy(bytes, copied, beside[below(random, beside.size())],
                              below(random, 2) == 0);
}

/// The length of the text after a length word at this offset, if it could be the text of a double;
/// else 0.
std::size_t double_at(std::string_view bytes, std::size_t at) {
    constexpr std::size_t longest = 40;
    std::uint32_t         length;
    if (bytes.size() - at < sizeof length) return 0;
    std::memcpy(&length, bytes.data() + at, sizeof length);
    at += sizeof length;
    if (length == 0 || length > longest || length > bytes.size() - at) return 0;
    std::string_view const text = bytes.substr(at, length);
    return text.find_first_not_of("0123456789+-., eExpinfa") == text.npos ? length : 0;
}

/// Replaces the text of a double by one that depends on the decimal point, or is out of range in
/// some rounding mode only, or both.
void edit_double(std::string& bytes, Random& random) {
    constexpr char const*    texts[] = {"1,500000",
                                        "1,5",
                                        ",5",
                                        ".5",
                                        "-.5",
                                        "1,5e999",
                                        "1,e999",
                                        "1e400.5",
                                        "0x1,8p5000",
                                        "0x,8p-1",
                                        "1.5e3",
                                        "1.7976931348623157e308",
                                        "1.7976931348623158e308",
                                        "-1.7976931348623158e308",
                                        "2.2250738585072011e-308",
                                        "2.2250738585072014e-308",
                                        "4.9e-324",
                                        "1e-310",
                                        "1 5e999",
                                        "1\u066B5e999",
                                        "nan",
                                        "-inf",
                                        "0.1234565"};
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at + sizeof(std::int32_t) <= bytes.size(); ++at)
        if (double_at(bytes, at) > 0) places.push_back(at);
    if (places.empty()) return;
    std::size_t const      at = places[below(random, places.size())];
    std::string_view const text = texts[below(random, std::size(texts))];
    auto const             length = static_cast<std::uint32_t>(text.size());
    bytes.replace(at + sizeof length, double_at(bytes, at), text);
    std::memcpy(bytes.data() + at, &length, sizeof length);
}

/// Inserts many copies of an entry of a set or map, under keys that share a bucket in a reader's
/// hash table: integers, or ids of strings without definition. Does nothing if there is no such
/// key.
void copy_entry_under_many_keys(sml::inspect::Root const& root, std::string& bytes,
                                std::size_t most_bytes, Random& random) {
    constexpr std::int32_t buckets[] = {29, 59, 127, 257, 541, 1109, 2357, 5087};
    auto                   entries = entries_of(root, bytes);
    std::erase_if(entries, [](auto const& entry) { return entry.key_end - entry.start != 4; });
    if (entries.empty() || bytes.size() >= most_bytes) return;
    auto const&        entry = entries[below(random, entries.size())];
    std::string        copy = bytes.substr(entry.start, entry.end - entry.start);
    std::size_t const  most = std::min<std::size_t>((most_bytes - bytes.size()) / copy.size(), 600);
    std::int32_t const step = buckets[below(random, std::size(buckets))];
    std::uint32_t const copies = static_cast<std::uint32_t>(below(random, most + 1));
    std::string         added;
    for (std::int32_t key = step; added.size() < copies * copy.size(); key += step) {
        std::memcpy(copy.data(), &key, sizeof key);
        added += copy;
    }
    std::uint32_t count;
    std::memcpy(&count, bytes.data() + entry.count_at, sizeof count);
    count += copies;
    std::memcpy(bytes.data() + entry.count_at, &count, sizeof count);
    bytes.insert(entry.end, added);
}

/// Writes a word somewhere that shares a bucket with others as an integer key, and has no
/// definition as an id.
void edit_id(std::string& bytes, Random& random) {
    constexpr std::int32_t steps[] = {541, 1109, 2357, 5087};
    if (bytes.size() < sizeof(std::int32_t)) return;
    auto const         times = static_cast<std::int32_t>(1 + below(random, 64));
    std::int32_t const id = times * steps[below(random, std::size(steps))];
    std::size_t const  at = below(random, bytes.size() - sizeof id + 1);
    std::memcpy(bytes.data() + at, &id, sizeof id);
}

/// Edits the bytes of an input in one of the ways of this file; `choice` is below 40.
void edit(fuzz::Input const& input, std::string& bytes, std::size_t choice, std::size_t most_bytes,
          Random& random) {
    if (choice == 0)
        bytes = random_value(real_root(*input.root), random);
    else if (choice < 16)
        edit_word(bytes, random);
    else if (choice < 20)
        edit_byte(bytes, random);
    else if (choice < 26)
        copy_entry(*input.root, bytes, random);
    else if (choice < 29)
        copy_entry_under_many_keys(*input.root, bytes, most_bytes, random);
    else if (choice < 33)
        edit_double(bytes, random);
    else if (choice < 35)
        edit_id(bytes, random);
    else
        edit_piece(bytes, random);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned int seed) {
    Random            random(seed);
    std::size_t const choice = below(random, 64);
    if (size == 0 || choice >= 40) return LLVMFuzzerMutate(data, size, max_size);
    fuzz::Input const input = fuzz::input_of(data, size);
    std::string       bytes(input.bytes);
    edit(input, bytes, choice, max_size - 1, random);
    if (bytes.size() + 1 > max_size) return LLVMFuzzerMutate(data, size, max_size);
    std::ranges::copy(bytes, data + 1);
    return bytes.size() + 1;
}

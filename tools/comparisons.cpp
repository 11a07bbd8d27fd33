#include "comparisons.hpp"

#include "errors.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace bradep {

using sml::Strings_T;

namespace {

// Holds the text until the process ends. Otherwise the release of its last handle would look it up
// once more, outside of the limit. The string table may have grown by then, so that texts share a
// bucket that did not when they were counted. At exit the string table frees all texts without a
// look-up.
void keep_until_the_process_ends(Strings_T const& text) {
    static auto& kept = *new std::vector<Strings_T>;
    kept.push_back(text);
}

constexpr int         recent_bits = 12;
constexpr std::size_t recent_texts = std::size_t{1} << recent_bits;

// Where a text is looked for among the recent ones. Its first and last bytes and its length tell
// most texts of a log apart.
std::size_t place_of(std::string_view text) {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    auto const    length = std::min(text.size(), sizeof first);
    std::memcpy(&first, text.data(), length);
    std::memcpy(&last, text.data() + text.size() - length, length);
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;  // spreads each bit over the upper ones
    return ((first ^ std::rotl(last, 23)) + text.size()) * odd >> (64 - recent_bits);
}

}  // namespace

Comparisons::Comparisons(std::uint64_t most) : most_(most), recent_(recent_texts) {}

Strings_T Comparisons::interned(std::string_view text) {
    if (text.empty()) return {};  // has no entry
    auto& recent = recent_[place_of(text)];
    if (recent.str() == text) return recent;
    Strings_T  handle;
    auto const keys = look_up(text, handle);
    count_look_up(keys);
    if (keys <= ordinary) recent = handle;
    return handle;
}

std::size_t Comparisons::look_up(std::string_view text, Strings_T& handle) {
    auto const&       texts = Strings_T::fAllStrings;
    std::size_t const known = texts.size();
    handle = std::string(text);
    if (texts.size() > known) keep_until_the_process_ends(handle);
    // The hash alone selects the bucket.
    return texts.bucket_size(texts.bucket({{}, handle.hash(), 0}));
}

void Comparisons::spend(std::uint64_t comparisons) {
    counted_ += comparisons;
    if (counted_ > most_)
        throw DamagedInput("keys collide in the hash tables, which takes more than --max-work " +
                           std::to_string(most_) + " comparisons");
}

}  // namespace bradep

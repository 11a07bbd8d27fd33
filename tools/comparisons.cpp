#include "comparisons.hpp"

#include "errors.hpp"

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

}  // namespace

Strings_T Comparisons::interned(std::string const& text) {
    auto const&       texts = Strings_T::fAllStrings;
    std::size_t const known = texts.size();
    Strings_T const   handle(text);
    if (handle == Strings_T()) return handle;  // the empty text has no entry
    if (texts.size() > known) keep_until_the_process_ends(handle);
    // The hash alone selects the bucket.
    count_look_up(texts.bucket_size(texts.bucket({{}, handle.hash(), 0})));
    return handle;
}

void Comparisons::spend(std::uint64_t comparisons) {
    counted_ += comparisons;
    if (counted_ > most_)
        throw DamagedInput("keys collide in the hash tables, which takes more than --max-work " +
                           std::to_string(most_) + " comparisons");
}

}  // namespace bradep

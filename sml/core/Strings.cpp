#include <sml/core/Strings.hpp>

#include <bits/hash_bytes.h>

namespace sml {

namespace {

// The seed of the standard library's own string hash, so that the two agree.
constexpr std::size_t hash_seed = 0xc70f6907;

}  // namespace

// The first static object of the library, and so the last to be destroyed. Its destructor frees
// the entries whatever their counts are.
__attribute__((init_priority(101)))
std::unordered_set<Strings_T::StringWithRefCount, Strings_T::StringWithRefCountHash,
                   std::equal_to<Strings_T::StringWithRefCount>>
    Strings_T::fAllStrings;

void Strings_T::setStr(std::string const& text) {
    if (text.empty()) {
        fStr = nullptr;
        return;
    }
    std::uint64_t const hash = std::_Hash_bytes(text.data(), text.size(), hash_seed);
    auto const [entry, inserted] = fAllStrings.insert(StringWithRefCount{text, hash, 1});
    fStr = &*entry;
    if (!inserted) ++entry->count;
}

}  // namespace sml

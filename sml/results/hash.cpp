#include <sml/results/hash.hpp>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace sml::results {

namespace {

Hash hash_of_bytes(void const* bytes, std::size_t size) {
    XXH128_hash_t const hash = XXH3_128bits(bytes, size);
    Hash const          made{hash.high64, hash.low64};
    return made.is_none() ? Hash{0, 1} : made;
}

}  // namespace

Hash hash_of(std::string_view text) { return hash_of_bytes(text.data(), text.size()); }

Hash hash_of(std::uint64_t number) { return hash_of_bytes(&number, sizeof number); }

Hash hash_of(std::initializer_list<Hash> parts) {
    return hash_of_bytes(parts.begin(), parts.size() * sizeof(Hash));
}

}  // namespace sml::results

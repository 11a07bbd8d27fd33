#include "tests/inspect/root_cases.hpp"

#include <sml/bindings/bindings.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>

namespace {

/// Reads from a block of exactly this size, where a sanitizer reports a read beyond the bytes, and
/// from a stream, which shows how many were read.
template <class T>
void read_exactly(std::string const& bytes, void (*to_cxx)(T&, char const*),
                  void (*from_stream)(T&, std::istream&)) {
    auto const block = std::make_unique<char[]>(bytes.size());
    std::memcpy(block.get(), bytes.data(), bytes.size());
    T value{};
    EXPECT_NO_THROW(to_cxx(value, block.get()));
    T                  streamed{};
    std::istringstream stream(bytes + "x");
    stream >> std::noskipws;
    EXPECT_NO_THROW(from_stream(streamed, stream));
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
}

}  // namespace

std::vector<RootCase> const& root_cases() {
#define SML_ROOT(Stem, ...)                                                                       \
    {#Stem, [](RandomValues& random) { return sml::Stem##_fromCxx(random.make<__VA_ARGS__>()); }, \
     [](std::string const& bytes) {                                                               \
         read_exactly<__VA_ARGS__>(bytes, &sml::Stem##_toCxx, &sml::Stem##_fromStream);           \
     },                                                                                           \
     [](std::string const& bytes) {                                                               \
         __VA_ARGS__ value{};                                                                     \
         sml::Stem##_toCxx(value, bytes.data());                                                  \
         return sml::Stem##_fromCxx(value);                                                       \
     }},
    static std::vector<RootCase> const cases{
#include <sml/bindings/roots.def>
    };
    return cases;
}

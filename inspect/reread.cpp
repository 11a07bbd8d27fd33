#include "inspect/reread.hpp"

#include "bindings/bindings.hpp"

#include <array>

namespace sml::inspect {

namespace {

template <class T>
std::string reread(char const* bytes, void (*to_cxx)(T&, char const*),
                   std::string const& (*from_cxx)(T const&)) {
    T value{};
    to_cxx(value, bytes);
    return from_cxx(value);
}

// In the order of the roots.
constexpr std::array<std::string (*)(char const*), 40> all{
#define SML_ROOT(Stem, ...) \
    [](char const* bytes) { return reread<__VA_ARGS__>(bytes, &Stem##_toCxx, &Stem##_fromCxx); },
#include "bindings/roots.def"
};

}  // namespace

std::string read_and_write(Root const& root, char const* bytes) {
    return all[static_cast<std::size_t>(&root - roots().data())](bytes);
}

}  // namespace sml::inspect

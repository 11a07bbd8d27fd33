#include "tests/plain/roots.hpp"

#include <sml/bindings/bindings.hpp>
#include "tests/random_values.hpp"
#include "tests/reference/plain.hpp"

namespace plain_test {

namespace {

template <class T>
T const& as(void const* value) {
    return *static_cast<T const*>(value);
}
template <class T>
T& as(void* value) {
    return *static_cast<T*>(value);
}

}  // namespace

#define SML_ROOT(Stem, ...)                                                                        \
    Root{#Stem,                                                                                    \
         []() -> Object { return std::make_shared<__VA_ARGS__>(); },                               \
         [](std::uint64_t seed, int elements) -> Object {                                          \
             return std::make_shared<__VA_ARGS__>(                                                 \
                 RandomValues(seed, {.elements = elements}).make<__VA_ARGS__>());                  \
         },                                                                                        \
         [](void* target, void const* source) {                                                    \
             as<__VA_ARGS__>(target) = as<__VA_ARGS__>(source);                                    \
         },                                                                                        \
         [](void const* value) { return sml::Stem##_fromCxx(as<__VA_ARGS__>(value)); },            \
         [](void const* value) -> std::string const& {                                             \
             return sml::Stem##_fromCxx(as<__VA_ARGS__>(value));                                   \
         },                                                                                        \
         [](void* value, char const* bytes) { sml::Stem##_toCxx(as<__VA_ARGS__>(value), bytes); }, \
         [](void const* value, std::ostream& stream) {                                             \
             sml::Stem##_toStream(as<__VA_ARGS__>(value), stream);                                 \
         },                                                                                        \
         [](void* value, std::istream& stream) {                                                   \
             sml::Stem##_fromStream(as<__VA_ARGS__>(value), stream);                               \
         },                                                                                        \
         [](void const* value) { return plain::from_cxx(as<__VA_ARGS__>(value)); },                \
         [](void const* value) -> std::string const& {                                             \
             return plain::from_cxx(as<__VA_ARGS__>(value));                                       \
         },                                                                                        \
         [](void* value, char const* bytes) { plain::to_cxx(as<__VA_ARGS__>(value), bytes); },     \
         [](void const* value, std::ostream& stream) {                                             \
             plain::to_stream(as<__VA_ARGS__>(value), stream);                                     \
         },                                                                                        \
         [](void* value, std::istream& stream) {                                                   \
             plain::from_stream(as<__VA_ARGS__>(value), stream);                                   \
         }},

std::vector<Root> const& roots() {
    static std::vector<Root> const all = {
#include <sml/bindings/roots.def>
    };
    return all;
}

}  // namespace plain_test

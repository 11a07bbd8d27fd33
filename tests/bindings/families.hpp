#pragma once
// The seven functions of each root type, as values that tests can pass around.

#include <sml/bindings/bindings.hpp>

#include <iosfwd>
#include <string>

/// The signatures are written out, so that a function with another one does not compile.
template <class T>
struct Family {
    void (*to_cxx)(T&, char const*);
    void (*deserialize)(T&, char const*);
    void (*flat_to_cxx)(T*, char const*);
    std::string const& (*from_cxx)(T const&);
    char const* (*flat_from_cxx)(T const*);
    void (*to_stream)(T const&, std::ostream&);
    void (*from_stream)(T&, std::istream&);
};

/// The family of a stem. The type is the second argument.
#define FAMILY(Stem, ...)                                                                    \
    Family<__VA_ARGS__> {                                                                    \
        &sml::Stem##_toCxx, &sml::deserializeSmlData, &::Stem##_toCxx, &sml::Stem##_fromCxx, \
            &::Stem##_fromCxx, &sml::Stem##_toStream, &sml::Stem##_fromStream                \
    }

/// Calls `use(stem, family)` for each root.
template <class Use>
void for_each_root(Use&& use) {
#define SML_ROOT(Stem, ...) use(#Stem, FAMILY(Stem, __VA_ARGS__));
#include <sml/bindings/roots.def>
}

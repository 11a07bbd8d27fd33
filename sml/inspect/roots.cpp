#include <sml/bindings/bindings.hpp>
#include <sml/inspect/describe.hpp>

namespace sml::inspect {

namespace {

#define SML_ROOT(Stem, ...) Root{#Stem, describe<__VA_ARGS__>()},
constexpr Root all_roots[] = {
#include <sml/bindings/roots.def>
};

}  // namespace

std::span<Root const> roots() { return all_roots; }

Root const* find_root(std::string_view stem) {
    for (Root const& root : all_roots)
        if (root.stem == stem) return &root;
    return nullptr;
}

}  // namespace sml::inspect

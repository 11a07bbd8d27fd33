#include "export/export.hpp"

#include "errors.hpp"

namespace bradep {

void refuse_other_root(std::string const& target, sml::inspect::Root const& there,
                       sml::tables::ResultSets const& sets) {
    throw DamagedInput(sets.set(1).name + ": is read as a " +
                       std::string(sets.schema().root->stem) + ", but " + target +
                       " has values of " + std::string(there.stem));
}

}  // namespace bradep

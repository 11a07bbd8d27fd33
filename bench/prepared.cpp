#include "bench/prepared.hpp"

#include "bench/figures.hpp"
#include "bench/workload.hpp"
#include "bindings/bindings.hpp"

#include <iostream>
#include <map>

namespace bench {

Prepared::Prepared(std::size_t checks)
    : value(workload(checks)), bytes(sml::Application_Results_Application_Results_fromCxx(value)) {
    std::cerr << figures(value) << '\n';
}

Prepared const& prepared(std::size_t checks) {
    static std::map<std::size_t, Prepared> made;
    return made.try_emplace(checks, checks).first->second;
}

void report(benchmark::State& state, Prepared const& data) {
    using benchmark::Counter;
    auto const rounds = static_cast<double>(state.iterations());
    auto const bytes = static_cast<double>(data.bytes.size());
    auto const checks = static_cast<double>(data.value.checks.size());
    state.counters["bytes"] = Counter(rounds * bytes, Counter::kIsRate);
    state.counters["check"] = Counter(rounds * checks, Counter::kIsRate | Counter::kInvert);
}

}  // namespace bench

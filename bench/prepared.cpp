#include "bench/prepared.hpp"

#include <sml/bindings/bindings.hpp>
#include "bench/figures.hpp"
#include "bench/workload.hpp"

#include <iostream>
#include <map>

namespace bench {

namespace {

/// Calls `make` once for each size and keeps the results.
template <class Make>
Prepared const& kept(std::map<std::size_t, Prepared>& made, std::size_t checks, Make make) {
    auto const known = made.find(checks);
    return known != made.end() ? known->second
                               : made.try_emplace(checks, make(checks)).first->second;
}

}  // namespace

std::string const& Prepared::bytes() const {
    if (bytes_.empty()) {
        bytes_ = sml::Application_Results_Application_Results_fromCxx(value);
        std::cerr << figures(value) << '\n';
    }
    return bytes_;
}

Prepared const& prepared(std::size_t checks) {
    static std::map<std::size_t, Prepared> made;
    return kept(made, checks, [](std::size_t size) { return workload(size); });
}

Prepared const& prepared_with_payloads(std::size_t checks) {
    static std::map<std::size_t, Prepared> made;
    return kept(made, checks, [](std::size_t size) { return workload_with_payloads(size); });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

void report(benchmark::State& state, Prepared const& data) {
    using benchmark::Counter;
    auto const rounds = static_cast<double>(state.iterations());
    auto const bytes = static_cast<double>(data.bytes().size());
    auto const checks = static_cast<double>(data.value.checks.size());
    state.counters["bytes"] = Counter(rounds * bytes, Counter::kIsRate);
    state.counters["check"] = Counter(rounds * checks, Counter::kIsRate | Counter::kInvert);
}

}  // namespace bench

// How fast a result set goes to bytes and back.

#include "bench/prepared.hpp"
#include "bindings/bindings.hpp"

#include <optional>

namespace {

void from_cxx(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto const round : state)
        benchmark::DoNotOptimize(
            sml::Application_Results_Application_Results_fromCxx(data.value).data());
    bench::report(state, data);
}

// Destroying what was read is not timed.
void to_cxx(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto const round : state) {
        std::optional<sml::Application_Results::T_Application_Results> value(std::in_place);
        sml::Application_Results_Application_Results_toCxx(*value, data.bytes.data());
        benchmark::DoNotOptimize(&*value);
        state.PauseTiming();
        value.reset();
        state.ResumeTiming();
    }
    bench::report(state, data);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(from_cxx)->Name("fromCxx")->Apply(sizes);
BENCHMARK(to_cxx)->Name("toCxx")->Apply(sizes);

}  // namespace

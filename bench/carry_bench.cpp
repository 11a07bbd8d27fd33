// How fast a result set goes to bytes and back, beside the plain reference.

#include "bench/plain/plain.hpp"
#include "bench/prepared.hpp"
#include "bindings/bindings.hpp"

#include <optional>

namespace {

using sml::Application_Results::T_Application_Results;

struct Library {
    static std::string const& from_cxx(T_Application_Results const& value) {
        return sml::Application_Results_Application_Results_fromCxx(value);
    }
    static void to_cxx(T_Application_Results& value, char const* bytes) {
        sml::Application_Results_Application_Results_toCxx(value, bytes);
    }
};

struct Plain {
    static std::string const& from_cxx(T_Application_Results const& value) {
        return plain::from_cxx(value);
    }
    static void to_cxx(T_Application_Results& value, char const* bytes) {
        plain::to_cxx(value, bytes);
    }
};

template <class Carrier>
void from_cxx(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto const round : state)
        benchmark::DoNotOptimize(Carrier::from_cxx(data.value).data());
    bench::report(state, data);
}

// Destroying what was read is not timed.
template <class Carrier>
void to_cxx(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto const round : state) {
        std::optional<T_Application_Results> value(std::in_place);
        Carrier::to_cxx(*value, data.bytes.data());
        benchmark::DoNotOptimize(&*value);
        state.PauseTiming();
        value.reset();
        state.ResumeTiming();
    }
    bench::report(state, data);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(from_cxx<Plain>)->Name("plain/fromCxx")->Apply(sizes);
BENCHMARK(from_cxx<Library>)->Name("fromCxx")->Apply(sizes);
BENCHMARK(to_cxx<Plain>)->Name("plain/toCxx")->Apply(sizes);
BENCHMARK(to_cxx<Library>)->Name("toCxx")->Apply(sizes);

}  // namespace

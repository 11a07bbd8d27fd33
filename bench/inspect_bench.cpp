// How fast bytes of unknown origin are verified and dumped, beside reading them.

#include "bench/prepared.hpp"
#include "inspect/dump.hpp"
#include "inspect/verify.hpp"

#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string_view>

namespace {

using namespace sml::inspect;

/// Takes everything and counts it.
class Sink : public std::streambuf {
public:
    std::uint64_t bytes = 0;

private:
    std::streamsize xsputn(char const*, std::streamsize size) override {
        bytes += static_cast<std::uint64_t>(size);
        return size;
    }
    int overflow(int byte) override {
        ++bytes;
        return byte;
    }
};

Root const& workload_root() { return *find_root("Application_Results_Application_Results"); }

void verify_workload(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto const round : state)
        if (verify(workload_root(), data.bytes).answer != Answer::good)
            throw std::logic_error("the workload is not good");
    bench::report(state, data);
}

/// Also reports the bytes of JSON a second ("json").
void dump_workload(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    Sink        sink;
    for ([[maybe_unused]] auto const round : state) {
        std::ostream out(&sink);
        dump(workload_root(), data.bytes, out);
    }
    bench::report(state, data);
    state.counters["json"] =
        benchmark::Counter(static_cast<double>(sink.bytes), benchmark::Counter::kIsRate);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(verify_workload)->Name("verify")->Apply(sizes);
BENCHMARK(dump_workload)->Name("dump")->Apply(sizes);

}  // namespace

// Measures how fast bytes of unknown origin are verified and dumped.

#include <sml/inspect/dump.hpp>
#include <sml/inspect/verify.hpp>
#include "bench/prepared.hpp"
#include "bench/special_files.hpp"

#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace {

using namespace sml::inspect;

/// Discards and counts all bytes.
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
        if (verify(workload_root(), data.bytes()).answer != Answer::good)
            throw std::logic_error("the workload is not good");
    bench::report(state, data);
}

/// Also reports the bytes of JSON per second ("json").
void dump_workload(benchmark::State& state) {
    auto const& data = bench::prepared(static_cast<std::size_t>(state.range(0)));
    Sink        sink;
    for ([[maybe_unused]] auto const round : state) {
        std::ostream out(&sink);
        dump(workload_root(), data.bytes(), out);
    }
    bench::report(state, data);
    state.counters["json"] =
        benchmark::Counter(static_cast<double>(sink.bytes), benchmark::Counter::kIsRate);
}

/// Verifies about ten megabytes that consist almost entirely of one kind.
template <class Make>
void verify_kind(benchmark::State& state, char const* stem, Make make) {
    constexpr std::size_t   size = 10'000'000;
    constexpr std::uint64_t seed = 1;
    std::string const       bytes = make(size, seed);
    for ([[maybe_unused]] auto const round : state)
        if (verify(*find_root(stem), bytes).answer != Answer::good)
            throw std::logic_error("the bytes are not good");
    state.counters["bytes"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * static_cast<double>(bytes.size()),
        benchmark::Counter::kIsRate);
}

std::string numbers(std::size_t size, std::uint64_t seed) {
    return sml::Answers_AnswerInspectionPoint_fromCxx(bench::short_numbers(size, seed));
}
std::string strings(std::size_t size, std::uint64_t seed) {
    return sml::String_To_StringSet_T_fromCxx(bench::distinct_strings(size, seed));
}
std::string references(std::size_t size, std::uint64_t seed) {
    return sml::Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T_fromCxx(
        bench::string_references(size, seed));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(verify_workload)->Name("verify")->Apply(sizes);
BENCHMARK_CAPTURE(verify_kind, numbers, "Answers_AnswerInspectionPoint", numbers)
    ->Name("verify numbers")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(verify_kind, strings, "String_To_StringSet_T", strings)
    ->Name("verify strings")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(verify_kind, references,
                  "Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T", references)
    ->Name("verify references")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dump_workload)->Name("dump")->Apply(sizes);

}  // namespace

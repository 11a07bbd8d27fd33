// Measures how fast a result set is written and read, in memory and in files, and how fast two are
// compared and one is destroyed. The reference implementation and, if they are built, other
// libraries are measured as well.
//
// "first" is the time of the first call in the process, in microseconds per check.

#include <sml/bindings/bindings.hpp>
#include "bench/prepared.hpp"
#include "bench/scratch_file.hpp"
#include "bench/serialisers.hpp"
#include "tests/reference/equal.hpp"
#include "tests/reference/plain.hpp"

#include <benchmark/benchmark.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace {

using bench::Graph;
using bench::Serialiser;

struct Library {
    static constexpr char const* name = "library";
    static std::string const&    from_cxx(Graph const& value) {
           return sml::Application_Results_Application_Results_fromCxx(value);
    }
    static void to_cxx(Graph& value, char const* bytes) {
        sml::Application_Results_Application_Results_toCxx(value, bytes);
    }
    static void to_stream(Graph const& value, std::ostream& stream) {
        sml::Application_Results_Application_Results_toStream(value, stream);
    }
    static void from_stream(Graph& value, std::istream& stream) {
        sml::Application_Results_Application_Results_fromStream(value, stream);
    }
    static bool equal(Graph const& a, Graph const& b) { return a == b; }
};

struct Plain {
    static constexpr char const* name = "plain";
    static std::string const&    from_cxx(Graph const& value) { return plain::from_cxx(value); }
    static void to_cxx(Graph& value, char const* bytes) { plain::to_cxx(value, bytes); }
    static void to_stream(Graph const& value, std::ostream& stream) {
        plain::to_stream(value, stream);
    }
    static void from_stream(Graph& value, std::istream& stream) {
        plain::from_stream(value, stream);
    }
    static bool equal(Graph const& a, Graph const& b) { return plain::equal(a, b); }
};

bench::Prepared const& data_of(benchmark::State const& state) {
    return bench::prepared(static_cast<std::size_t>(state.range(0)));
}

bench::Prepared const& data_with_payloads_of(benchmark::State const& state) {
    return bench::prepared_with_payloads(static_cast<std::size_t>(state.range(0)));
}

/// Calls `call` only the first time for this `name` and size, and reports how long that first call
/// took.
template <class Call>
void time_first(benchmark::State& state, std::string const& name, Call const& call) {
    using Clock = std::chrono::steady_clock;
    using Microseconds = std::chrono::duration<double, std::micro>;
    static std::map<std::pair<std::string, std::int64_t>, double> times;
    auto const [time, is_first] = times.try_emplace({name, state.range(0)});
    if (is_first) {
        auto const start = Clock::now();
        call();
        time->second = Microseconds(Clock::now() - start).count();
    }
    state.counters["first"] = time->second / static_cast<double>(state.range(0));
}

/// Times `read` into a fresh value; destroying it is not timed.
template <class Read>
void time_reading(benchmark::State& state, bench::Prepared const& data, Read const& read) {
    for ([[maybe_unused]] auto const round : state) {
        std::optional<Graph> value(std::in_place);
        read(*value);
        benchmark::DoNotOptimize(&*value);
        state.PauseTiming();
        value.reset();
        state.ResumeTiming();
    }
    bench::report(state, data);
}

void encode(benchmark::State& state, Serialiser const& serialiser) {
    auto const& data = data_of(state);
    std::size_t size = 0;
    time_first(state, serialiser.name + std::string(" encode"),
               [&] { size = serialiser.encode(data.value); });
    for ([[maybe_unused]] auto const round : state)
        benchmark::DoNotOptimize(size = serialiser.encode(data.value));
    bench::report(state, data);
    state.counters["size"] = static_cast<double>(size);
}

void decode(benchmark::State& state, Serialiser const& serialiser) {
    auto const& data = data_of(state);
    serialiser.encode(data.value);
    std::optional<Graph> first(std::in_place);
    bool                 was_first = false;
    time_first(state, serialiser.name + std::string(" decode"), [&] {
        serialiser.decode(*first);
        was_first = true;
    });
    if (was_first && !plain::equal(data.value, *first))
        return state.SkipWithError("what was read is not what was written");
    first.reset();
    time_reading(state, data, [&](Graph& value) { serialiser.decode(value); });
}

/// Whether the stream flushes itself after each item (output), or another stream before each item
/// (input).
enum class Flushes { nothing, each_item };

template <class Own, Flushes flushes = Flushes::nothing>
void to_stream(benchmark::State& state) {
    auto const&               data = data_of(state);
    bench::Scratch_File const file;
    for ([[maybe_unused]] auto const round : state) {
        std::ofstream stream(file.path(), std::ios::binary);
        if (flushes == Flushes::each_item) stream.setf(std::ios::unitbuf);
        Own::to_stream(data.value, stream);
        stream.close();
        if (!stream) state.SkipWithError("the file could not be written");
    }
    bench::report(state, data);
}

template <class Own, Flushes flushes = Flushes::nothing>
void from_stream(benchmark::State& state) {
    auto const&               data = data_of(state);
    bench::Scratch_File const file;
    std::ofstream(file.path(), std::ios::binary) << data.bytes();
    time_reading(state, data, [&](Graph& value) {
        std::ifstream stream(file.path(), std::ios::binary);
        if (flushes == Flushes::each_item) stream.tie(&std::cout);
        Own::from_stream(value, stream);
        if (!stream) state.SkipWithError("the file could not be read");
    });
}

/// Compares graphs that are equal but share no memory except for the texts.
template <class Own>
void time_equal(benchmark::State& state, bench::Prepared const& data) {
    Graph other;
    Library::to_cxx(other, data.bytes().data());
    for ([[maybe_unused]] auto const round : state)
        if (!Own::equal(data.value, other)) state.SkipWithError("equal values are unequal");
    bench::report(state, data);
}

template <class Own>
void equal(benchmark::State& state) {
    time_equal<Own>(state, data_of(state));
}

/// Measures `==` with the graphs that `less` is measured with.
void equal_with_payloads(benchmark::State& state) {
    time_equal<Library>(state, data_with_payloads_of(state));
}

/// Compares graphs that are equal and in which no part is less than the other, so that `<` has to
/// compare everything.
void less(benchmark::State& state) {
    auto const& data = data_with_payloads_of(state);
    Graph       other;
    Library::to_cxx(other, data.bytes().data());
    if (other < data.value) return state.SkipWithError("a value is less than its equal");
    for ([[maybe_unused]] auto const round : state)
        if (data.value < other) state.SkipWithError("a value is less than its equal");
    bench::report(state, data);
}

void destroy(benchmark::State& state) {
    auto const& data = data_of(state);
    for ([[maybe_unused]] auto const round : state) {
        state.PauseTiming();
        std::optional<Graph> value(std::in_place);
        Library::to_cxx(*value, data.bytes().data());
        state.ResumeTiming();
        value.reset();
    }
    bench::report(state, data);
}

template <class Own>
bool add() {
    static std::string const* bytes = nullptr;
    bench::add_serialiser({Own::name,
                           [](Graph const& value) {
                               bytes = &Own::from_cxx(value);
                               return bytes->size();
                           },
                           [](Graph& value) { Own::to_cxx(value, bytes->data()); }});
    std::string const name = Own::name;
    bench::sizes(benchmark::RegisterBenchmark((name + "/toStream").c_str(), to_stream<Own>));
    bench::sizes(benchmark::RegisterBenchmark((name + "/fromStream").c_str(), from_stream<Own>));
    for (auto* const slow : {
             benchmark::RegisterBenchmark((name + "/toStreamUnitbuf").c_str(),
                                          to_stream<Own, Flushes::each_item>),
             benchmark::RegisterBenchmark((name + "/fromStreamTied").c_str(),
                                          from_stream<Own, Flushes::each_item>),
         })
        slow->Arg(10'000)->Unit(benchmark::kMillisecond);
    bench::sizes(benchmark::RegisterBenchmark((name + "/equal").c_str(), equal<Own>));
    return true;
}

bool const plain_is_added = add<Plain>();
bool const library_is_added = add<Library>();

BENCHMARK(equal_with_payloads)->Name("library/equal_with_payloads")->Apply(bench::sizes);
BENCHMARK(less)->Name("library/less")->Apply(bench::sizes);
BENCHMARK(destroy)->Name("library/destroy")->Apply(bench::sizes);

}  // namespace

bool bench::add_serialiser(Serialiser serialiser) {
    std::string const name = serialiser.name;
    sizes(benchmark::RegisterBenchmark((name + "/encode").c_str(), encode, serialiser));
    sizes(benchmark::RegisterBenchmark((name + "/decode").c_str(), decode, std::move(serialiser)));
    return true;
}

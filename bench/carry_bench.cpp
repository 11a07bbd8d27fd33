// How fast a result set goes to bytes and back, into files and out of them, how fast two are
// compared and one is destroyed; beside the plain reference.

#include "bench/plain/equal.hpp"
#include "bench/plain/plain.hpp"
#include "bench/prepared.hpp"
#include "bindings/bindings.hpp"

#include <unistd.h>

#include <filesystem>
#include <fstream>
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
    static void to_stream(T_Application_Results const& value, std::ostream& stream) {
        sml::Application_Results_Application_Results_toStream(value, stream);
    }
    static void from_stream(T_Application_Results& value, std::istream& stream) {
        sml::Application_Results_Application_Results_fromStream(value, stream);
    }
    static bool equal(T_Application_Results const& a, T_Application_Results const& b) {
        return a == b;
    }
};

struct Plain {
    static std::string const& from_cxx(T_Application_Results const& value) {
        return plain::from_cxx(value);
    }
    static void to_cxx(T_Application_Results& value, char const* bytes) {
        plain::to_cxx(value, bytes);
    }
    static void to_stream(T_Application_Results const& value, std::ostream& stream) {
        plain::to_stream(value, stream);
    }
    static void from_stream(T_Application_Results& value, std::istream& stream) {
        plain::from_stream(value, stream);
    }
    static bool equal(T_Application_Results const& a, T_Application_Results const& b) {
        return plain::equal(a, b);
    }
};

/// A file of its own that goes away at the end.
class Scratch_File {
public:
    Scratch_File()
        : path_(std::filesystem::temp_directory_path() /
                ("bradep-bench-" + std::to_string(::getpid()))) {}
    ~Scratch_File() { std::filesystem::remove(path_); }
    Scratch_File(Scratch_File const&) = delete;
    Scratch_File& operator=(Scratch_File const&) = delete;

    std::filesystem::path const& path() const { return path_; }

private:
    std::filesystem::path path_;
};

bench::Prepared const& data_of(benchmark::State const& state) {
    return bench::prepared(static_cast<std::size_t>(state.range(0)));
}

template <class Carrier>
void from_cxx(benchmark::State& state) {
    auto const& data = data_of(state);
    for ([[maybe_unused]] auto const round : state)
        benchmark::DoNotOptimize(Carrier::from_cxx(data.value).data());
    bench::report(state, data);
}

/// Times `read` into a fresh value; destroying it is not timed.
template <class Read>
void time_reading(benchmark::State& state, Read const& read) {
    for ([[maybe_unused]] auto const round : state) {
        std::optional<T_Application_Results> value(std::in_place);
        read(*value);
        benchmark::DoNotOptimize(&*value);
        state.PauseTiming();
        value.reset();
        state.ResumeTiming();
    }
    bench::report(state, data_of(state));
}

template <class Carrier>
void to_cxx(benchmark::State& state) {
    auto const& data = data_of(state);
    time_reading(state,
                 [&](T_Application_Results& value) { Carrier::to_cxx(value, data.bytes.data()); });
}

template <class Carrier>
void to_stream(benchmark::State& state) {
    auto const&        data = data_of(state);
    Scratch_File const file;
    for ([[maybe_unused]] auto const round : state) {
        std::ofstream stream(file.path(), std::ios::binary);
        Carrier::to_stream(data.value, stream);
        stream.close();
        if (!stream) state.SkipWithError("the file could not be written");
    }
    bench::report(state, data);
}

template <class Carrier>
void from_stream(benchmark::State& state) {
    auto const&        data = data_of(state);
    Scratch_File const file;
    std::ofstream(file.path(), std::ios::binary) << data.bytes;
    time_reading(state, [&](T_Application_Results& value) {
        std::ifstream stream(file.path(), std::ios::binary);
        Carrier::from_stream(value, stream);
        if (!stream) state.SkipWithError("the file could not be read");
    });
}

/// Of graphs that are equal but share no memory except for the texts.
template <class Carrier>
void equal(benchmark::State& state) {
    auto const&           data = data_of(state);
    T_Application_Results other;
    Library::to_cxx(other, data.bytes.data());
    for ([[maybe_unused]] auto const round : state)
        if (!Carrier::equal(data.value, other)) state.SkipWithError("equal values are unequal");
    bench::report(state, data);
}

void destroy(benchmark::State& state) {
    auto const& data = data_of(state);
    for ([[maybe_unused]] auto const round : state) {
        state.PauseTiming();
        std::optional<T_Application_Results> value(std::in_place);
        Library::to_cxx(*value, data.bytes.data());
        state.ResumeTiming();
        value.reset();
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
BENCHMARK(to_stream<Plain>)->Name("plain/toStream")->Apply(sizes);
BENCHMARK(to_stream<Library>)->Name("toStream")->Apply(sizes);
BENCHMARK(from_stream<Plain>)->Name("plain/fromStream")->Apply(sizes);
BENCHMARK(from_stream<Library>)->Name("fromStream")->Apply(sizes);
BENCHMARK(equal<Plain>)->Name("plain/equal")->Apply(sizes);
BENCHMARK(equal<Library>)->Name("equal")->Apply(sizes);
BENCHMARK(destroy)->Name("destroy")->Apply(sizes);

}  // namespace

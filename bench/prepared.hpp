#pragma once
// What the benchmarks measure on, made once for each size.

#include "schema/Application_Results.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace bench {

/// A workload and its bytes.
struct Prepared {
    explicit Prepared(std::size_t checks);

    sml::Application_Results::T_Application_Results value;
    std::string                                     bytes;
};

/// Made at the first call, with its figures on standard error; stays for the run.
Prepared const& prepared(std::size_t checks);

/// Reports the bytes a second and the time a check ("bytes", "check") of a benchmark that went over
/// the data once in each iteration.
void report(benchmark::State& state, Prepared const& data);

}  // namespace bench

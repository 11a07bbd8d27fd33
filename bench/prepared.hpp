#pragma once
// What the benchmarks measure on, made once for each size.

#include <sml/schema/Application_Results.hpp>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <utility>

namespace bench {

/// A workload and its bytes.
class Prepared {
public:
    explicit Prepared(sml::Application_Results::T_Application_Results made)
        : value(std::move(made)) {}

    sml::Application_Results::T_Application_Results value;

    /// Written at the first call, with the figures of the workload on standard error.
    std::string const& bytes() const;

private:
    mutable std::string bytes_;
};

/// Made at the first call; stays for the run.
Prepared const& prepared(std::size_t checks);

/// The same of the workload in which every variant holds an arm with payload.
Prepared const& prepared_without_bare_arms(std::size_t checks);

/// Runs a benchmark on 1,000, 10,000 and 100,000 checks.
void sizes(benchmark::internal::Benchmark* benchmark);

/// Reports the bytes a second and the time a check ("bytes", "check") of a benchmark that went over
/// the data once in each iteration.
void report(benchmark::State& state, Prepared const& data);

}  // namespace bench

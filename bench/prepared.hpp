#pragma once
// The workloads of the benchmarks, made once for each size.

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

    /// The bytes of the workload. The first call writes them and prints the figures of the workload
    /// to standard error.
    std::string const& bytes() const;

private:
    mutable std::string bytes_;
};

/// The workload of this size. The first call makes it; it is kept until the process ends.
Prepared const& prepared(std::size_t checks);

/// The same with the workload in which every variant has an arm with a payload.
Prepared const& prepared_with_payloads(std::size_t checks);

/// Runs a benchmark on 1,000, 10,000 and 100,000 checks.
void sizes(benchmark::internal::Benchmark* benchmark);

/// Reports bytes per second and time per check ("bytes", "check") of a benchmark that processes the
/// data once in each iteration.
void report(benchmark::State& state, Prepared const& data);

}  // namespace bench

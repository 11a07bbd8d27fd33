#pragma once
// Reads SARIF 2.1.0 as analysers write it.

#include "comparisons.hpp"
#include "json_cursor.hpp"
#include "sarif/limits.hpp"
#include "sarif/result.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace bradep::sarif {

using ResultSink = std::function<void(Result&&)>;
using FactsSink = std::function<void(RunFacts&&)>;

/// Hands each result of each run to `sink`, in the order of the log, and then what else is kept of
/// the run to `facts_sink`, if that is given. Returns the number of runs. Runs are numbered from
/// `first_run` on. The look-ups of texts are counted in `comparisons`. Only the result that is
/// being read is in memory as values, with the parts of its run that results refer to. The offset
/// in the text is stored into `done` now and then. Throws DamagedInput, with a message that starts
/// with `name` and a JSON pointer, for JSON that is not SARIF, and for what a sink refuses by
/// throwing DamagedInput. The results handed over before that are to be discarded.
std::int32_t read_log(json_input::JsonText const& text, std::string const& name,
                      std::int32_t first_run, ResultSink const& sink, Limits const& limits,
                      Comparisons& comparisons, std::atomic<std::uint64_t>* done = nullptr,
                      FactsSink const& facts_sink = {});

/// The same for bytes that may not be JSON. Then the message has line and column.
std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                      ResultSink const& sink, Limits const& limits, Comparisons& comparisons);

/// The same for a single log, with default limits.
inline std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                             ResultSink const& sink, Limits const& limits = {}) {
    Comparisons comparisons;
    return read_log(text, name, first_run, sink, limits, comparisons);
}

}  // namespace bradep::sarif

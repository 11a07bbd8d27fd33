#pragma once
// Reads SARIF 2.1.0 as analysers write it.

#include "comparisons.hpp"
#include "json_input.hpp"
#include "sarif/limits.hpp"
#include "sarif/result.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace bradep::sarif {

using ResultSink = std::function<void(Result&&)>;

/// Hands each result of each run to `sink`, in the order of the log, and returns the number of
/// runs. Runs are numbered from `first_run` on. The look-ups of texts are counted in `comparisons`.
/// Throws DamagedInput, with a message that starts with `name` and the place: line and column for
/// text that is not JSON; a JSON pointer for JSON that is not SARIF, and for a result that `sink`
/// refuses by throwing DamagedInput. The results handed over before that are to be discarded.
std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                      ResultSink const& sink, Limits const& limits, Comparisons& comparisons);

/// The same for a document that has been parsed, and the number of results in it.
std::int32_t  read_log(json_input::Document const& document, std::string const& name,
                       std::int32_t first_run, ResultSink const& sink, Limits const& limits,
                       Comparisons& comparisons);
std::uint64_t count_results(json_input::Document const& document);

/// The same for a single log, with default limits.
inline std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                             ResultSink const& sink, Limits const& limits = {}) {
    Comparisons comparisons;
    return read_log(text, name, first_run, sink, limits, comparisons);
}

}  // namespace bradep::sarif

#include "sarif/reader.hpp"

#include "errors.hpp"
#include "json_input.hpp"
#include "sarif/run.hpp"

#include <limits>

namespace bradep::sarif {

namespace {

namespace json = boost::json;
using json_input::Misfit;

json::array const& runs_of(json::value const& log) {
    if (!log.is_object()) throw Misfit{&log, "not SARIF: the document is no object"};
    auto const version = json_input::text(log, "version");
    if (!version) throw Misfit{&log, "not SARIF: the member \"version\" is missing"};
    if (*version != "2.1.0")
        throw Misfit{json_input::member(log, "version"),
                     "SARIF version \"" + *version + "\" is not read, only \"2.1.0\""};
    auto const* runs = json_input::list(log, "runs");
    if (!runs) throw Misfit{&log, "not SARIF: the member \"runs\" is missing"};
    return *runs;
}

void hand_over(Run& run, json::value const& result, ResultSink const& sink) {
    try {
        sink(run.resolve(result));
    } catch (DamagedInput const& refusal) {
        throw Misfit{&result, refusal.what()};
    }
}

std::int32_t read_runs(json::value const& log, std::int32_t first_run, ResultSink const& sink,
                       Limits const& limits, Comparisons& comparisons) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    Expansion      expansion(limits, comparisons);
    std::int32_t   count = 0;
    for (auto const& given : runs_of(log)) {
        if (count == most - first_run)
            throw Misfit{&given, "there are more than " + std::to_string(most) + " runs"};
        Run run(given, first_run + count++, expansion);
        if (!run.results()) continue;
        for (auto const& result : *run.results()) hand_over(run, result, sink);
    }
    return count;
}

// The JSON pointer of the root is the empty text, which would show no place in a message.
std::string place_name(json_input::Document const& document, json::value const& where) {
    auto const pointer = document.pointer_to(where);
    return pointer.empty() ? "1:1" : pointer;
}

}  // namespace

std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                      ResultSink const& sink, Limits const& limits, Comparisons& comparisons) {
    return read_log(json_input::Document(text, name), name, first_run, sink, limits, comparisons);
}

std::uint64_t count_results(json_input::Document const& document) {
    std::uint64_t count = 0;
    try {
        for (auto const& run : runs_of(document.root()))
            if (auto const* results = json_input::list(run, "results")) count += results->size();
    } catch (Misfit const&) {  // reported when the log is read
    }
    return count;
}

std::int32_t read_log(json_input::Document const& document, std::string const& name,
                      std::int32_t first_run, ResultSink const& sink, Limits const& limits,
                      Comparisons& comparisons) {
    try {
        return read_runs(document.root(), first_run, sink, limits, comparisons);
    } catch (Misfit const& misfit) {
        throw DamagedInput(name + ":" + place_name(document, *misfit.where) + ": " + misfit.what);
    }
}

}  // namespace bradep::sarif

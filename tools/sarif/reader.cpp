#include "sarif/reader.hpp"

#include "errors.hpp"
#include "json_input.hpp"
#include "sarif/members_at.hpp"
#include "sarif/run.hpp"
#include "sarif/run_parts.hpp"

#include <array>
#include <limits>
#include <optional>

namespace bradep::sarif {

namespace {

namespace json = boost::json;
using json_input::Cursor;
using json_input::JsonText;
using json_input::Misfit;
using json_input::ValueParser;

// Throws Misfit unless the log has runs.
void refuse_other_logs(json::value const& log) {
    if (!log.is_object()) throw Misfit{&log, "not SARIF: the document is no object"};
    auto const version = json_input::text(log, "version");
    if (!version) throw Misfit{&log, "not SARIF: the member \"version\" is missing"};
    if (*version != "2.1.0")
        throw Misfit{json_input::member(log, "version"),
                     "SARIF version \"" + *version + "\" is not read, only \"2.1.0\""};
    if (!json_input::list(log, "runs"))
        throw Misfit{&log, "not SARIF: the member \"runs\" is missing"};
}

// Calls `use`. What it refuses is `where`.
template <class Use>
void hand_over(json::value const& where, Use const& use) {
    try {
        use();
    } catch (DamagedInput const& refusal) {
        throw Misfit{&where, refusal.what()};
    }
}

class LogReader {
public:
    LogReader(std::string const& name, std::int32_t first_run, ResultSink const& sink,
              Limits const& limits, Comparisons& comparisons, std::atomic<std::uint64_t>* done,
              FactsSink const& facts_sink)
        : name_(name),
          first_run_(first_run),
          sink_(sink),
          facts_sink_(facts_sink),
          expansion_(limits, comparisons),
          done_(done) {}

    // Returns the number of runs.
    std::int32_t read(Cursor log);

private:
    Cursor runs_of(Cursor log);
    void   read_run(Cursor& at);
    void   read_results(RunParts const& parts, Run& run);

    template <class Read, class Pointer>
    void        located(json::value const& root, Pointer const& pointer, Read const& read) const;
    std::string run_pointer() const { return "/runs/" + std::to_string(count_); }

    std::string const&          name_;
    std::int32_t                first_run_;
    ResultSink const&           sink_;
    FactsSink const&            facts_sink_;
    Expansion                   expansion_;
    std::atomic<std::uint64_t>* done_;
    ValueParser                 parser_;
    std::int32_t                count_ = 0;  // of the runs read so far
};

// Calls `read`. If it throws a Misfit in `root`, throws DamagedInput with its place; `pointer()` is
// that of the root.
template <class Read, class Pointer>
void LogReader::located(json::value const& root, Pointer const& pointer, Read const& read) const {
    try {
        read();
    } catch (Misfit const& misfit) {
        auto const below = json_input::pointer_below(root, *misfit.where);
        if (!below) throw;
        auto const place = pointer() + *below;
        // The JSON pointer of the log is the empty text, which would show no place in a message.
        throw DamagedInput(name_ + ":" + (place.empty() ? "1:1" : place) + ": " + misfit.what);
    }
}

// Where the list of runs stands. Throws DamagedInput if the log is no SARIF.
Cursor LogReader::runs_of(Cursor log) {
    constexpr std::array<std::string_view, 2> names = {"version", "runs"};
    json::value                               head;
    std::optional<Cursor>                     runs;
    if (log.peek() == '{') {
        auto&      members = head.emplace_object();
        auto const found = members_at(log, names);
        for (std::size_t i = 0; i < found.size(); ++i)
            if (auto at = found[i]) members.emplace(names[i], parser_.kind_of(*at));
        runs = found[1];
    } else {
        head = parser_.kind_of(log);
    }
    located(
        head, [] { return ""; }, [&] { refuse_other_logs(head); });
    return *runs;
}

std::int32_t LogReader::read(Cursor log) {
    auto runs = runs_of(log);
    for (runs.enter(); runs.next(); ++count_) read_run(runs);
    return count_;
}

void LogReader::read_run(Cursor& at) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    RunParts const parts(at, parser_);
    located(
        parts.value(), [&] { return run_pointer(); },
        [&] {
            if (count_ == most - first_run_)
                throw Misfit{&parts.value(),
                             "there are more than " + std::to_string(most) + " runs"};
            json_input::list(parts.value(), "results");  // throws if it is none
            Run run(parts.value(), first_run_ + count_, expansion_);
            if (parts.results()) read_results(parts, run);
            if (facts_sink_) hand_over(parts.value(), [&] { facts_sink_(run.facts()); });
        });
}

void LogReader::read_results(RunParts const& parts, Run& run) {
    Cursor      at = *parts.results();
    std::size_t number = 0;
    for (at.enter(); at.next(); ++number) {
        auto const& result = parser_.parse(at);
        located(
            result, [&] { return run_pointer() + "/results/" + std::to_string(number); },
            [&] { hand_over(result, [&] { sink_(run.resolve(result)); }); });
        if (done_) done_->store(at.offset(), std::memory_order_relaxed);
    }
}

}  // namespace

std::int32_t read_log(JsonText const& text, std::string const& name, std::int32_t first_run,
                      ResultSink const& sink, Limits const& limits, Comparisons& comparisons,
                      std::atomic<std::uint64_t>* done, FactsSink const& facts_sink) {
    return LogReader(name, first_run, sink, limits, comparisons, done, facts_sink)
        .read(Cursor(text));
}

std::int32_t read_log(std::string_view text, std::string const& name, std::int32_t first_run,
                      ResultSink const& sink, Limits const& limits, Comparisons& comparisons) {
    return read_log(JsonText(text, name), name, first_run, sink, limits, comparisons);
}

}  // namespace bradep::sarif

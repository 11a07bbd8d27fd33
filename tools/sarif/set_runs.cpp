#include "sarif/set_runs.hpp"

#include <sml/tables/sqlite/database.hpp>
#include "errors.hpp"
#include "read_set.hpp"
#include "sarif/imported_runs.hpp"
#include "sarif/kernel_runs.hpp"
#include "signals.hpp"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace bradep::sarif {

namespace {

using sml::tables::Database;

// Does work that reads tables.
template <class Work>
auto guarded(Work const& work) {
    try {
        return work();
    } catch (sml::tables::SqlError const& error) {
        Interruption::check();
        throw IoFailure(std::string("cannot write a temporary table: ") + error.what());
    }
}

// Does work that refuses a set without saying which one it is.
template <class Work>
auto named(std::string const& name, Work const& work) {
    try {
        return work();
    } catch (DamagedInput const& refusal) {
        throw DamagedInput(name + ": " + refusal.what());
    }
}

/// The checks of a set with what they are read from.
class TabledRuns : public LogSource {
public:
    TabledRuns(std::unique_ptr<Database> database, std::int64_t number)
        : database_(std::move(database)), runs_(*database_, number) {}

    std::size_t  runs() const override { return runs_.runs(); }
    json::object run(std::size_t number) const override { return runs_.run(number); }
    void         results(std::size_t run, ResultSink const& sink) const override {
        guarded([&] { runs_.results(run, sink); });
    }

private:
    std::unique_ptr<Database> database_;
    KernelRuns                runs_;
};

/// The runs of an imported set with the set.
class RestoredRuns : public LogSource {
public:
    RestoredRuns(sml::tables::ResultSet const& verified, sml::inspect::WalkOptions const& options,
                 std::uint64_t most)
        : name_(verified.name) {
        read_set(verified, options, set_);
        named(name_, [&] { runs_.emplace(set_, most); });
        // A few bytes can say any number.
        if (runs() > verified.bytes.size())
            throw DamagedInput(name_ + ": says that it has " + std::to_string(runs()) + " runs");
    }

    std::size_t  runs() const override { return runs_->runs(); }
    json::object run(std::size_t number) const override {
        return named(name_, [&] { return runs_->run(number); });
    }
    void results(std::size_t run, ResultSink const& sink) const override {
        named(name_, [&] { runs_->results(run, sink); });
    }

private:
    std::string                 name_;
    ResultSet                   set_;
    std::optional<ImportedRuns> runs_;
};

}  // namespace

std::unique_ptr<LogSource> runs_of_set(sml::tables::ResultSets const& sets, std::int64_t number,
                                       sml::inspect::WalkOptions const& options,
                                       std::uint64_t                    most) {
    auto const& verified = sets.set(number);
    if (!sml::tables::has_views(sets.schema()))
        throw DamagedInput(verified.name + ": holds no checks");
    auto tabled = guarded([&]() -> std::unique_ptr<LogSource> {
        auto database = std::make_unique<Database>(sets, Interruption::has_come());
        if (!holds_kernel_checks(*database, number)) return nullptr;
        return std::make_unique<TabledRuns>(std::move(database), number);
    });
    if (tabled) return tabled;
    return std::make_unique<RestoredRuns>(verified, options, most);
}

void JoinedRuns::add(std::unique_ptr<LogSource> source) {
    std::size_t const first = runs_;
    runs_ += source->runs();
    parts_.push_back({first, std::move(source)});
}

JoinedRuns::Part const& JoinedRuns::part_of(std::size_t run) const {
    return *std::prev(std::ranges::upper_bound(parts_, run, {}, &Part::first));
}

json::object JoinedRuns::run(std::size_t number) const {
    Part const& part = part_of(number);
    return part.source->run(number - part.first);
}

void JoinedRuns::results(std::size_t run, ResultSink const& sink) const {
    Part const& part = part_of(run);
    part.source->results(run - part.first, sink);
}

}  // namespace bradep::sarif

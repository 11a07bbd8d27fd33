#include <report/writer/packed.hpp>
#include <report/writer/page.hpp>
#include <report/writer/report_writer.hpp>
#include <report/writer/source_directory.hpp>
#include <sml/results/diff.hpp>
#include "command.hpp"
#include "diff/side_files.hpp"
#include "diff/side_options.hpp"
#include "errors.hpp"
#include "export/sarif_export.hpp"
#include "messages.hpp"
#include "output_file.hpp"
#include "query_files.hpp"
#include "report/diff_notes.hpp"
#include "report/report_directory.hpp"
#include "report/reported_findings.hpp"
#include "report/reported_sources.hpp"
#include "report/series_notes.hpp"
#include "signals.hpp"
#include "track/series_file.hpp"
#include "walk_options.hpp"

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using report::ReportWriter;
using sml::results::Side;

struct Options : QueryOptions {
    Names                      inputs;
    std::string                target;
    Names                      olds;
    Names                      maps;
    std::optional<std::string> series;
    std::optional<std::string> sources;
    report::SourceLimits       source_limits;
    bool                       is_single = false;
    std::optional<std::string> title;
};

constexpr std::size_t most_in_one_file = 10000;

/// What the files hold, and what is known of their findings.
class Report {
public:
    Report(Options const& options, Streams& streams)
        : options_(options), streams_(streams), news_(options.inputs, options, streams) {
        if (!options.olds.empty()) olds_.emplace(options.olds, options, streams);
    }

    /// Finds out what diff and series say.
    void prepare() {
        if (olds_) compare();
        if (!options_.series) return;
        SeriesFile series(*options_.series, sml::results::SeriesStore::For::reading);
        series_.emplace(series, news_.sets());
        if (!series_->has_identities())
            print_message(streams_.err, *options_.series +
                                            ": its last run is another one; findings get no "
                                            "numbers");
    }

    /// Writes all chunks.
    void write(report::ChunkOutput& output) {
        ReportWriter    writer(output);
        ReportedSources sources;
        add_findings(writer, news_, Side::new_side, sources);
        if (olds_) add_findings(writer, *olds_, Side::old_side, sources);
        if (options_.sources) add_sources(writer, sources);
        writer.finish(description());
    }

    std::string title() const {
        if (options_.title) return *options_.title;
        auto const title = name_of(news_.sets());
        return olds_ ? title + " against " + name_of(olds_->sets()) : title;
    }

private:
    void compare() {
        diff_.emplace("");
        try {
            sml::results::diff(olds_->input(), news_.input(), {roots_of(options_.maps)}, *diff_,
                               Interruption::has_come());
        } catch (sml::tables::SqlError const& error) {
            Interruption::check();
            throw IoFailure(std::string("cannot write the diff: ") + error.what());
        }
        new_notes_.emplace(*diff_, Side::new_side);
        old_notes_.emplace(*diff_, Side::old_side);
    }

    void add_findings(ReportWriter& writer, SideFiles const& files, Side side,
                      ReportedSources& sources) {
        bool const                       is_old = side == Side::old_side;
        std::vector<FindingNotes const*> notes;
        if (diff_) notes.push_back(is_old ? &*old_notes_ : &*new_notes_);
        if (series_ && !is_old) notes.push_back(&*series_);
        ReportedFindings::Options const options{options_.verify.walk(), SarifOptions().max_result,
                                                is_old};
        ReportedFindings                findings(files.sets(), options, std::move(notes), writer);
        findings.add([&](auto const& run, auto const& result) {
            if (options_.sources) sources.note(run, result);
            if (options_.is_single && writer.count() > most_in_one_file) refuse_single();
        });
        print_left_out(findings.left_out(), options_.target, streams_);
    }

    [[noreturn]] void refuse_single() const {
        throw DamagedInput("more than " + std::to_string(most_in_one_file) +
                           " findings are too many for one file: leave out --single");
    }

    void add_sources(ReportWriter& writer, ReportedSources const& sources) {
        report::SourceDirectory directory(*options_.sources, options_.source_limits);
        writer.looks_for_sources();
        sources.add_to(writer, directory);
        for (auto const& [reason, skipped] : writer.skipped())
            print_message(streams_.err, *options_.sources + ": left out " +
                                            std::to_string(skipped.files) +
                                            (skipped.files == 1 ? " file: " : " files: ") + reason);
    }

    report::Description description() const {
        report::Description all{title(), sets_of(news_.sets()), {}, {}, false};
        if (olds_) all.old_sets = sets_of(olds_->sets());
        if (!series_) return all;
        all.history = series_->history();
        all.has_identities = series_->has_identities();
        return all;
    }

    static std::vector<report::ReportedSet> sets_of(sml::tables::ResultSets const& sets) {
        std::vector<report::ReportedSet> all;
        for (std::int64_t i = 1; i <= sets.count(); ++i)
            all.push_back({sets.set(i).name, sets.set(i).bytes.size()});
        return all;
    }

    static std::string name_of(sml::tables::ResultSets const& sets) {
        auto const first = fs::path(sets.set(1).name).filename().string();
        return sets.count() == 1 ? first
                                 : first + " and " + std::to_string(sets.count() - 1) + " more";
    }

    Options const&                         options_;
    Streams&                               streams_;
    SideFiles                              news_;
    std::optional<SideFiles>               olds_;
    std::optional<sml::results::DiffStore> diff_;
    std::optional<DiffNotes>               new_notes_;
    std::optional<DiffNotes>               old_notes_;
    std::optional<SeriesNotes>             series_;
};

void write_directory(Report& report, Options const& options) {
    ReportDirectory directory(options.target);
    report.prepare();
    report.write(directory);
    directory.publish(report.title());
}

/// Writes chunks as elements of one page.
class ChunkElements : public report::ChunkOutput {
public:
    explicit ChunkElements(std::ostream& out) : out_(out) {}

    void add(std::string const& name, std::string_view packed) override {
        out_ << R"(<script type="text/plain" id="chunk-)" << name << "\">" << packed
             << "</script>\n";
    }

private:
    std::ostream& out_;
};

void write_single(Report& report, Options const& options) {
    report.prepare();
    write_file(options.target, [&](std::ostream& out) {
        auto const    page = report::single_page(report.title());
        ChunkElements chunks(out);
        out << page.before;
        report.write(chunks);
        chunks.add("licences", report::Packer().packed(report::page_files().licences));
        out << page.behind;
    });
}

ExitCode run_report(Options const& options, Streams& streams) {
    roots_of(options.maps);  // refused before any work
    refuse_missing_directory(options.sources);
    refuse_overwriting_an_input(options.target, options.inputs);
    refuse_overwriting_an_input(options.target, options.olds);
    Report              report(options, streams);
    IgnoredSignal const file_too_large(SIGXFSZ);
    Interruption        interruption;
    try {
        if (options.is_single)
            write_single(report, options);
        else
            write_directory(report, options);
    } catch (Interrupted const&) {
        interruption.end_process();
    }
    return exit_done;
}

}  // namespace

Action declare_report(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("FILE", options->inputs,
                   "Result sets and SARIF logs, or directories of these: one report of all")
        ->required()
        ->type_name("");
    app.add_option("-o,--output", options->target,
                   "The directory of the report: new, empty or an earlier report")
        ->required()
        ->type_name("DIR");
    app.add_option("--diff", options->olds,
                   "Compare with these: what is new, updated and absent. May be given again")
        ->type_name("OLD")
        ->allow_extra_args(false);
    declare_map(app, options->maps);
    app.add_option("--track", options->series,
                   "Show the history of this series of runs and, if FILE is its last run, the "
                   "numbers of findings")
        ->type_name("DIR");
    app.add_option("--source-root", options->sources,
                   "Copy the sources that findings name from this directory, and from nowhere else")
        ->type_name("DIR");
    declare_size(app, "--max-source-file", options->source_limits.file, "Bytes of one source file");
    declare_size(app, "--max-source", options->source_limits.total, "Bytes of all source files");
    app.add_flag("--single", options->is_single,
                 "Write one HTML file instead of a directory, of 10,000 findings at most");
    app.add_option("--title", options->title, "The title of the page")->type_name("TEXT");
    declare_query_options(app, *options);
    app.footer(
        "Writes a report that browsers open from disk: DIR/index.html. docs/report.md describes "
        "it.\n");
    return [options](Streams& streams) { return run_report(*options, streams); };
}

}  // namespace bradep

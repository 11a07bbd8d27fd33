#include "export/sarif_export.hpp"

#include <sml/inspect/text/json_writer.hpp>
#include "errors.hpp"
#include "gzip.hpp"
#include "output_file.hpp"
#include "read_set.hpp"
#include "report.hpp"
#include "sarif/imported_runs.hpp"
#include "sarif/log_writer.hpp"

#include <ios>
#include <ostream>

namespace bradep {

namespace {

void read_file(std::string const& file, QueryOptions const& options, Streams& streams,
               ResultSet& set) {
    WalkOptions walk;
    walk.file = file;
    walk.max_size = options.max_size;
    walk.stem = result_set_stem;
    walk.verify = options.verify;
    WalkedInput const input(walk, streams);
    read_set(input, streams.err, set);
}

// A set of a few bytes can say that it has any number of runs.
void refuse_too_many_runs(sarif::LogSource const& runs, std::uint64_t max_output) {
    constexpr std::uint64_t least_bytes = 40;  // of a run
    if (runs.runs() > max_output / least_bytes)
        throw DamagedInput(std::to_string(runs.runs()) + " runs take more than --max-output " +
                           std::to_string(max_output));
}

void add_file(sarif::LogWriter& writer, std::string const& file, SarifOptions const& sarif,
              QueryOptions const& options, Streams& streams) {
    ResultSet set;
    read_file(file, options, streams, set);
    try {
        sarif::ImportedRuns const runs(set, sarif.max_result);
        refuse_too_many_runs(runs, sarif.max_output);
        writer.add(runs);
    } catch (DamagedInput const& refusal) {
        throw DamagedInput(input_name(file) + ": " + refusal.what());
    }
}

void write_log(std::ostream& out, SarifOptions const& sarif, QueryOptions const& options,
               Streams& streams) {
    LimitedOutput limited(out, sarif.max_output);
    limited.stream().exceptions(std::ios::badbit);  // ends the work at the limit
    sarif::LogWriter writer(limited.stream());
    try {
        for (auto const& file : options.files) add_file(writer, file, sarif, options, streams);
        writer.finish();
    } catch (std::ios_base::failure const&) {
        limited.refuse_if_cut(sarif.target);
        throw;
    }
    auto const& left_out = writer.left_out();
    if (left_out.count > 0)
        report(streams.err, sarif.target + ": left out " + std::to_string(left_out.count) +
                                (left_out.count == 1 ? " value that" : " values that") +
                                " SARIF does not allow, the first at " + left_out.first);
}

}  // namespace

void export_to_sarif(SarifOptions const& sarif, QueryOptions const& options, Streams& streams) {
    if (options.stem && *options.stem != result_set_stem)
        throw DamagedInput("only a " + std::string(result_set_stem) + " can be exported as SARIF");
    auto const write = [&](std::ostream& out) {
        if (!sarif.target.ends_with(".gz")) return write_log(out, sarif, options, streams);
        GzipOutput packed(out);
        write_log(packed.stream(), sarif, options, streams);
        packed.finish();
    };
    if (sarif.target == "-") return write(streams.out);
    write_file(sarif.target, write);
}

}  // namespace bradep

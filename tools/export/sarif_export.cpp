#include "export/sarif_export.hpp"

#include "errors.hpp"
#include "gzip.hpp"
#include "messages.hpp"
#include "output_file.hpp"
#include "sarif/log_writer.hpp"
#include "sarif/set_runs.hpp"
#include "sarif/upload_limits.hpp"
#include "signals.hpp"

#include <ios>
#include <optional>
#include <ostream>
#include <streambuf>
#include <utility>
#include <vector>

namespace bradep {

namespace {

using sarif::Cut;
using sarif::UploadLimits;

std::string output_name(SarifOptions const& sarif) {
    return sarif.target == "-" ? "standard output" : sarif.target;
}

// Writes one log of what `add` gives to the writer.
template <class Add>
sarif::LeftOut write_limited(std::ostream& out, SarifOptions const& sarif, Add const& add) {
    LimitedOutput limited(out, sarif.max_output);
    limited.stream().exceptions(std::ios::badbit);  // ends the work at the limit
    sarif::LogWriter writer(limited.stream());
    try {
        add(writer);
        writer.finish();
    } catch (std::ios_base::failure const&) {
        limited.refuse_if_cut(output_name(sarif));
        if (sarif.target != "-") throw;  // standard output keeps the reason
    }
    return writer.left_out();
}

/// What is written of a log that is limited.
struct Limited {
    UploadLimits      limits;
    std::vector<bool> runs;  // of all files: whether each is kept
};

/// Writes the files of a command as one log.
class Logs {
public:
    Logs(SarifOptions const& sarif, QueryOptions const& options, Streams& streams)
        : sarif_(sarif), options_(options), streams_(streams) {}

    /// Without limits, everything is written. `cut` counts what is left out.
    sarif::LeftOut write(std::ostream& out, std::optional<Limited> const& limited, Cut& cut) {
        std::size_t runs = 0;
        return write_limited(out, sarif_, [&](sarif::LogWriter& writer) {
            for_each([&](sarif::LogSource const& all) {
                if (!limited) return writer.add(all);
                std::vector<std::size_t> kept;
                for (std::size_t run = 0; run < all.runs(); ++run)
                    if (limited->runs[runs++]) kept.push_back(run);
                cut.runs += all.runs() - kept.size();
                writer.add(sarif::LimitedRuns(all, std::move(kept), limited->limits, cut));
            });
        });
    }

    std::vector<bool> heaviest_runs(std::size_t most) {
        std::vector<sarif::RunWeight> weights;
        for_each([&](sarif::LogSource const& all) {
            auto const of_file = sarif::weights_of(all);
            weights.insert(weights.end(), of_file.begin(), of_file.end());
        });
        return sarif::heaviest(weights, most);
    }

private:
    // Hands over the runs of each file. One file after another is open.
    template <class Use>
    void for_each(Use const& use) {
        for (auto const& file : options_.files) {
            auto options = options_;
            options.files = {file};
            QueryFiles const files(options, streams_);
            use(*sarif::runs_of_set(files.sets(), 1, options.verify.walk(), sarif_.max_result));
        }
    }

    SarifOptions const& sarif_;
    QueryOptions const& options_;
    Streams&            streams_;
};

/// Counts bytes and forgets them.
class CountedBytes : public std::streambuf {
public:
    std::uint64_t count() const { return count_; }

private:
    std::streamsize xsputn(char const*, std::streamsize count) override {
        count_ += static_cast<std::uint64_t>(count);
        return count;
    }
    int_type overflow(int_type byte) override {
        ++count_;
        return byte;
    }

    std::uint64_t count_ = 0;
};

// What of a log is small enough when it is compressed: fewer results if need be.
Limited what_fits(Logs& logs, std::string const& name) {
    Limited limited{{}, logs.heaviest_runs(UploadLimits().runs)};
    auto&   limits = limited.limits;
    for (;;) {
        Cut          cut;
        CountedBytes bytes;
        std::ostream out(&bytes);
        GzipOutput   packed(out);
        logs.write(packed.stream(), limited, cut);
        packed.finish();
        if (bytes.count() <= limits.packed_bytes) return limited;
        if (cut.most_kept == 0)
            throw DamagedInput(name + ": also without results, the log is larger than " +
                               std::to_string(limits.packed_bytes) + " bytes");
        double const share =
            static_cast<double>(limits.packed_bytes) / static_cast<double>(bytes.count());
        constexpr double reserve = 0.97;  // what is left may not be as compressible
        limits.results =
            static_cast<std::size_t>(static_cast<double>(cut.most_kept) * share * reserve);
    }
}

void write_log(std::ostream& out, SarifOptions const& sarif, QueryOptions const& options,
               Streams& streams) {
    Logs                   logs(sarif, options, streams);
    auto const             name = output_name(sarif);
    std::optional<Limited> limited;
    if (sarif.has_upload_limits) limited = what_fits(logs, name);
    Cut cut;
    print_left_out(logs.write(out, limited, cut), name, streams);
    if (auto const words = cut.in_words(); !words.empty())
        print_message(streams.err, name + ": left out what is beyond the limits: " + words);
}

}  // namespace

void print_left_out(sarif::LeftOut const& left_out, std::string const& name, Streams& streams) {
    if (left_out.count == 0) return;
    print_message(streams.err, name + ": left out " + std::to_string(left_out.count) +
                                   (left_out.count == 1 ? " value that" : " values that") +
                                   " SARIF does not allow, the first at " + left_out.first);
}

void export_to_sarif(SarifOptions const& sarif, QueryOptions const& options, Streams& streams) {
    auto const write = [&](std::ostream& out) {
        if (!sarif.target.ends_with(".gz")) return write_log(out, sarif, options, streams);
        GzipOutput packed(out);
        write_log(packed.stream(), sarif, options, streams);
        packed.finish();
    };
    if (sarif.target == "-") return write(streams.out);
    refuse_overwriting_an_input(sarif.target, options.files);
    write_file(sarif.target, write);
}

void write_sarif(sarif::LogSource const& runs, Streams& streams) {
    SarifOptions sarif;
    sarif.target = "-";
    auto const left_out =
        write_limited(streams.out, sarif, [&](sarif::LogWriter& writer) { writer.add(runs); });
    print_left_out(left_out, output_name(sarif), streams);
}

}  // namespace bradep

#pragma once
// The options of all commands that inspect bytes of unknown origin.

#include <sml/inspect/verify.hpp>
#include "command.hpp"
#include "finding_groups.hpp"
#include "input_bytes.hpp"
#include "progress.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

struct WalkOptions {
    std::string                 file;
    std::uint64_t               max_size = default_max_size;
    std::optional<std::string>  stem;           ///< empty: found by `identify`
    bool                        quiet = false;  ///< no notice of the root found
    sml::inspect::VerifyOptions verify;
};

/// Declares FILE, --quiet, --max-size, --root, --decimal-point and the limits. It does not declare
/// --findings.
void declare_walk_options(CLI::App& app, WalkOptions& options);
/// The same for a command that takes any number of files.
void declare_walk_options(CLI::App& app, WalkOptions& options, std::vector<std::string>& files);
void declare_root_option(CLI::App& app, std::optional<std::string>& stem);
void declare_limits(CLI::App& app, sml::inspect::Limits& limits);
void declare_own_memory(CLI::App& app, sml::inspect::Limits& limits);
void declare_decimal_point(CLI::App& app, sml::inspect::VerifyOptions& options);
/// Makes an option accept a number without a sign. Call it after adding all other checks and
/// transforms of the option.
void declare_amount(CLI::Option& option);
/// Declares an option whose value is a number of bytes, as in 64K, 10M or 2G.
void declare_size(CLI::App& app, char const* name, std::uint64_t& size, char const* meaning);
void declare_max_size(CLI::App& app, std::uint64_t& max_size);
void declare_findings_option(CLI::App& app, WalkOptions& options, char const* meaning);

/// Calls `work` with `options`, which store the progress of the walk where it is shown, and returns
/// its result.
template <class Work>
auto watch(std::ostream& err, std::string const& doing, std::uint64_t total,
           sml::inspect::VerifyOptions options, Work const& work) {
    Progress progress(err, doing, total);
    options.progress = progress.done();
    return work(options);
}

/// The input of a command that inspects bytes, and its root.
class WalkedInput {
public:
    /// Reads the input. Without a stem, the root is the first that fits, or if none fits, the one
    /// whose walk came furthest. If several roots fit, or none, a message on standard error names
    /// the root.
    WalkedInput(WalkOptions const& options, Streams& streams);

    std::string const&        name() const { return name_; }
    std::string_view          bytes() const { return bytes_.view(); }
    sml::inspect::Root const& root() const { return *root_; }

    sml::inspect::VerifyOptions const& options() const { return options_; }

    sml::inspect::Verdict verify() const;
    /// The same, but hands the odd findings to `groups` instead of listing them in the verdict.
    sml::inspect::Verdict verify(FindingGroups& groups) const;

    /// Calls `work` with the options of the walk and returns its result. Meanwhile a line on a
    /// terminal shows `doing` and how much is done.
    template <class Work>
    auto watch(char const* doing, Work const& work) const {
        return bradep::watch(streams_.err, name_ + ", " + doing, bytes().size(), options_, work);
    }

private:
    sml::inspect::Root const* choose_root(bool quiet) const;

    Streams&                    streams_;
    std::string                 name_;
    InputBytes                  bytes_;
    sml::inspect::VerifyOptions options_;
    sml::inspect::Root const*   root_;
};

/// The root with this stem. If there is none, throws a usage error that names the nearest stem.
sml::inspect::Root const& root_of(std::string const& stem);

/// Returns "is JSON text (...), " or the like if the bytes start as another file format; else the
/// empty text.
std::string form_notice(std::string_view bytes);

/// Returns "byte 7 at checks[2].category: expected X, found Y".
std::string described(sml::inspect::Finding const& finding);

/// Writes one line for each finding.
void report_findings(std::ostream& err, std::string const& name,
                     std::vector<sml::inspect::Finding> const& findings);

/// Calls `act` for one file after another. An error in one file is reported, and the next file
/// follows. Returns the highest exit code.
ExitCode for_each_file(std::vector<std::string> const& files, WalkOptions options, Streams& streams,
                       std::function<ExitCode(WalkOptions const&)> const& act);

}  // namespace bradep

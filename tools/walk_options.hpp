#pragma once
// What all commands share that look into bytes of unknown origin.

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
    std::optional<std::string>  stem;           ///< none: to be found out
    bool                        quiet = false;  ///< about the root that was found out
    sml::inspect::VerifyOptions verify;
};

/// Declares FILE, --root and the limits. Whether and how many findings are told is not asked.
void declare_walk_options(CLI::App& app, WalkOptions& options);
/// The same for a command that takes any number of files.
void declare_walk_options(CLI::App& app, WalkOptions& options, std::vector<std::string>& files);
void declare_root_option(CLI::App& app, std::optional<std::string>& stem);
void declare_limits(CLI::App& app, sml::inspect::Limits& limits);
void declare_own_memory(CLI::App& app, sml::inspect::Limits& limits);
void declare_decimal_point(CLI::App& app, sml::inspect::VerifyOptions& options);
/// An option that takes a number without a sign. To be called after all else that looks at the
/// text.
void declare_amount(CLI::Option& option);
/// An option like 64K, 10M or 2G.
void declare_size(CLI::App& app, char const* name, std::uint64_t& size, char const* meaning);
void declare_max_size(CLI::App& app, std::uint64_t& max_size);
void declare_findings_option(CLI::App& app, WalkOptions& options, char const* meaning);

/// The result of `work`, which is given these options and how to tell its progress.
template <class Work>
auto watch(std::ostream& err, std::string const& doing, std::uint64_t total,
           sml::inspect::VerifyOptions options, Work const& work) {
    Progress progress(err, doing, total);
    options.progress = progress.done();
    return work(options);
}

/// The input of such a command and the root that it is read as.
class WalkedInput {
public:
    /// Without a stem the root is the first that fits, or the one whose walk came furthest.
    /// Standard error has which one where others fit, too, or none does.
    WalkedInput(WalkOptions const& options, Streams& streams);

    std::string const&        name() const { return name_; }
    std::string_view          bytes() const { return bytes_.view(); }
    sml::inspect::Root const& root() const { return *root_; }

    sml::inspect::VerifyOptions const& options() const { return options_; }

    sml::inspect::Verdict verify() const;
    /// The same with the odd findings in groups, and none of them in the verdict.
    sml::inspect::Verdict verify(FindingGroups& groups) const;

    /// The result of `work`, which is given options with the limits. A line shows meanwhile what is
    /// done and how far it is.
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

/// The root with this stem. Throws a usage error that names one like it.
sml::inspect::Root const& root_of(std::string const& stem);

/// "is JSON text (...), " for what is no binary form, as far as it shows; else nothing.
std::string form_notice(std::string_view bytes);

/// "checks[2].category: expected X, found Y" and where.
std::string described(sml::inspect::Finding const& finding);

/// One line a finding.
void report_findings(std::ostream& err, std::string const& name,
                     std::vector<sml::inspect::Finding> const& findings);

/// Acts on one file after another. What is wrong with one is told and hinders none of the others.
/// Returns the highest code.
ExitCode for_each_file(std::vector<std::string> const& files, WalkOptions options, Streams& streams,
                       std::function<ExitCode(WalkOptions const&)> const& act);

}  // namespace bradep

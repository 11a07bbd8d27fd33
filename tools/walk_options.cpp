#include "walk_options.hpp"

#include <sml/inspect/text/characters.hpp>
#include <sml/inspect/text/nearest.hpp>
#include "errors.hpp"
#include "finding_groups.hpp"
#include "foreign_form.hpp"
#include "messages.hpp"

#include <algorithm>
#include <functional>
#include <string>

namespace bradep {

using namespace sml::inspect;

namespace {

std::string stems_of(std::vector<Candidate> const& candidates) {
    std::string stems;
    for (Candidate const& candidate : candidates)
        (stems += stems.empty() ? "" : ", ") += candidate.root->stem;
    return stems;
}

// Returns the stem nearest to `given`: of those that end with it; else of those that contain it;
// else of all.
std::string_view stem_like(std::string_view given) {
    std::vector<std::string_view> ending, holding, all;
    for (Root const& root : roots()) {
        all.push_back(root.stem);
        if (root.stem.ends_with(given)) ending.push_back(root.stem);
        if (root.stem.find(given) != std::string_view::npos) holding.push_back(root.stem);
    }
    auto const& likely = !ending.empty() ? ending : !holding.empty() ? holding : all;
    return nearest_name(given, likely, std::identity());
}

}  // namespace

void declare_root_option(CLI::App& app, std::optional<std::string>& stem) {
    app.add_option("--root", stem, "The stem of the root, as `bradep roots` lists them")
        ->type_name("STEM");
}

namespace {

bool is_part_of_number(char c) {
    return is_digit(c) || is_letter(c) || is_blank(c) || c == '+' || c == '-';
}

/// Refuses a sign and more than 18 digits, which the option parser would wrap around or cut short.
/// A unit may follow the digits.
std::string judge_amount(std::string const& text) {
    std::size_t const digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > 18) return "\"" + text + "\" is no number, or too large a one";
    return {};
}

}  // namespace

void declare_amount(CLI::Option& option) {
    option.transform(
        CLI::Validator([](std::string& text) { return judge_amount(text); }, "", "amount"));
}

void declare_size(CLI::App& app, char const* name, std::uint64_t& size, char const* meaning) {
    declare_amount(*app.add_option(name, size, meaning)
                        ->capture_default_str()
                        ->transform(CLI::AsSizeValue(false))
                        ->type_name("SIZE"));
}

void declare_max_size(CLI::App& app, std::uint64_t& max_size) {
    declare_size(app, "--max-size", max_size, "Bytes of an input; a larger one is not read");
}

void declare_limits(CLI::App& app, Limits& limits) {
    auto const add = [&](char const* name, auto& limit, char const* meaning) {
        return app.add_option(name, limit, meaning)
            ->capture_default_str()
            ->group("Limits, beyond which bytes are unsafe");
    };
    add("--max-depth", limits.depth,
        "Levels of variants and containers inside one another, at most 1000")
        ->check(CLI::Range(1U, Limits::depth_cap))
        ->type_name("NUMBER");
    declare_amount(*add("--max-elements", limits.elements,
                        "Elements and entries of all lists, sets and maps together")
                        ->type_name("NUMBER"));
    declare_amount(
        *add("--max-text", limits.text_bytes, "Bytes of one text, also as 64K, 10M or 2G")
             ->transform(CLI::AsSizeValue(false))
             ->type_name("SIZE"));
    declare_amount(*add("--max-memory", limits.memory, "Heap of a reader at its peak, estimated")
                        ->transform(CLI::AsSizeValue(false))
                        ->type_name("SIZE"));
    declare_amount(*add("--max-work", limits.work,
                        "Comparisons of keys in the hash tables of a reader, estimated")
                        ->type_name("NUMBER"));
    declare_own_memory(app, limits);
}

void declare_own_memory(CLI::App& app, Limits& limits) {
    declare_size(app, "--max-own-memory", limits.own_memory,
                 "Memory for the command itself, beside the input; beyond it the code is 2");
}

void declare_decimal_point(CLI::App& app, VerifyOptions& options) {
    app.add_option("--decimal-point", options.decimal_point,
                   "The decimal point in the locale of the process that wrote the bytes")
        ->capture_default_str()
        ->check([](std::string const& point) {
            bool const is_one = !point.empty() && std::ranges::none_of(point, is_part_of_number);
            return is_one ? std::string() : "\"" + point + "\" is no decimal point";
        })
        ->type_name("CHARACTER");
}

void declare_findings_option(CLI::App& app, WalkOptions& options, char const* meaning) {
    declare_amount(*app.add_option("-n,--findings", options.verify.listed, meaning)
                        ->capture_default_str()
                        ->type_name("NUMBER"));
}

namespace {

template <class Files>
void declare_walk(CLI::App& app, WalkOptions& options, Files& files) {
    app.add_option("FILE", files, "The bytes. - is standard input")->required()->type_name("");
    app.add_flag("-q,--quiet", options.quiet, "No notice of the roots that fit");
    declare_max_size(app, options.max_size);
    declare_root_option(app, options.stem);
    declare_decimal_point(app, options.verify);
    declare_limits(app, options.verify.limits);
}

}  // namespace

void declare_walk_options(CLI::App& app, WalkOptions& options) {
    declare_walk(app, options, options.file);
}

void declare_walk_options(CLI::App& app, WalkOptions& options, std::vector<std::string>& files) {
    declare_walk(app, options, files);
}

WalkedInput::WalkedInput(WalkOptions const& options, Streams& streams)
    : streams_(streams),
      name_(input_name(options.file)),
      bytes_(options.file, options.max_size, streams.in),
      options_(options.verify),
      root_(options.stem ? &root_of(*options.stem) : choose_root(options.quiet)) {}

Root const* WalkedInput::choose_root(bool quiet) const {
    auto       candidates = watch("looking for its root", [&](VerifyOptions const& watched) {
        return identify(bytes(), watched);
    });
    auto const best = candidates.front();
    if (best.answer == Answer::unsafe) {
        print_message(streams_.err,
                      name_ + ": " + form_notice(bytes()) + "fits no root; read as " +
                          std::string(best.root->stem) + ", which came furthest, to byte " +
                          std::to_string(best.walked) + " of " + std::to_string(bytes().size()));
        return best.root;
    }
    std::erase_if(candidates, [&](Candidate const& other) {
        return other.answer == Answer::unsafe || other.root == best.root;
    });
    auto const notice =
        "read as " + std::string(best.root->stem) + "; it also fits " + stems_of(candidates);
    if (!candidates.empty() && !quiet && streams_.notices.insert(notice).second)
        print_message(streams_.err, name_ + ": " + notice);
    return best.root;
}

Verdict WalkedInput::verify() const {
    return watch("verifying", [&](VerifyOptions const& watched) {
        return sml::inspect::verify(root(), bytes(), watched);
    });
}

Verdict WalkedInput::verify(FindingGroups& groups) const {
    return watch("verifying", [&](VerifyOptions watched) {
        watched.listed = FindingGroups::most_findings;
        watched.listener = [&](Finding const& finding) { groups.add(finding); };
        return sml::inspect::verify(root(), bytes(), watched);
    });
}

Root const& root_of(std::string const& stem) {
    if (Root const* const root = find_root(stem)) return *root;
    throw CLI::ValidationError(
        "--root", "no root is called " + stem + "; there is " + std::string(stem_like(stem)));
}

std::string form_notice(std::string_view bytes) {
    auto const form = foreign_form(bytes);
    if (form.empty()) return {};
    if (form != json_form) return "is " + std::string(form) + ", ";
    return "is JSON text (import reads SARIF, encode what dump has printed), ";
}

std::string described(Finding const& finding) {
    std::string const place = finding.path.empty() ? "" : " at " + finding.path;
    return "byte " + std::to_string(finding.offset) + place + ": expected " + finding.expected +
           ", found " + finding.found;
}

void report_findings(std::ostream& err, std::string const& name,
                     std::vector<Finding> const& findings) {
    for (Finding const& finding : findings)
        print_message(err, name + ": " + described(finding) +
                               (finding.severity == Severity::odd ? " (odd)" : " (unsafe)"));
}

ExitCode for_each_file(std::vector<std::string> const& files, WalkOptions options, Streams& streams,
                       std::function<ExitCode(WalkOptions const&)> const& act) {
    ExitCode   highest = exit_done;
    auto const end_with = [&](ExitCode code) { highest = std::max(highest, code); };
    for (auto const& file : files) {
        options.file = file;
        try {
            end_with(act(options));
        } catch (DamagedInput const& error) {
            print_message(streams.err, error.what());
            end_with(exit_no);
        } catch (IoFailure const& error) {
            print_message(streams.err, error.what());
            end_with(exit_usage_or_io);
        } catch (BudgetExceeded const&) {
            print_message(streams.err, input_name(file) + ": " + out_of_own_memory);
            end_with(exit_usage_or_io);
        }
        streams.out.flush();  // before messages of the next file on standard error
    }
    return highest;
}

}  // namespace bradep

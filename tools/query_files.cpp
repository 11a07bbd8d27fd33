#include "query_files.hpp"

#include <sml/tables/sqlite/database.hpp>
#include "result_set.hpp"
#include "walk_options.hpp"

#include <algorithm>
#include <utility>

namespace bradep {

using namespace sml::inspect;

namespace {

// All roots, those that hold checks first: the ones that most files hold.
std::vector<Root const*> roots_by_likelihood() {
    std::vector<Root const*> all;
    for (Root const& root : roots()) all.push_back(&root);
    std::stable_partition(all.begin(), all.end(), [](Root const* root) {
        return root->stem == result_set_stem ||
               root->stem == "Application_Results_Application_Results";
    });
    return all;
}

[[noreturn]] void refuse(std::string const& name, std::string_view bytes, std::string const& why) {
    if (bytes.empty()) throw DamagedInput(name + ": the file is empty");
    throw DamagedInput(name + ": " + form_notice(bytes) + why);
}

VerifyOptions unlisted(VerifyOptions options) {
    options.listed = 0;
    return options;
}

// The contents as a value of the first root for which the bytes are good, else for which they are
// odd.
Contents contents_of_any_root(std::string const& name, std::string_view bytes,
                              VerifyOptions const& options) {
    std::optional<Contents> odd;
    std::uint64_t           furthest = 0;
    Root const*             nearest = nullptr;
    for (Root const* const root : roots_by_likelihood()) {
        Contents       contents(*root, bytes, unlisted(options));
        Verdict const& verdict = contents.verdict();
        if (verdict.answer == Answer::good) return contents;
        if (verdict.answer == Answer::odd && !odd) odd = std::move(contents);
        if (nearest == nullptr || verdict.walked > furthest) {
            nearest = root;
            furthest = verdict.walked;
        }
    }
    if (odd) return std::move(*odd);
    refuse(name, bytes,
           "fits no root; " + std::string(nearest->stem) + " came furthest, to byte " +
               std::to_string(furthest) + " of " + std::to_string(bytes.size()));
}

}  // namespace

void declare_query_options(CLI::App& app, QueryOptions& options) {
    declare_max_size(app, options.max_size);
    declare_root_option(app, options.stem);
    declare_decimal_point(app, options.verify);
    declare_limits(app, options.verify.limits);
}

CLI::Option* declare_query_files(CLI::App& app, QueryOptions& options) {
    declare_query_options(app, options);
    return app.add_option("FILE", options.files, "Result sets")->required()->type_name("");
}

QueryFiles::QueryFiles(QueryOptions const& options, Streams& streams) : options_(options) {
    if (options.stem) sets_.emplace(root_of(*options.stem), options.verify.walk());
    for (std::size_t i = 0; i < options.files.size(); ++i)
        add(options.files[i], options.names.empty() ? options.files[i] : options.names[i], streams);
}

void QueryFiles::require_checks() const {
    if (sml::tables::has_views(sets_->schema())) return;
    throw DamagedInput(options_.files.front() + ": is a " +
                       std::string(sets_->schema().root->stem) + ", which holds no checks");
}

void QueryFiles::add(std::string const& file, std::string const& name, Streams& streams) {
    auto const bytes = files_.emplace_back(file, options_.max_size).view();
    auto       contents =
        watch(streams.err, name + ", verifying", bytes.size(), options_.verify,
              [&](VerifyOptions const& watched) { return contents_of(name, bytes, watched); });
    if (!sets_) sets_.emplace(contents.root(), options_.verify.walk());
    sets_->add({name, bytes, std::move(contents)});
}

Contents QueryFiles::contents_of(std::string const& name, std::string_view bytes,
                                 VerifyOptions const& options) const {
    if (!sets_) return contents_of_any_root(name, bytes, options);
    Root const& root = *sets_->schema().root;
    Contents    contents(root, bytes, unlisted(options));
    if (contents.verdict().answer != Answer::unsafe) return contents;
    std::string const reason = "can't be read as " + std::string(root.stem) + ": " +
                               described(contents.verdict().findings.back());
    if (options_.stem || bytes.empty()) refuse(name, bytes, reason);
    Contents const other = contents_of_any_root(name, bytes, options);
    refuse(name, bytes,
           "holds the root " + std::string(other.root().stem) + ", the files before it " +
               std::string(root.stem) + "; only files of one root can be asked together");
}

}  // namespace bradep

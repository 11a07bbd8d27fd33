#include "diff/side_files.hpp"

#include "diff/log_texts.hpp"
#include "errors.hpp"
#include "foreign_form.hpp"
#include "gzip.hpp"
#include "import.hpp"
#include "signals.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <optional>
#include <system_error>

namespace bradep {

namespace {

namespace fs = std::filesystem;

// The files in a directory, or the file itself.
std::vector<std::string> files_of(std::string const& name) {
    std::error_code error;
    if (!fs::is_directory(name, error)) return {name};
    std::vector<std::string> files;
    for (auto const& entry : fs::directory_iterator(name))
        if (entry.is_regular_file() && !entry.path().filename().string().starts_with('.'))
            files.push_back(entry.path().string());
    if (files.empty()) throw IoFailure(name + ": there is no file in the directory");
    return files;
}

// Standard input can only be a log: result sets are mapped.
bool is_log(std::string const& name) {
    if (name == "-") return true;
    constexpr std::size_t enough = 4096;
    std::string           start(enough, '\0');
    std::ifstream         file(name, std::ios::binary);
    file.read(start.data(), static_cast<std::streamsize>(enough));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return foreign_form(start) == json_form || is_gzip(start);
}

}  // namespace

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "bradep-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw IoFailure("cannot make a temporary directory: " + std::string(std::strerror(errno)));
    path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

SideFiles::SideFiles(std::vector<std::string> const& names, QueryOptions const& options,
                     Streams& streams)
    : options_(options) {
    options_.files.clear();
    for (std::string const& name : names)
        for (std::string const& file : files_of(name)) options_.names.push_back(file);
    constexpr std::size_t most = std::numeric_limits<decltype(sml::results::Finding::set)>::max();
    if (options_.names.size() > most)
        throw IoFailure("more than " + std::to_string(most) + " files on one side");
    // So nothing depends on the order in which they are given.
    std::ranges::sort(options_.names);
    std::optional<TemporaryDirectory> imported;
    Interruption                      interruption;
    auto const                        end_if_interrupted = [&] {
        if (!Interruption::has_come()) return;
        imported.reset();
        interruption.end_process();
    };
    for (std::string const& name : options_.names) {
        flagged_.emplace_back();
        if (!is_log(name)) {
            options_.files.push_back(name);
            continue;
        }
        if (!imported) imported.emplace();
        options_.files.push_back(imported->path() / std::to_string(options_.files.size()));
        import(name, streams);
        end_if_interrupted();
    }
    files_ = std::make_unique<QueryFiles>(options_, streams);
    files_->require_checks();
    end_if_interrupted();
}

void SideFiles::import(std::string const& name, Streams& streams) {
    // Standard input can be read only once.
    if (name != "-") {
        InputBytes log(name, options_.max_size, streams.in);
        log.unpack();
        flagged_.back() = flagged_in_log(log.view(), name);
    }
    import_log(name, options_.files.back(), options_.max_size, options_.verify, streams);
}

sml::results::SideInput SideFiles::input() const { return {&files_->sets(), flagged_, {}}; }

}  // namespace bradep

#include "report/report_directory.hpp"

#include <report/writer/page.hpp>
#include "errors.hpp"
#include "output_file.hpp"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace bradep {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view call = "bradep.chunk(\"";

constexpr std::array<std::string_view, 4> files_of_page = {"index.html", "report.js", "report.css",
                                                           "licences.txt"};
constexpr char const*                     page = "index.html";
constexpr char const*                     data = "data";

std::string start_of_chunk(std::string_view name) {
    return std::string(call) + std::string(name) + "\", \"";
}

bool starts_with(fs::path const& file, std::string const& wanted) {
    std::ifstream stream(file, std::ios::binary);
    std::string   start(wanted.size(), '\0');
    return stream.read(start.data(), static_cast<std::streamsize>(start.size())) && start == wanted;
}

void refuse(fs::path const& target, std::string const& why) {
    throw IoFailure("cannot write " + target.string() + ": it " + why);
}

// Nothing that somebody has put there is removed.
void refuse_other_files(fs::path const& target, fs::path const& name_of_target) {
    for (auto const& entry : fs::directory_iterator(target)) {
        auto const name = entry.path().filename();
        if (name == data || std::ranges::count(files_of_page, name.string()) > 0) continue;
        refuse(name_of_target, "holds " + name.string() + ", which is no part of a report");
    }
    for (auto const& entry : fs::directory_iterator(target / data))
        if (entry.path().extension() != ".js")
            refuse(name_of_target, "holds " + (data / entry.path().filename()).string() +
                                       ", which is no part of a report");
}

// Returns whether there is a report. `name_of_target` is how the user calls it.
bool check_target(fs::path const& target, fs::path const& name_of_target) {
    auto const status = fs::status(target);
    if (!fs::exists(status)) return false;
    if (!fs::is_directory(status)) refuse(name_of_target, "is no directory");
    if (fs::is_empty(target)) return false;
    if (!starts_with(target / data / "index.js", start_of_chunk("index")))
        refuse(name_of_target, "is neither empty nor a report");
    refuse_other_files(target, name_of_target);
    return true;
}

// Without links, and without a slash or a dot at the end.
fs::path resolved(fs::path const& target) {
    auto path = fs::absolute(target);
    while (path.has_relative_path() && (!path.has_filename() || path.filename() == "."))
        path = path.parent_path();
    path = fs::weakly_canonical(without_links(path));
    if (!path.has_filename()) refuse(target, "is the root of the file system");
    return path;
}

void clear(fs::path const& directory) {
    for (auto const& entry : fs::directory_iterator(directory)) fs::remove_all(entry.path());
}

void make_directory(fs::path const& path) {
    if (::mkdir(path.c_str(), 0777) == 0) return;
    int const   error = errno;
    struct stat there {};
    bool const  is_own =
        ::lstat(path.c_str(), &there) == 0 && S_ISDIR(there.st_mode) && there.st_uid == ::geteuid();
    if (error != EEXIST || !is_own) cannot_write(path, error);
}

// A directory that is replaced keeps its mode and owner.
void take_mode(fs::path const& from, fs::path const& to) {
    struct stat before {};
    if (::stat(from.c_str(), &before) != 0) cannot_write(from, errno);
    if (::chown(to.c_str(), before.st_uid, before.st_gid) != 0) return;
    if (::chmod(to.c_str(), before.st_mode & 07777) != 0) cannot_write(to, errno);
}

// What the standard library throws is trouble with files.
template <class Work>
auto guarded(fs::path const& target, Work const& work) {
    try {
        return work();
    } catch (fs::filesystem_error const& error) {
        cannot_write(target, error.code().value());
    }
}

}  // namespace

ReportDirectory::ReportDirectory(fs::path target) : name_(std::move(target)) {
    guarded(name_, [&] {
        target_ = resolved(name_);
        check_target(target_, name_);
        parts_ = target_.parent_path() / ("." + target_.filename().string() + ".bradep-report");
        do {  // another process may have made it a report meanwhile
            lock_.reset();
            make_directory(parts_);
            lock_.emplace(parts_);
        } while (!lock_->is_in_place());
        clear(parts_);
        make_directory(parts_ / data);
    });
}

ReportDirectory::~ReportDirectory() {
    std::error_code ignored;
    if (lock_ && lock_->is_in_place()) fs::remove_all(parts_, ignored);
}

void ReportDirectory::add(std::string const& name, std::string_view packed) {
    auto text = start_of_chunk(name);
    text += packed;
    text += "\");\n";
    write(fs::path(data) / (name + ".js"), text);
}

void ReportDirectory::write(fs::path const& file, std::string_view text) {
    NewFile out(parts_ / file);
    out.text = text;
    out.write();
}

void ReportDirectory::publish(std::string_view title) {
    auto const files = report::page_files();
    write(page, report::page_of_directory(title));
    write("report.js", files.script);
    write("report.css", files.style);
    write("licences.txt", files.licences);
    lock_->flush();
    guarded(name_, [&] { take_place(); });
}

void ReportDirectory::take_place() {
    if (fs::exists(target_)) take_mode(target_, parts_);
    if (!check_target(target_, name_)) {
        // An empty directory is replaced, too.
        if (::rename(parts_.c_str(), target_.c_str()) != 0) cannot_write(target_, errno);
        return lock_->flush();
    }
    DirectoryLock const earlier(target_);
    if (::renameat2(AT_FDCWD, parts_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) != 0) {
        if (errno != EINVAL && errno != ENOSYS) cannot_write(target_, errno);
        auto aside = parts_;
        aside += "-old";
        fs::rename(target_, aside);
        fs::rename(parts_, target_);
        fs::rename(aside, parts_);
    }
    lock_->flush();
    fs::remove_all(parts_);
}

}  // namespace bradep

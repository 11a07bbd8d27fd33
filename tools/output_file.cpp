#include "output_file.hpp"

#include "errors.hpp"
#include "input_bytes.hpp"
#include "signals.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <ext/stdio_filebuf.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <optional>
#include <random>
#include <sstream>
#include <string>

namespace bradep {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void cannot_write(fs::path const& target, int error) {
    throw IoFailure("cannot write " + target.string() + ": " + std::strerror(error ? error : EIO));
}

std::string file_to_remove;  // empty unless the handlers below are installed

extern "C" void remove_and_die(int signal) {
    ::unlink(file_to_remove.c_str());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Removes the temporary file if the command is interrupted.
class RemovalOnInterrupt {
public:
    explicit RemovalOnInterrupt(std::string const& path) {
        file_to_remove = path;
        for (auto& [signal, before] : handlers_) {
            before = std::signal(signal, remove_and_die);
            if (before != SIG_DFL)
                std::signal(signal, before);  // ignored, or handled by other code
        }
    }
    ~RemovalOnInterrupt() {
        for (auto const& [signal, before] : handlers_) std::signal(signal, before);
        file_to_remove.clear();
    }
    RemovalOnInterrupt(RemovalOnInterrupt const&) = delete;
    RemovalOnInterrupt& operator=(RemovalOnInterrupt const&) = delete;

private:
    struct Handler {
        int signal;
        void (*before)(int);
    };
    Handler handlers_[3] = {{SIGINT, SIG_DFL}, {SIGTERM, SIG_DFL}, {SIGHUP, SIG_DFL}};
};

void write_to(std::streambuf& buffer, fs::path const& target,
              std::function<void(std::ostream&)> const& write) {
    std::ostream stream(&buffer);
    try {
        // Without exceptions the writer would go on to the end of the object after a failed write.
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        write(stream);
        stream.flush();
    } catch (std::ios_base::failure const&) {
        cannot_write(target, errno);
    }
}

void write_directly(fs::path const& target, std::function<void(std::ostream&)> const& write) {
    std::filebuf file;
    errno = 0;
    if (!file.open(target, std::ios::out | std::ios::binary | std::ios::trunc))
        cannot_write(target, errno);
    write_to(file, target, write);
}

fs::path directory_of(fs::path const& target) {
    auto const parent = target.parent_path();
    return parent.empty() ? fs::path(".") : parent;
}

// A file in the target's directory that replaces the target at the end, or is removed. If the file
// system supports it, the file has no name until then, so that not even a killed process leaves it
// behind.
class SiblingFile {
public:
    SiblingFile(fs::path const& target, Temporary kind) : target_(target) {
        if (kind == Temporary::unnamed_where_possible) open_unnamed();
        if (descriptor_ < 0) open_named();
    }
    ~SiblingFile() {
        ::close(descriptor_);
        if (!path_.empty()) ::unlink(path_.c_str());
    }
    SiblingFile(SiblingFile const&) = delete;
    SiblingFile& operator=(SiblingFile const&) = delete;

    int descriptor() const { return descriptor_; }

    // The path by which the file can be read before it replaces the target.
    std::string readable_path() const { return path_.empty() ? link_source() : path_; }

    void take_place() {
        complete();
        if (path_.empty() && link_as(target_)) return;
        if (path_.empty()) name();
        if (::rename(path_.c_str(), target_.c_str()) != 0) cannot_write(target_, errno);
        path_.clear();
    }

    // The same for a named file, but fails if the target exists by now.
    void take_free_place() {
        complete();
        int failed =
            ::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE);
        if (failed != 0 && errno == EINVAL)  // not every file system can do that
            failed = ::rename(path_.c_str(), target_.c_str());
        if (failed != 0) cannot_write(target_, errno);
        path_.clear();
    }

private:
    void complete() {
        take_mode();
        if (::fsync(descriptor_) != 0) cannot_write(target_, errno);
    }

    void open_unnamed() {
        descriptor_ = ::open(directory_of(target_).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        if (descriptor_ < 0 || ::access(link_source().c_str(), F_OK) == 0) return;
        ::close(descriptor_);  // without /proc it could never get a name
        descriptor_ = -1;
    }

    void open_named() {
        path_ = directory_of(target_) / ".bradep-XXXXXX";
        descriptor_ = ::mkostemp(path_.data(), O_CLOEXEC);
        if (descriptor_ < 0) {
            path_.clear();
            cannot_write(target_, errno);
        }
        removal_.emplace(path_);
    }

    std::string link_source() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

    // Returns false if a file with this name exists: linkat can't replace it, only rename can.
    bool link_as(fs::path const& name) const {
        if (::linkat(AT_FDCWD, link_source().c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) ==
            0)
            return true;
        if (errno != EEXIST) cannot_write(target_, errno);
        return false;
    }

    void name() {
        std::random_device random;
        do {
            char text[32];
            std::snprintf(text, sizeof text, ".bradep-%08x%08x", random(), random());
            path_ = directory_of(target_) / text;
            removal_.emplace(path_);
        } while (!link_as(path_));
    }

    // A replaced file keeps its mode and owner. A new one gets the default mode of the process.
    void take_mode() {
        struct stat before {};
        if (::stat(target_.c_str(), &before) != 0) {
            auto const mask = ::umask(0);
            ::umask(mask);
            before.st_mode = static_cast<mode_t>(0666 & ~mask);
        } else if (::fchown(descriptor_, before.st_uid, before.st_gid) != 0) {
            before.st_mode &= 0777;  // the owner differs: drop setuid, setgid and sticky
        }
        if (::fchmod(descriptor_, before.st_mode & 07777) != 0) cannot_write(target_, errno);
    }

    fs::path                          target_;
    std::string                       path_;  // empty while the file has no name of its own
    int                               descriptor_ = -1;
    std::optional<RemovalOnInterrupt> removal_;  // removes the file `path_`
};

void write_to(SiblingFile& sibling, fs::path const& target,
              std::function<void(std::ostream&)> const& write) {
    int const descriptor = ::fcntl(sibling.descriptor(), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) cannot_write(target, errno);
    __gnu_cxx::stdio_filebuf<char> buffer(descriptor, std::ios::out | std::ios::binary);
    write_to(buffer, target, write);
}

void write_beside(fs::path const& named_target, std::function<void(std::ostream&)> const& write,
                  Temporary kind, std::function<void(std::string_view)> const& check) {
    SiblingFile sibling(without_links(named_target), kind);
    write_to(sibling, named_target, write);
    if (check) {
        std::istringstream none;
        constexpr auto     any_size = std::numeric_limits<std::uint64_t>::max();
        check(InputBytes(sibling.readable_path(), any_size, none).view());
    }
    sibling.take_place();
}

}  // namespace

fs::path without_links(fs::path target) {
    constexpr int   most_links = 40;  // as many as the kernel follows
    auto const      named_target = target;
    std::error_code error;
    for (int i = 0;; ++i) {
        auto const status = fs::symlink_status(target, error);
        if (!fs::status_known(status)) cannot_write(named_target, error.value());
        if (!fs::is_symlink(status)) return target;
        if (i == most_links) cannot_write(named_target, ELOOP);
        target = target.parent_path() / fs::read_symlink(target, error);
        if (error) cannot_write(named_target, error.value());
    }
}

void remove_temporary_file() noexcept {
    if (!file_to_remove.empty()) ::unlink(file_to_remove.c_str());
}

void write_file(fs::path const& named_target, std::function<void(std::ostream&)> const& write,
                Temporary kind) {
    std::error_code     error;
    auto const          status = fs::status(named_target, error);
    IgnoredSignal const file_too_large(SIGXFSZ);
    if (fs::is_directory(status)) cannot_write(named_target, EISDIR);
    if (fs::exists(status) && !fs::is_regular_file(status))
        return write_directly(named_target, write);
    write_beside(named_target, write, kind, nullptr);
}

void create_file(fs::path const& target, std::function<void(fs::path const&)> const& fill) {
    IgnoredSignal const file_too_large(SIGXFSZ);
    SiblingFile         sibling(without_links(target), Temporary::named);
    fill(sibling.readable_path());
    sibling.take_free_place();
}

void write_seekable(std::string const& target, std::ostream& standard_output,
                    std::function<void(std::ostream&)> const&    write,
                    std::function<void(std::string_view)> const& check) {
    std::error_code error;
    auto const      status = fs::status(target, error);
    bool const      can_seek = !fs::exists(status) || fs::is_regular_file(status);
    if (target != "-" && can_seek) {
        IgnoredSignal const file_too_large(SIGXFSZ);
        return write_beside(target, write, Temporary::unnamed_where_possible, check);
    }
    if (target != "-" && fs::is_directory(status)) cannot_write(target, EISDIR);
    std::ostringstream whole(std::ios::binary);
    write(whole);
    if (check) check(whole.view());
    auto const write_whole = [&](std::ostream& out) { out << whole.view(); };
    if (target == "-")
        write_whole(standard_output);
    else
        write_file(target, write_whole);
}

void refuse_overwriting_an_input(std::string const&              target,
                                 std::vector<std::string> const& inputs) {
    std::error_code error;  // not reported here: opening the file reports it
    for (auto const& input : inputs)
        if (fs::is_regular_file(target, error) && fs::equivalent(input, target, error))
            throw IoFailure("the output " + target + " is also an input");
}

}  // namespace bradep

#include <report/writer/source_directory.hpp>

#include <sml/results/paths.hpp>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace bradep::report {

namespace {

namespace fs = std::filesystem;

constexpr int only_look = O_PATH | O_CLOEXEC | O_NOFOLLOW;
// A pipe without a writer must not block.
constexpr int to_read = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

/// Closes a file, if it is one.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int  number() const { return number_; }
    void take(int other) { ::close(std::exchange(number_, other)); }

private:
    int number_;
};

int open_beneath(int directory, std::string const& path, int flags) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return static_cast<int>(::syscall(SYS_openat2, directory, path.c_str(), &how, sizeof how));
}

// Fails with EXDEV for a part "..", with ELOOP for a symbolic link.
int open_by_parts(int directory, std::string_view path, int flags) {
    Descriptor at(::fcntl(directory, F_DUPFD_CLOEXEC, 0));
    for (;;) {
        auto const        slash = path.find('/');
        std::string const part(path.substr(0, slash));
        if (part == "..") return errno = EXDEV, -1;
        if (slash == std::string_view::npos) return ::openat(at.number(), part.c_str(), flags);
        path.remove_prefix(slash + 1);
        if (part.empty() || part == ".") continue;
        struct stat found {};
        bool const  is_link =
            ::fstatat(at.number(), part.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISLNK(found.st_mode);
        if (is_link) return errno = ELOOP, -1;
        int const next = ::openat(at.number(), part.c_str(), only_look | O_DIRECTORY);
        if (next < 0) return -1;
        at.take(next);
    }
}

Skipped why_not_opened(int error) {
    if (error == EXDEV) return Skipped::outside;
    if (error == ELOOP) return Skipped::link;
    if (error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG) return Skipped::missing;
    return Skipped::unreadable;
}

std::optional<Skipped> why_no_file(int file) {
    struct stat found {};
    if (::fstat(file, &found) != 0) return Skipped::unreadable;
    if (S_ISLNK(found.st_mode)) return Skipped::link;
    if (!S_ISREG(found.st_mode)) return Skipped::not_a_file;
    return std::nullopt;
}

}  // namespace

std::string_view reason_of(Skipped why) {
    switch (why) {
        case Skipped::missing: return "not found";
        case Skipped::outside: return "outside the source root";
        case Skipped::link: return "behind a symbolic link";
        case Skipped::not_a_file: return "no regular file";
        case Skipped::unreadable: return "not readable";
        case Skipped::too_large: return "larger than the limit of a file";
        case Skipped::binary: return "no text";
        case Skipped::over_total: return "beyond the limit of all files";
    }
    return "";
}

SourceDirectory::SourceDirectory(fs::path const& directory, SourceLimits limits, Opening opening)
    : directory_(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
      limits_(limits),
      opening_(opening) {
    if (directory_ < 0)
        throw fs::filesystem_error("cannot open", directory,
                                   std::error_code(errno, std::generic_category()));
}

SourceDirectory::~SourceDirectory() { ::close(directory_); }

std::variant<std::string, Skipped> SourceDirectory::read(std::string_view uri) {
    auto const       path = sml::results::path_of(uri);
    std::string_view rest = path;
    if (path.find('\0') != std::string::npos) return Skipped::missing;
    Skipped why = path.starts_with("../") ? Skipped::outside : Skipped::missing;
    for (;;) {
        if (rest.starts_with('/')) rest.remove_prefix(1);
        if (rest.empty()) return why;
        auto contents = read_at(std::string(rest));
        if (contents.index() == 0) return contents;
        if (why == Skipped::missing) why = std::get<Skipped>(contents);
        auto const slash = rest.find('/');
        if (slash == std::string_view::npos) return why;
        rest.remove_prefix(slash + 1);
    }
}

std::variant<std::string, Skipped> SourceDirectory::read_at(std::string const& path) {
    // Opening a device can do something, so it is looked at first.
    Descriptor const looked_at(open(path, only_look));
    if (looked_at.number() < 0) return why_not_opened(errno);
    if (auto const why = why_no_file(looked_at.number())) return *why;
    Descriptor const file(open(path, to_read));
    if (file.number() < 0) return why_not_opened(errno);
    if (auto const why = why_no_file(file.number())) return *why;
    auto contents = contents_of(file.number());
    if (auto const* const text = std::get_if<std::string>(&contents)) read_ += text->size();
    return contents;
}

// The file may grow or shrink meanwhile.
std::variant<std::string, Skipped> SourceDirectory::contents_of(int file) const {
    std::string text;
    char        buffer[1 << 16];
    for (;;) {
        auto const size = ::read(file, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR) continue;
        if (size < 0) return Skipped::unreadable;
        if (size == 0) break;
        text.append(buffer, static_cast<std::size_t>(size));
        if (text.size() > limits_.file) return Skipped::too_large;
    }
    if (text.find('\0') != std::string::npos) return Skipped::binary;
    if (text.size() > limits_.total - read_) return Skipped::over_total;
    return text;
}

int SourceDirectory::open(std::string const& path, int flags) {
    if (opening_ == Opening::beneath) {
        int const file = open_beneath(directory_, path, flags);
        // A sandbox may refuse the call as well.
        if (file >= 0 || (errno != ENOSYS && errno != EPERM)) return file;
        opening_ = Opening::by_parts;
    }
    return open_by_parts(directory_, path, flags);
}

}  // namespace bradep::report

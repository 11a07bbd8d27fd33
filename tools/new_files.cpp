#include "new_files.hpp"

#include "errors.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

namespace bradep {

namespace fs = std::filesystem;

void cannot_write(fs::path const& path, int error) {
    throw IoFailure("cannot write " + path.string() + ": " + std::strerror(error));
}

DirectoryLock::DirectoryLock(fs::path directory)
    : directory_(std::move(directory)),
      descriptor_(::open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ < 0) cannot_write(directory_, errno);
    if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
    int const error = errno;
    ::close(descriptor_);
    if (error == EWOULDBLOCK)
        throw IoFailure("cannot write " + directory_.string() +
                        ": another process is writing there");
    cannot_write(directory_, error);
}

DirectoryLock::~DirectoryLock() { ::close(descriptor_); }

void DirectoryLock::flush() const {
    if (::syncfs(descriptor_) != 0) cannot_write(directory_, errno);
}

bool DirectoryLock::is_in_place() const {
    struct stat open {};
    struct stat there {};
    return ::fstat(descriptor_, &open) == 0 && ::lstat(directory_.c_str(), &there) == 0 &&
           open.st_dev == there.st_dev && open.st_ino == there.st_ino;
}

NewFile::NewFile(fs::path path, mode_t mode)
    : path_(std::move(path)),
      descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {
    if (descriptor_ < 0) cannot_write(path_, errno);
}

NewFile::~NewFile() { ::close(descriptor_); }

void NewFile::write_if_long() {
    constexpr std::size_t long_text = std::size_t{1} << 20;
    if (text.size() >= long_text) write();
}

void NewFile::write() {
    std::string_view rest = text;
    while (!rest.empty()) {
        ssize_t const written = ::write(descriptor_, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) cannot_write(path_, errno);
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    text.clear();
}

}  // namespace bradep

#pragma once
// Files that are made in a directory that no other process writes to.

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace bradep {

/// Throws IoFailure. `error` is a value of errno.
[[noreturn]] void cannot_write(std::filesystem::path const& path, int error);

/// An open directory, on which this process has the only lock until the object is gone.
class DirectoryLock {
public:
    /// Throws IoFailure if there is no such directory, or if another process has the lock.
    explicit DirectoryLock(std::filesystem::path directory);
    ~DirectoryLock();
    DirectoryLock(DirectoryLock const&) = delete;
    DirectoryLock& operator=(DirectoryLock const&) = delete;

    /// Writes to the disk all that has been written to its file system.
    void flush() const;

    /// Whether the path still leads to this directory.
    bool is_in_place() const;

private:
    std::filesystem::path directory_;
    int                   descriptor_;
};

/// A file that is made. Text is appended to `text`, and written when that is long. All members
/// throw IoFailure.
class NewFile {
public:
    /// There must be no file with this path.
    explicit NewFile(std::filesystem::path path, mode_t mode = 0666);
    ~NewFile();
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    std::string text;

    void write_if_long();
    /// Must be called at the end.
    void write();

private:
    std::filesystem::path path_;
    int                   descriptor_;
};

}  // namespace bradep

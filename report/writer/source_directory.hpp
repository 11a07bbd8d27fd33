#pragma once
// Reads sources for a report, from one directory and nowhere else, whatever the paths say.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>

namespace bradep::report {

/// Why the source of a file is not in a report.
enum class Skipped {
    missing,
    outside,
    link,
    not_a_file,
    unreadable,
    too_large,
    binary,
    over_total
};

/// As in "larger than the limit".
std::string_view reason_of(Skipped why);

/// Bytes of one file, and of all files together.
struct SourceLimits {
    std::uint64_t file = std::uint64_t{2} << 20;
    std::uint64_t total = std::uint64_t{256} << 20;
};

/// How paths are opened: by the system call that keeps below a directory or, where the system does
/// not have it, part by part.
enum class Opening { beneath, by_parts };

class SourceDirectory {
public:
    /// Throws std::filesystem::filesystem_error if there is no such directory.
    explicit SourceDirectory(std::filesystem::path const& directory, SourceLimits limits = {},
                             Opening opening = Opening::beneath);
    ~SourceDirectory();
    SourceDirectory(SourceDirectory const&) = delete;
    SourceDirectory& operator=(SourceDirectory const&) = delete;

    /// The bytes of the file that a URI or path names: the one with the longest end of this path.
    /// A path that leads out of the directory, or over a symbolic link, is not followed; a device
    /// is not opened; a file with NULs is no source. What is read counts for the total.
    std::variant<std::string, Skipped> read(std::string_view uri);

private:
    std::variant<std::string, Skipped> read_at(std::string const& path);
    std::variant<std::string, Skipped> contents_of(int file) const;
    int                                open(std::string const& path, int flags);

    int           directory_;
    SourceLimits  limits_;
    Opening       opening_;
    std::uint64_t read_ = 0;  // bytes
};

}  // namespace bradep::report

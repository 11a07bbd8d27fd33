#pragma once
// The directory of a report while it is written.

#include <report/writer/chunk_output.hpp>
#include "new_files.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace bradep {

/// Writes the files of a report to a hidden directory beside the target, which becomes the target
/// at the end, or is removed. One that a killed process has left is used again.
class ReportDirectory : public report::ChunkOutput {
public:
    /// The target must be new, empty or a report with nothing else in it; a symbolic link is
    /// followed. Throws IoFailure, also if another process writes a report there.
    explicit ReportDirectory(std::filesystem::path target);
    ~ReportDirectory() override;
    ReportDirectory(ReportDirectory const&) = delete;
    ReportDirectory& operator=(ReportDirectory const&) = delete;

    void add(std::string const& name, std::string_view packed) override;

    /// Adds the page to the chunks, and makes all that the target once it is on the disk. An
    /// earlier report is replaced in one step if the file system can do that.
    void publish(std::string_view title);

private:
    void write(std::filesystem::path const& file, std::string_view text);
    void take_place();

    std::filesystem::path        name_;    // as the user spells the target
    std::filesystem::path        target_;  // without links
    std::filesystem::path        parts_;   // the hidden directory
    std::optional<DirectoryLock> lock_;    // on it
};

}  // namespace bradep

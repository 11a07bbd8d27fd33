#pragma once
// The files of one side of a diff: result sets and SARIF logs.

#include <sml/results/diff.hpp>
#include "query_files.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace bradep {

/// Makes a new directory, which is removed with all that is in it.
class TemporaryDirectory {
public:
    /// Throws IoFailure.
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;

    std::filesystem::path const& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Opens the files of a side. Logs are imported first. A directory stands for the files in it.
class SideFiles {
public:
    /// `options` has the limits; its files are not looked at. Throws as QueryFiles does, and
    /// DamagedInput for a log that can't be imported.
    SideFiles(std::vector<std::string> const& names, QueryOptions const& options, Streams& streams);

    /// Without sources. It refers to this object.
    sml::results::SideInput input() const;

    sml::tables::ResultSets const& sets() const { return files_->sets(); }

private:
    void import(std::string const& name, Streams& streams);

    QueryOptions                             options_;
    std::vector<sml::results::FlaggedByForm> flagged_;
    std::unique_ptr<QueryFiles>              files_;
};

}  // namespace bradep

#pragma once
// Result sets written to text files, for other databases.

#include "export/export.hpp"
#include "export/row_text.hpp"
#include "new_files.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

/// A directory with a directory for each table and view; in each is a file for each result set that
/// has rows in the table, named by its number. The file in `result_sets` is written last: a result
/// set without it is not complete. `schema` says how other databases load all that, and of which
/// root the result sets are.
///
/// Files are written in a hidden directory and moved from there.
class DirectoryExport : public Export {
public:
    /// The directory must be new, empty, or an export of this format; no other process may write to
    /// it. Throws DamagedInput and IoFailure.
    DirectoryExport(std::filesystem::path directory, FileFormat format, std::ostream& err);
    ~DirectoryExport() override;

    sml::inspect::Root const* root() const override { return root_; }
    bool                      add(std::shared_ptr<sml::tables::ResultSets const> sets) override;
    void                      finish() override;

private:
    class Parts;

    std::filesystem::path file_of(std::string const& table, std::int64_t number) const;
    bool                  is_empty() const;
    void                  read_mark();
    bool                  has(std::int64_t number, sml::tables::ResultSets const& sets) const;
    void                  write_schema(sml::inspect::Root const& root, Parts& parts);
    void write_tables(sml::tables::ResultSets const& sets, std::int64_t number, Parts& parts);

    std::filesystem::path        directory_;
    FileFormat                   format_;
    std::ostream&                err_;
    bool                         is_new_ = false;
    std::optional<DirectoryLock> lock_;
    sml::inspect::Root const*    root_ = nullptr;  // once it is known
};

}  // namespace bradep

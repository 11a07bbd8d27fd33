#pragma once
// The database of a series of runs in its directory.

#include <sml/results/series_store.hpp>
#include <sml/tables/result_sets.hpp>
#include "command.hpp"
#include "row_output.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace bradep {

/// Whether there is a series in the directory; false if it is no directory.
bool has_series(std::string const& directory);

class SeriesFile {
public:
    /// For adding, directory and file are made if they are missing. Throws IoFailure, and
    /// DamagedInput for a database that is no series.
    SeriesFile(std::string const& directory, sml::results::SeriesStore::For purpose);

    /// The name of the database.
    std::string const& name() const { return name_; }

    /// Does work with the store. Throws what a failure of a statement means for the user.
    template <class Work>
    auto use(Work const& work) {
        try {
            return work(*store_);
        } catch (sml::tables::SqlError const& error) {
            refuse(error);
        } catch (sml::results::NoSeries const& error) {
            refuse(error);
        }
    }

    /// Prints the rows of a statement.
    void print(std::string const& sql, RowOutput& rows, Streams& streams);

private:
    [[noreturn]] void refuse(sml::tables::SqlError const& error) const;
    [[noreturn]] void refuse(sml::results::NoSeries const& error) const;

    std::string                              name_;
    std::optional<sml::results::SeriesStore> store_;
};

/// The digest of a run: that of its set, or of the sorted digests of several.
std::string digest_of(sml::tables::ResultSets const& sets);

/// A statement for the rows of all runs.
std::string runs_sql();
/// The same for those from this number on; for no runs if there is none.
std::string runs_sql_from(std::optional<std::int64_t> first);

}  // namespace bradep

#include "track/series_file.hpp"

#include <sml/inspect/sha256.hpp>
#include "errors.hpp"
#include "query.hpp"
#include "signals.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace bradep {

namespace {

namespace fs = std::filesystem;
using sml::results::NoSeries;
using sml::results::SeriesStore;
using sml::tables::SqlError;

fs::path database_in(std::string const& directory) { return fs::path(directory) / "track.db"; }

void make_directory(std::string const& name) {
    std::error_code error;
    fs::create_directory(name, error);
    if (error) throw IoFailure("cannot make the directory " + name + ": " + error.message());
}

}  // namespace

bool has_series(std::string const& directory) {
    std::error_code error;
    return fs::exists(database_in(directory), error);
}

SeriesFile::SeriesFile(std::string const& directory, SeriesStore::For purpose)
    : name_(database_in(directory)) {
    if (purpose == SeriesStore::For::adding)
        make_directory(directory);
    else if (!has_series(directory))
        throw IoFailure("cannot read " + name_ + ": no such file; `bradep track " + directory +
                        " SET...` makes it");
    try {
        store_.emplace(name_, purpose, Interruption::has_come());
    } catch (SqlError const& error) {
        refuse(error);
    } catch (NoSeries const& error) {
        refuse(error);
    }
}

void SeriesFile::refuse(SqlError const& error) const {
    switch (error.code & 0xFF) {
        case SQLITE_INTERRUPT: throw IoFailure("interrupted");
        case SQLITE_BUSY:
            if (Interruption::has_come()) throw IoFailure("interrupted");
            throw IoFailure("cannot use " + name_ + ": another process adds to it");
        case SQLITE_NOTADB:
            throw DamagedInput(name_ + ": is no series of runs (" + error.what() + ')');
        case SQLITE_CORRUPT: throw DamagedInput(name_ + ": is damaged (" + error.what() + ')');
        default: throw IoFailure("cannot use " + name_ + ": " + error.what());
    }
}

void SeriesFile::refuse(NoSeries const& error) const {
    throw DamagedInput(name_ + ": " + error.what());
}

void SeriesFile::print(std::string const& sql, RowOutput& rows, Streams& streams) {
    use([&](SeriesStore& store) {
        sml::tables::Statement statement(store.connection().get(), sql);
        hand_rows(
            statement, [&] { return statement.step(); }, rows, streams);
    });
}

std::string digest_of(sml::tables::ResultSets const& sets) {
    if (sets.count() == 1) return sets.identity(1);
    std::vector<std::string> all;
    for (std::int64_t i = 1; i <= sets.count(); ++i) all.push_back(sets.identity(i) + '\n');
    std::ranges::sort(all);
    sml::inspect::Sha256 hash;
    for (std::string const& one : all) hash.add(one);
    return "sets:" + hash.hexadecimal();
}

std::string runs_sql() { return runs_sql_from(1); }

std::string runs_sql_from(std::optional<std::int64_t> first) {
    return "SELECT run, open, new, returned, fixed, suppressed, name FROM runs WHERE run >= " +
           (first ? std::to_string(*first) : "NULL") + " ORDER BY run";
}

}  // namespace bradep

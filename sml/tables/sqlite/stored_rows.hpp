#pragma once
// Rows that are scanned more than once, stored in temporary tables.

#include <sml/tables/source.hpp>
#include <sml/tables/sqlite/connection.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace sml::tables {

/// The wanted columns of the rows of some result sets, in a temporary table with an index.
class StoredRows {
public:
    /// `key` are the columns by which rows will be looked for, which must be wanted; with none, all
    /// rows of a result set are. All but `key` must outlive this object.
    StoredRows(Connection& connection, std::string table, Source const& source,
               std::vector<bool> const& is_wanted, std::vector<std::size_t> key);

    /// Whether the rows of a result set are stored.
    bool has(std::int64_t set) const { return sets_.contains(set); }

    /// Stores the rows of a result set, unless they are. After a failure this object must not be
    /// used any more.
    void add(std::int64_t set);

    /// A prepared statement that looks for rows. It is returned for the next one at the end.
    class Look {
    public:
        explicit Look(StoredRows& rows) : rows_(&rows), statement_(rows.take_statement()) {}
        ~Look() { rows_->give_back(std::move(statement_)); }
        Look(Look const&) = delete;
        Look& operator=(Look const&) = delete;

        /// Its parameters are the result set and the key. Its rows are those with that key, in the
        /// order of the source; its columns are the number of the row and the wanted columns.
        Statement&       statement() { return statement_; }
        Statement const& statement() const { return statement_; }

        /// Which column of the statement holds a wanted column.
        int place_of(std::size_t column) const { return rows_->places_[column]; }

    private:
        StoredRows* rows_;
        Statement   statement_;
    };

    std::vector<std::size_t> const& key() const { return key_; }

private:
    static std::string name_of(std::size_t column) { return "c" + std::to_string(column); }

    void      create() const;
    void      fill(std::int64_t set) const;
    void      add_index() const;
    Statement take_statement();
    void      give_back(Statement statement);

    Connection&              connection_;
    std::string              table_;
    Source const&            source_;
    std::vector<bool>        is_wanted_;
    std::vector<std::size_t> key_;
    std::vector<int>         places_;  // by column
    std::set<std::int64_t>   sets_;    // that are stored
    std::vector<Statement>   idle_;
};

/// Stores the rows of all sources, in a database on disk that has no name and is gone with the
/// process.
class RowStore {
public:
    /// Storing fails while `is_interrupted` is true. It must outlive this object.
    explicit RowStore(std::atomic<bool> const& is_interrupted);

    /// Must be called before each statement. Forgets all rows if they are many, or if storing some
    /// has failed.
    void start_statement();

    /// Comes before a scan of a result set. Returns null if this statement has not scanned it like
    /// this before, and its rows are not stored; else the stored rows. `plan` is a text for
    /// `is_wanted` and `key`.
    StoredRows* rows(Source const& source, std::string const& plan, std::int64_t set,
                     std::vector<bool> const& is_wanted, std::vector<std::size_t> const& key);

private:
    struct Scans {
        std::map<std::int64_t, std::uint64_t> statements;  // the last one that scanned, by set
        std::optional<StoredRows>             stored;
    };

    void open();
    bool is_large() const;

    std::atomic<bool> const&                               is_interrupted_;
    std::optional<Connection>                              connection_;
    std::map<std::pair<Source const*, std::string>, Scans> scans_;
    std::size_t                                            tables_ = 0;
    std::uint64_t                                          statement_ = 0;
    bool                                                   has_failed_ = false;
};

}  // namespace sml::tables

#pragma once
// Result sets written to an SQLite database.

#include <sml/tables/sqlite/connection.hpp>
#include "export/export.hpp"

#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace bradep {

/// A database with the tables of result sets of one root, `result_sets`, indexes and, where the
/// root holds checks, the views. What is added is there once `finish` has returned; until then
/// an existing database stays as it was. Result sets are numbered from 1 in the order of adding.
class DatabaseExport : public Export {
public:
    enum class File : std::uint8_t {
        empty,     ///< If `finish` is not called, it is of no use.
        exported,  ///< One that `finish` has completed. Another one is refused.
    };

    /// `name` is that of the file in messages. Throws DamagedInput, IoFailure and Interrupted.
    DatabaseExport(std::string const& path, File file, std::string name, std::ostream& err);

    sml::inspect::Root const* root() const override { return root_; }
    bool                      add(std::shared_ptr<sml::tables::ResultSets const> sets) override;
    void                      finish() override;

private:
    /// The first result set of a new database, while its digest is computed.
    struct First {
        std::shared_ptr<sml::tables::ResultSets const> sets;
        std::int64_t                                   number;
        std::future<void>                              identity;  // its destructor waits
    };

    void         open_exported();
    void         create_tables(sml::tables::ResultSets const& sets);
    bool         has(std::string const& identity);
    std::int64_t next_number();
    void         list_first();
    void insert(sml::tables::Source const& table, std::int64_t number, SetProgress& progress);

    std::string               name_;
    std::ostream&             err_;
    File                      file_;
    sml::tables::Connection   connection_;
    sml::inspect::Root const* root_ = nullptr;  // once it is known
    std::optional<First>      first_;
};

}  // namespace bradep

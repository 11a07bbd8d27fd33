#pragma once
// The result sets that a command asks by SQL.

#include <sml/inspect/type.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/tables/result_sets.hpp>
#include "command.hpp"
#include "input_bytes.hpp"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

struct QueryOptions {
    std::vector<std::string>    files;
    std::vector<std::string>    names;  ///< of the files, if these are not what messages call them
    std::uint64_t               max_size = std::uint64_t{1} << 40;
    std::optional<std::string>  stem;  ///< empty: the first root that fits the first file
    sml::inspect::VerifyOptions verify;
};

/// Declares --root, --max-size, --decimal-point and the limits, but not FILE.
void declare_query_options(CLI::App& app, QueryOptions& options);

/// Declares FILE..., which it returns, and the other options.
CLI::Option* declare_query_files(CLI::App& app, QueryOptions& options);

/// Files that are mapped and verified. All hold values of one root.
class QueryFiles {
public:
    /// Throws IoFailure for a file that can't be read, DamagedInput for one that is not safe to
    /// read or that holds a value of another root than the first.
    QueryFiles(QueryOptions const& options, Streams& streams);

    sml::tables::ResultSets const& sets() const { return *sets_; }

    /// Throws DamagedInput if values of this root hold no checks.
    void require_checks() const;

private:
    void                   add(std::string const& file, std::string const& name, Streams& streams);
    sml::inspect::Contents contents_of(std::string const& name, std::string_view bytes,
                                       sml::inspect::VerifyOptions const& options) const;

    QueryOptions const&                    options_;
    std::deque<MappedFile>                 files_;
    std::optional<sml::tables::ResultSets> sets_;  // once the root is known
};

}  // namespace bradep

#pragma once
// Result sets of one root, written as tables: what a database and a directory have in common.

#include <sml/inspect/type.hpp>
#include <sml/tables/result_sets.hpp>
#include "progress.hpp"
#include "signals.hpp"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace bradep {

/// Where result sets are exported to.
class Export {
public:
    virtual ~Export() = default;

    /// The root of the result sets that are there; null if there are none.
    virtual sml::inspect::Root const* root() const = 0;

    /// Adds the only result set of `sets`. Returns false if it is there already, whatever its name.
    /// Throws DamagedInput, such as if it is of another root, IoFailure, and Interrupted.
    virtual bool add(std::shared_ptr<sml::tables::ResultSets const> sets) = 0;

    /// Must be called once, after the last result set.
    virtual void finish() = 0;
};

/// Throws DamagedInput: the target has result sets of another root.
[[noreturn]] void refuse_other_root(std::string const& target, sml::inspect::Root const& there,
                                    sml::tables::ResultSets const& sets);

/// Shows on a terminal how much of a result set is exported. Its tables are read one by one.
class SetProgress {
public:
    SetProgress(std::ostream& err, sml::tables::ResultSet const& set, std::size_t tables)
        : size_(set.bytes.size()), progress_(err, set.name + ", exporting", size_ * tables) {}

    /// Must be called for each row of a table. Throws Interrupted.
    void at(std::uint64_t offset) {
        Interruption::check();
        if (auto* const done = progress_.done())
            done->store(passed_ + offset, std::memory_order_relaxed);
    }
    void next_table() { passed_ += size_; }

private:
    std::uint64_t size_;
    std::uint64_t passed_ = 0;
    Progress      progress_;
};

}  // namespace bradep

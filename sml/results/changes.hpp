#pragma once
// What differs in two findings that are the same.

#include <sml/results/diff_store.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sml::results {

/// Reads pairs of findings from the store again and compares them part by part. Lines and columns,
/// and what a message says of places, are no difference.
class Comparison {
public:
    /// Whether a file of the old side and one of the new side are the same, given by the names in
    /// `steps.file`.
    using SameFile = std::function<bool(std::string_view, std::string_view)>;

    explicit Comparison(tables::Connection& connection);

    std::vector<Change> changes(std::uint64_t older, std::uint64_t newer,
                                SameFile const& are_same_files);

private:
    struct Step {
        std::int64_t               flow, thread, position;
        std::string                file;
        std::optional<std::string> uri, message;
        std::string                clean;  // the message without places
    };

    using Texts = std::vector<std::optional<std::string>>;

    Texts             texts_of(std::uint64_t finding);
    std::vector<Step> steps_of(std::uint64_t finding);
    void add_payload(std::string const& older, std::string const& newer, std::vector<Change>& all);
    void add_steps(std::vector<Step> const& olds, std::vector<Step> const& news,
                   std::vector<Change>& all);
    void add_step(Step const* older, Step const* newer, std::vector<Change>& all) const;
    bool are_equal(Step const& older, Step const& newer) const;
    bool have_one_file(Step const& older, Step const& newer) const {
        return (*are_same_files_)(older.file, newer.file);
    }

    tables::Statement texts_;
    tables::Statement steps_;
    tables::Statement values_;
    SameFile const*   are_same_files_ = nullptr;  // of the present pair
};

}  // namespace sml::results

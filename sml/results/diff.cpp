#include <sml/results/diff.hpp>

#include <sml/results/changes.hpp>
#include <sml/results/joined_names.hpp>
#include <sml/results/record_counts.hpp>
#include <sml/results/steps.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace sml::results {

namespace {

/// A side while it is compared.
struct OpenSide : SideData {
    std::unique_ptr<tables::Database>            database;
    std::unordered_map<std::string, std::string> renamed;  // names of files: those of both sides
};

class Diff {
public:
    explicit Diff(DiffStore& store) : store_(store) { news_.side = Side::new_side; }

    void read(SideInput const& olds, SideInput const& news, std::atomic<bool> const& interrupted) {
        read_one(olds, olds_, interrupted);
        news_.first_id = olds_.findings.size();
        read_one(news, news_, interrupted);
        forget_texts_of_one_side(olds_, news_);
    }

    void join_names(std::vector<MovedRoot> const& roots) {
        names_.emplace(olds_, news_, roots_to_move(roots, olds_.paths.all(), news_.paths.all()));
        names_->apply(olds_);
        names_->apply(news_);
        add_steps(olds_);
        add_steps(news_);
    }

    DiffCounts match_and_compare() {
        for (auto const& [older, newer] : match(olds_, news_, names_->files()))
            note_renamed(older, newer);
        store_steps();
        DiffCounts counts;
        Comparison comparison(store_.connection());
        add_pairs(comparison, counts);
        return counts;
    }

private:
    void read_one(SideInput const& input, OpenSide& side, std::atomic<bool> const& interrupted) {
        side.database = std::make_unique<tables::Database>(*input.sets, interrupted);
        read_side(*input.sets, *side.database, input.flagged, side, store_);
        if (input.sources) read_sources(*input.sources, side);
    }

    template <class IsWanted, class Use>
    void for_each_step(OpenSide& side, IsWanted const& is_wanted, Use const& use) {
        std::string last_uri;
        std::string file = names_->name_of(side.side, "");
        results::for_each_step(
            *side.database,
            [&](std::int64_t set, std::int64_t row) { return side.index_of(set, row); }, is_wanted,
            [&](FlowStep const& step) {
                if (auto const uri = step.uri.value_or(""); uri != last_uri) {
                    last_uri = uri;
                    file = names_->name_of(side.side, path_of(uri));
                }
                use(step, file);
            });
    }

    // The file of a finding may have another name.
    void add_steps(OpenSide& side) {
        for_each_step(
            side, [](std::uint32_t) { return true; },
            [&](FlowStep const& step, std::string const& file) {
                Finding&   one = side.findings[step.finding];
                Hash const of_file = file == file_of(one) ? Hash{} : hash_of(file);
                one.flow += hash_of(step, of_file);
            });
    }

    // A renamed file has the smaller number on both sides.
    void note_renamed(std::uint32_t older, std::uint32_t newer) {
        auto const&        files = names_->files();
        std::string const& name = files[std::min(older, newer)];
        olds_.renamed[files[older]] = name;
        news_.renamed[files[newer]] = name;
    }

    // Of the findings that will be compared part by part.
    void store_steps() {
        auto const store = [&](OpenSide& side, OpenSide const& other) {
            auto const is_wanted = [&](std::uint32_t index) {
                Finding const& one = side.findings[index];
                return one.has_partner() && !one.has_content_of(other.findings[one.partner]);
            };
            for_each_step(side, is_wanted, [&](FlowStep const& step, std::string const& file) {
                auto const        found = side.renamed.find(file);
                std::string const name = found == side.renamed.end() ? file : found->second;
                store_.add_step({side.first_id + step.finding, step.flow, step.thread,
                                 step.position, name, step.uri, step.message});
            });
        };
        store(olds_, news_);
        store(news_, olds_);
    }

    std::vector<Change> changes_of(Comparison& comparison, std::uint32_t old_index,
                                   std::uint32_t new_index) const {
        Finding const& older = olds_.findings[old_index];
        Finding const& newer = news_.findings[new_index];
        if (older.has_content_of(newer)) return {};
        // A step that is in the file of its finding stays there when that moves.
        auto const are_same_files = [&](std::string_view one, std::string_view other) {
            return one == other || (one == file_of(older) && other == file_of(newer));
        };
        return comparison.changes(old_index, news_.first_id + new_index, are_same_files);
    }

    void add_pairs(Comparison& comparison, DiffCounts& counts) {
        for (std::uint32_t i = 0; i < news_.findings.size(); ++i) {
            Finding const& newer = news_.findings[i];
            auto const     id = news_.first_id + i;
            if (!newer.has_partner()) {
                ++counts.added;
                store_.add_pair("new", newer.stage, {}, id, {});
                continue;
            }
            auto const changes = changes_of(comparison, newer.partner, i);
            ++(changes.empty() ? counts.unchanged : counts.updated);
            store_.add_pair(changes.empty() ? "unchanged" : "updated", newer.stage, newer.partner,
                            id, changes);
        }
        for (std::uint32_t i = 0; i < olds_.findings.size(); ++i) {
            if (olds_.findings[i].has_partner()) continue;
            ++counts.absent;
            store_.add_pair("absent", olds_.findings[i].stage, i, {}, {});
        }
    }

    std::string const& file_of(Finding const& one) const { return names_->files()[one.file]; }

    DiffStore&                 store_;
    OpenSide                   olds_;
    OpenSide                   news_;
    std::optional<JoinedNames> names_;
};

}  // namespace

DiffCounts diff(SideInput const& olds, SideInput const& news, DiffOptions const& options,
                DiffStore& store, std::atomic<bool> const& is_interrupted) {
    for (auto const& count : count_records(*olds.sets, *news.sets))
        store.add_records(count.table, count.olds, count.news, count.both);
    Diff work(store);
    work.read(olds, news, is_interrupted);
    work.join_names(options.roots);
    DiffCounts const counts = work.match_and_compare();
    store.finish();
    return counts;
}

}  // namespace sml::results

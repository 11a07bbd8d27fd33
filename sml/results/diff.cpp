#include <sml/results/diff.hpp>

#include <sml/results/changes.hpp>
#include <sml/results/record_counts.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace sml::results {

namespace {

class Diff {
public:
    Diff(DiffStore& store) : store_(store) {
        olds_.side = Side::old_side;
        news_.side = Side::new_side;
    }

    void read(SideInput const& olds, SideInput const& news, std::atomic<bool> const& interrupted) {
        read_one(olds, olds_, interrupted);
        news_.first_id = olds_.findings.size();
        read_one(news, news_, interrupted);
        forget_texts_of_one_side();
    }

    void join_names(std::vector<MovedRoot> const& roots) {
        join_rules();
        join_files(roots);
        add_files_of_steps();
    }

    DiffCounts match_and_compare() {
        for (auto const& [older, newer] : match(olds_, news_, files_)) {
            std::ranges::replace(old_files_, older, std::min(older, newer));
            std::ranges::replace(new_files_, newer, std::min(older, newer));
        }
        DiffCounts counts;
        Comparison comparison(store_.connection());
        add_pairs(comparison, counts);
        return counts;
    }

private:
    void read_one(SideInput const& input, SideData& side, std::atomic<bool> const& interrupted) {
        tables::Database database(*input.sets, interrupted);
        read_side(*input.sets, database, input.flagged, side, store_);
        if (input.sources) read_sources(*input.sources, side);
    }

    // Texts that only one side has would make all findings differ.
    void forget_texts_of_one_side() {
        auto const has_text = [](SideData const& side) {
            return std::ranges::any_of(side.findings,
                                       [](Finding const& one) { return !one.text.is_none(); });
        };
        if (has_text(olds_) && has_text(news_)) return;
        for (SideData* const side : {&olds_, &news_})
            for (Finding& one : side->findings) one.text = one.surroundings = {};
    }

    // Rules of different tools differ, unless one side does not have the tool: it may have got
    // another name.
    void join_rules() {
        Names      joined;
        auto const is_in_both = [&](std::string const& tool) {
            auto const has = [&](SideData const& side) {
                return std::ranges::count(side.tools.all(), tool) > 0;
            };
            return has(olds_) && has(news_);
        };
        for (SideData* const side : {&olds_, &news_}) {
            std::vector<std::string> tools;
            for (std::string const& tool : side->tools.all())
                tools.push_back(is_in_both(tool) ? tool : std::string());
            std::vector<std::uint32_t> numbers;
            for (std::string const& rule : side->rules.all()) {
                auto const blank = rule.find(' ');
                numbers.push_back(joined.number_of(tools[std::stoul(rule.substr(0, blank))] + '\0' +
                                                   rule.substr(blank + 1)));
            }
            for (Finding& one : side->findings) one.rule = numbers[one.rule];
        }
    }

    // Files get numbers in the order of their names.
    void join_files(std::vector<MovedRoot> const& roots) {
        Files const files(olds_.paths.all(), news_.paths.all(), roots);
        std::vector<std::string> of_old;
        std::vector<std::string> of_new;
        for (auto const& path : olds_.paths.all()) of_old.push_back(files.of_old(path));
        for (auto const& path : news_.paths.all()) of_new.push_back(files.of_new(path));
        files_ = of_old;
        files_.insert(files_.end(), of_new.begin(), of_new.end());
        std::ranges::sort(files_);
        files_.erase(std::unique(files_.begin(), files_.end()), files_.end());
        auto const numbers = [&](std::vector<std::string> const& names) {
            std::vector<std::uint32_t> places;
            for (auto const& name : names)
                places.push_back(static_cast<std::uint32_t>(
                    std::ranges::lower_bound(files_, name) - files_.begin()));
            return places;
        };
        old_files_ = numbers(of_old);
        new_files_ = numbers(of_new);
        for (Finding& one : olds_.findings) one.file = old_files_[one.file];
        for (Finding& one : news_.findings) one.file = new_files_[one.file];
    }

    // The file of a step counts as content.
    void add_files_of_steps() {
        if (!olds_.has_steps && !news_.has_steps) return;
        std::vector<Hash> hashes;
        for (std::string const& file : files_) hashes.push_back(hash_of(file));
        tables::Statement steps(store_.connection().get(),
                                "SELECT finding, flow, thread, position, path FROM steps");
        while (steps.step()) {
            auto const number = [&](int column) {
                return static_cast<std::uint64_t>(steps.integer(column));
            };
            bool const is_new = number(0) >= news_.first_id;
            auto&      side = is_new ? news_ : olds_;
            auto const file = (is_new ? new_files_ : old_files_)[number(4)];
            side.findings[number(0) - side.first_id].content +=
                hash_of({Hash{number(1), number(2)}, Hash{number(3), 1}, hashes[file]});
        }
    }

    std::vector<Change> changes_of(Comparison& comparison, std::uint32_t old_index,
                                   std::uint32_t new_index) const {
        Finding const& older = olds_.findings[old_index];
        Finding const& newer = news_.findings[new_index];
        if (older.content == newer.content) return {};
        // A step that is in the file of its finding stays there when that moves.
        auto const are_same_files = [&](std::uint64_t one, std::uint64_t other) {
            bool const are_own = old_files_[one] == older.file && new_files_[other] == newer.file;
            return are_own || old_files_[one] == new_files_[other];
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

    DiffStore&                 store_;
    SideData                   olds_;
    SideData                   news_;
    std::vector<std::string>   files_;      // their names, sorted
    std::vector<std::uint32_t> old_files_;  // by number in `paths`: the number in `files_`
    std::vector<std::uint32_t> new_files_;
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

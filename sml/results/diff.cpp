#include <sml/results/diff.hpp>

#include <sml/results/changes.hpp>
#include <sml/results/message.hpp>
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
        forget_texts_of_one_side();
    }

    void join_names(std::vector<MovedRoot> const& roots) {
        join_rules();
        names_.emplace(olds_.paths.all(), news_.paths.all(), roots);
        join_files();
        add_steps(olds_);
        add_steps(news_);
    }

    DiffCounts match_and_compare() {
        for (auto const& [older, newer] : match(olds_, news_, files_)) note_renamed(older, newer);
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

    enum class Texts { none, of_regions, of_lines };

    // Regions of a line and whole lines can't be compared.
    static Texts texts_of(SideData const& side) {
        auto texts = Texts::none;
        for (Finding const& one : side.findings) {
            if (!one.surroundings.is_none()) return Texts::of_lines;
            if (!one.text.is_none()) texts = Texts::of_regions;
        }
        return texts;
    }

    // Texts that only one side has would make all findings differ.
    void forget_texts_of_one_side() {
        if (texts_of(olds_) == texts_of(news_)) return;
        for (OpenSide* const side : {&olds_, &news_})
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
        for (OpenSide* const side : {&olds_, &news_}) {
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
    void join_files() {
        auto const names_of = [&](OpenSide const& side) {
            std::vector<std::string> names;
            for (std::string const& path : side.paths.all()) names.push_back(name_of(side, path));
            return names;
        };
        auto const of_old = names_of(olds_);
        auto const of_new = names_of(news_);
        files_ = of_old;
        files_.insert(files_.end(), of_new.begin(), of_new.end());
        std::ranges::sort(files_);
        files_.erase(std::unique(files_.begin(), files_.end()), files_.end());
        auto const number = [&](OpenSide& side, std::vector<std::string> const& names) {
            std::vector<std::uint32_t> numbers;
            for (std::string const& name : names)
                numbers.push_back(static_cast<std::uint32_t>(
                    std::ranges::lower_bound(files_, name) - files_.begin()));
            for (Finding& one : side.findings) one.file = numbers[one.file];
        };
        number(olds_, of_old);
        number(news_, of_new);
    }

    std::string name_of(OpenSide const& side, std::string const& path) const {
        return side.side == Side::old_side ? names_->of_old(path) : names_->of_new(path);
    }

    template <class IsWanted, class Use>
    void for_each_step(OpenSide& side, IsWanted const& is_wanted, Use const& use) {
        std::string last_uri;
        std::string file = name_of(side, "");
        results::for_each_step(
            *side.database,
            [&](std::int64_t set, std::int64_t row) { return side.index_of(set, row); }, is_wanted,
            [&](FlowStep const& step) {
                if (auto const uri = step.uri.value_or(""); uri != last_uri) {
                    last_uri = uri;
                    file = name_of(side, path_of(uri));
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
                Hash const of_file = file == files_[one.file] ? Hash{} : hash_of(file);
                one.flow += hash_of({Hash{step.flow, step.thread}, Hash{step.position, 1}, of_file,
                                     hash_of(without_places(step.message.value_or("")))});
            });
    }

    // A renamed file has the smaller number on both sides.
    void note_renamed(std::uint32_t older, std::uint32_t newer) {
        std::string const& name = files_[std::min(older, newer)];
        olds_.renamed[files_[older]] = name;
        news_.renamed[files_[newer]] = name;
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
            return one == other || (one == files_[older.file] && other == files_[newer.file]);
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

    DiffStore&               store_;
    OpenSide                 olds_;
    OpenSide                 news_;
    std::optional<Files>     names_;
    std::vector<std::string> files_;  // their names, sorted
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

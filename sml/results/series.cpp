#include <sml/results/series.hpp>

#include <sml/results/joined_names.hpp>
#include <sml/results/steps.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::results {

namespace {

std::string_view last_part(std::string_view path) { return path.substr(path.rfind('/') + 1); }

/// The findings of the run, with what is kept of them beside their texts.
struct NewSide : SideData {
    NewSide() { side = Side::new_side; }

    // By index.
    std::vector<std::uint32_t>     file_of;  // the number in `paths`
    std::vector<Flagged>           code;
    std::vector<std::vector<Hash>> prints_of;
    std::vector<bool>              is_suppressed;
    std::vector<bool>              is_left_out;  // absent
};

class Adding {
public:
    Adding(SeriesStore& store, std::atomic<bool> const& is_interrupted)
        : store_(store), is_interrupted_(is_interrupted), texts_("") {}

    void read(SideInput const& input) {
        tables::Database database(*input.sets, is_interrupted_);
        read_side(*input.sets, database, input.flagged, news_, texts_);
        if (input.sources) read_sources(*input.sources, news_);
        add_flows(database);
        keep();
        read_states();
    }

    void match_all(std::vector<MovedRoot> const& roots) {
        store_.load_open(olds_);
        open_ = olds_.findings.size();
        if (open_ > 0) forget_texts_of_one_side(olds_, news_);
        JoinedNames names(olds_, news_, roots);
        names.apply(olds_);
        names.apply(news_);
        // No finding of the series has this rule.
        for (std::size_t i = 0; i < news_.findings.size(); ++i)
            if (news_.is_left_out[i]) news_.findings[i].rule = Finding::none;
        match_with_olds(names);
        if (add_gone(names)) match_with_olds(names);
        bool const has_moved = !names.paths().roots().empty() || !roots.empty();
        if (has_moved || !renamed_.empty()) rename_files(names);
    }

    RunCounts save(Run const& run) {
        std::int64_t const number = store_.last_run() + 1;
        save_olds(number);
        save_news(number);
        store_.add_run(number, run.name, run.digest, counts_);
        return counts_;
    }

private:
    // As the files of steps are named here, hashes do not depend on the other side.
    void add_flows(tables::Database& database) {
        for_each_step(
            database, [&](std::int64_t set, std::int64_t row) { return news_.index_of(set, row); },
            [](std::uint32_t) { return true; },
            [&](FlowStep const& step) {
                Finding&          one = news_.findings[step.finding];
                std::string const path = path_of(step.uri.value_or(""));
                bool const        is_own = path == news_.paths.all()[one.file];
                one.flow += hash_of(step, is_own ? Hash{} : hash_of(last_part(path)));
            });
    }

    void keep() {
        news_.prints_of.resize(news_.findings.size());
        for (Finding const& one : news_.findings) {
            news_.file_of.push_back(one.file);
            news_.code.push_back({one.text, one.surroundings});
        }
        for (Fingerprint const& print : news_.fingerprints)
            news_.prints_of[print.finding].push_back(print.value);
        for (auto& prints : news_.prints_of) std::ranges::sort(prints);
    }

    void read_states() {
        news_.is_suppressed.resize(news_.findings.size());
        news_.is_left_out.resize(news_.findings.size());
        tables::Statement states(texts_.connection().get(),
                                 "SELECT id, suppressed, baseline_state IS 'absent' FROM findings");
        while (states.step()) {
            auto const index = static_cast<std::size_t>(states.integer(0));
            news_.is_suppressed[index] = states.integer(1) != 0;
            news_.is_left_out[index] = states.integer(2) != 0;
        }
    }

    bool is_new(std::size_t index) const {
        return !news_.is_left_out[index] && !news_.findings[index].has_partner();
    }

    void match_with_olds(JoinedNames const& names) {
        for (auto const& [older, newer] : match(olds_, news_, names.files()))
            renamed_[older] = renamed_[newer] = std::min(older, newer);
    }

    // Adds the findings that are gone and may have come back to the old ones, which keep their
    // partners. Only those whose rule a new finding has are read. Returns whether there are any.
    bool add_gone(JoinedNames& names) {
        StoredSide gone;
        for (std::string const& rule : new_rules()) store_.load_gone(rule, gone);
        if (gone.findings.empty()) return false;
        forget_other_texts(gone, texts_of(news_));
        names.apply(gone);
        auto const first = static_cast<std::uint32_t>(olds_.findings.size());
        for (Finding& one : gone.findings) {
            if (auto const now = renamed_.find(one.file); now != renamed_.end())
                one.file = now->second;
            one.ordinal += first;
        }
        for (Fingerprint& print : gone.fingerprints) print.finding += first;
        append(olds_.findings, gone.findings);
        append(olds_.fingerprints, gone.fingerprints);
        append(olds_.ids, gone.ids);
        append(olds_.is_suppressed, gone.is_suppressed);
        return true;
    }

    template <class Values>
    static void append(Values& all, Values const& more) {
        all.insert(all.end(), more.begin(), more.end());
    }

    // In the order of their names.
    std::set<std::string> new_rules() {
        std::set<std::string> rules;
        tables::Statement     rule_of(texts_.connection().get(),
                                      "SELECT rule FROM findings WHERE id = ?");
        for (std::size_t i = 0; i < news_.findings.size(); ++i) {
            if (!is_new(i)) continue;
            rule_of.bind(1, static_cast<std::int64_t>(i));
            rule_of.step();
            rules.emplace(rule_of.text(0));
            rule_of.reset();
        }
        return rules;
    }

    // Findings that are gone stay in their files when these get other names.
    void rename_files(JoinedNames const& names) {
        auto const renamed = [&](std::uint32_t file) {
            auto const found = renamed_.find(file);
            return found == renamed_.end() ? file : found->second;
        };
        std::unordered_map<std::uint32_t, std::string> paths;  // on the new side
        std::unordered_map<std::string, std::uint32_t> numbers;
        for (std::size_t i = 0; i < names.files().size(); ++i)
            numbers.emplace(names.files()[i], renamed(static_cast<std::uint32_t>(i)));
        for (std::string const& path : news_.paths.all())
            paths.emplace(numbers.at(names.name_of(Side::new_side, path)), path);
        store_.rename_files([&](std::string const& path) {
            auto const number = numbers.find(names.name_of(Side::old_side, path));
            if (number != numbers.end())
                if (auto const now = paths.find(number->second); now != paths.end())
                    return now->second;
            return names.paths().moved(path);
        });
    }

    void save_olds(std::int64_t run) {
        for (std::size_t i = 0; i < olds_.findings.size(); ++i) {
            bool const was_open = i < open_;
            bool const is_open = olds_.findings[i].has_partner();
            if (was_open && !is_open) {
                store_.note_gone(olds_.ids[i], run);
                if (!olds_.is_suppressed[i]) ++counts_.fixed;
            }
            if (!was_open && is_open) store_.note_back(olds_.ids[i], run);
        }
    }

    // Identities are given in the order of the places.
    void save_news(std::int64_t run) {
        std::vector<std::uint32_t> order(news_.findings.size());
        std::iota(order.begin(), order.end(), 0);
        std::ranges::sort(order, [&](std::uint32_t a, std::uint32_t b) {
            return news_.findings[a].rank() < news_.findings[b].rank();
        });
        tables::Statement columns(
            texts_.connection().get(),
            "SELECT " + SeriesStore::columns_sql() + " FROM findings WHERE id = ?");
        for (std::uint32_t const index : order) {
            if (news_.is_left_out[index]) continue;
            columns.bind(1, std::int64_t{index});
            columns.step();
            save_new(run, index, columns.get());
            columns.reset();
        }
    }

    void save_new(std::int64_t run, std::uint32_t index, sqlite3_stmt* columns) {
        Finding const& one = news_.findings[index];
        Sighting const sighting{one, news_.code[index], news_.prints_of[index],
                                news_.paths.all()[news_.file_of[index]], columns};
        bool const     is_returned = one.has_partner() && one.partner >= open_;
        if (one.has_partner())
            store_.see(olds_.ids[one.partner], sighting);
        else
            store_.add(run, sighting);
        if (news_.is_suppressed[index]) {
            ++counts_.suppressed;
            return;
        }
        ++counts_.open;
        if (!one.has_partner()) ++counts_.added;
        if (is_returned) ++counts_.returned;
    }

    SeriesStore&             store_;
    std::atomic<bool> const& is_interrupted_;
    DiffStore                texts_;  // of the run
    StoredSide               olds_;   // the open ones first
    std::size_t              open_ = 0;
    NewSide                  news_;
    RunCounts                counts_;
    // The numbers of files that have another name, and the number that both names have.
    std::unordered_map<std::uint32_t, std::uint32_t> renamed_;
};

}  // namespace

RunCounts add_run(Run const& run, DiffOptions const& options, SeriesStore& store,
                  std::atomic<bool> const& is_interrupted) {
    Adding adding(store, is_interrupted);
    adding.read(run.side);
    adding.match_all(options.roots);
    return adding.save(run);
}

}  // namespace sml::results

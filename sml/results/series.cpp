#include <sml/results/series.hpp>

#include <sml/results/joined_names.hpp>
#include <sml/results/paths.hpp>
#include <sml/results/steps.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::results {

namespace {

/// The findings of the run, with what is kept of them beside their texts.
struct NewSide : SideData {
    NewSide() { side = Side::new_side; }

    // By index.
    std::vector<std::uint32_t>     file_of;  // the number in `paths`
    std::vector<std::uint32_t>     rule_of;  // the number in `rules`
    std::vector<Flagged>           code;
    std::vector<std::vector<Hash>> prints_of;
    std::vector<bool>              is_suppressed;
    std::vector<std::int64_t>      ids;  // in the texts
};

class Adding {
    using Numbers = std::vector<std::uint32_t>;

public:
    Adding(SeriesStore& store, std::atomic<bool> const& is_interrupted)
        : store_(store), is_interrupted_(is_interrupted), texts_("") {}

    void read(SideInput const& input) {
        tables::Database database(*input.sets, is_interrupted_);
        read_side(*input.sets, database, input.flagged, news_, texts_);
        if (input.sources) read_sources(*input.sources, news_);
        add_flows(database);
        read_states();
        keep();
    }

    // What is equal comes first, also with findings that are gone.
    void match_all(std::vector<MovedRoot> const& given) {
        // A root that had moved before moves nothing, also if all findings below it are gone.
        auto const roots =
            given.empty() ? given : roots_to_move(given, store_.paths(), news_.paths.all());
        store_.load_open(olds_);
        if (!olds_.findings.empty()) forget_texts_of_one_side(olds_, news_);
        JoinedNames names(olds_, news_, roots);
        series_tools_ = store_.tools();
        other_olds_ = names.rules_of(olds_, series_tools_);
        other_news_ = names.rules_of(news_, series_tools_);
        names.apply(olds_);
        names.apply(news_);
        match_open(names, Stages::equal);
        load_gone(names);
        match_with_gone(names, Stages::equal);
        match_open(names, Stages::all);
        load_gone(names);
        move_functions();
        match_with_gone(names, Stages::all);
        bool const have_moved = !names.paths().roots().empty() || !roots.empty();
        if (have_moved || !renamed_.empty()) rename_files(names);
    }

    RunCounts save(Run const& run) {
        std::int64_t const number = store_.last_run() + 1;
        store_.add_tools(news_.tools.all());
        save_olds(number);
        // Also for findings that are gone as of this run.
        for (auto const& [id, path] : moved_) store_.move_function(id, path);
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
                one.flow += hash_of(step, is_own ? Hash{} : hash_of(name_in(path)));
            });
    }

    void keep() {
        news_.prints_of.resize(news_.findings.size());
        for (Finding const& one : news_.findings) {
            news_.file_of.push_back(one.file);
            news_.rule_of.push_back(one.rule);
            news_.code.push_back({one.text, one.surroundings});
        }
        for (Fingerprint const& print : news_.fingerprints)
            news_.prints_of[print.finding].push_back(print.value);
        for (auto& prints : news_.prints_of) std::ranges::sort(prints);
    }

    // What a log says is absent is not there. The texts have the indices as ids.
    void read_states() {
        std::vector<bool> is_absent;
        tables::Statement states(texts_.connection().get(),
                                 "SELECT id, suppressed, baseline_state IS 'absent' FROM findings"
                                 " ORDER BY id");
        while (states.step()) {
            is_absent.push_back(states.integer(2) != 0);
            if (is_absent.back()) continue;
            news_.ids.push_back(states.integer(0));
            news_.is_suppressed.push_back(states.integer(1) != 0);
        }
        if (news_.ids.size() < is_absent.size()) erase_findings(news_, is_absent);
    }

    bool is_new(std::size_t index) const { return !news_.findings[index].has_partner(); }

    void match_open(JoinedNames const& names, Stages stages) {
        for (auto const& [older, newer] : match(olds_, news_, names.files(), stages))
            renamed_[older] = renamed_[newer] = std::min(older, newer);
        for (Finding& one : gone_.findings) one.file = number_now(one.file);
    }

    // As if the findings that are gone were open.
    void match_with_gone(JoinedNames const& names, Stages stages) {
        if (gone_.findings.empty()) return;
        exchange_rules();
        auto const open = static_cast<std::ptrdiff_t>(olds_.findings.size());
        auto const prints = olds_.fingerprints.size();
        append(olds_.findings, gone_.findings);
        append(olds_.fingerprints, gone_.fingerprints);
        match_open(names, stages);
        gone_.findings.assign(olds_.findings.begin() + open, olds_.findings.end());
        olds_.findings.resize(static_cast<std::size_t>(open));
        olds_.fingerprints.resize(prints);
        exchange_rules();
    }

    // A tool may have got another name if no open finding is of the new one. A finding that is gone
    // can only be of the new one if no run ever had it.
    void exchange_rules() {
        for (auto const& [side, rules] :
             {std::pair<SideData&, Numbers&>(olds_, other_olds_), {news_, other_news_}})
            for (std::size_t i = 0; i < rules.size(); ++i)
                std::swap(side.findings[i].rule, rules[i]);
    }

    template <class Values>
    static void append(Values& all, Values const& more) {
        all.insert(all.end(), more.begin(), more.end());
    }

    // Those that a stage could match with a new finding, as far as files have been joined by now.
    // Their indices follow those of the open ones.
    void load_gone(JoinedNames& names) {
        if (!store_.has_gone()) return;
        auto ids = gone_ids(names);
        std::erase_if(ids, [&](std::int64_t id) { return !loaded_.insert(id).second; });
        StoredSide more;
        store_.load(ids, more);
        forget_other_texts(more, texts_of(news_));
        auto const rules = names.rules_of(more, series_tools_);
        names.apply(more);
        for (std::size_t i = 0; i < rules.size(); ++i) more.findings[i].rule = rules[i];
        auto const first =
            static_cast<std::uint32_t>(olds_.findings.size() + gone_.findings.size());
        for (Finding& one : more.findings) {
            one.file = number_now(one.file);
            one.ordinal += first;
        }
        for (Fingerprint& print : more.fingerprints) print.finding += first;
        append(gone_.findings, more.findings);
        append(gone_.fingerprints, more.fingerprints);
        append(gone_.ids, more.ids);
    }

    /// New findings of one file: where those that are gone may have been.
    struct Nearby {
        std::set<std::string>      paths;
        std::set<std::string_view> rules;
    };

    // In the file, in the function, or in a file that had an equal one: it may have another name.
    // A file is read with all rules, so that it can be judged whether it has.
    std::set<std::int64_t> gone_ids(JoinedNames const& names) {
        std::set<std::int64_t>          ids;
        std::map<std::uint32_t, Nearby> files;
        std::set<Hash>                  traces;
        tables::Statement               function_of(texts_.connection().get(),
                                                    "SELECT function FROM findings WHERE id = ?");
        for (std::uint32_t i = 0; i < news_.findings.size(); ++i) {
            if (!is_new(i)) continue;
            Nearby& nearby = files[news_.findings[i].file];
            nearby.rules.insert(rule_id(i));
            if (auto const trace = trace_of(i); traces.insert(trace).second)
                for (std::string& path : store_.gone_files(trace))
                    nearby.paths.insert(std::move(path));
            function_of.bind(1, news_.ids[i]);
            if (function_of.step() && !function_of.text(0).empty())
                store_.add_gone_in_function(function_of.text(0), rule_id(i), ids);
            function_of.reset();
        }
        add_paths(names, files);
        for (auto const& [file, nearby] : files)
            for (std::string const& path : nearby.paths)
                for (std::string_view const rule : nearby.rules)
                    store_.add_gone_in_file(path, rule, ids);
        return ids;
    }

    // Those that the files have in the series.
    void add_paths(JoinedNames const& names, std::map<std::uint32_t, Nearby>& files) const {
        auto const add = [&](std::uint32_t file, Nearby& nearby) {
            for (std::string& path : names.paths().olds_named(names.files()[file]))
                nearby.paths.insert(std::move(path));
        };
        for (auto& [file, nearby] : files) add(file, nearby);
        for (auto const& [before, now] : renamed_)
            if (auto const found = files.find(now); found != files.end())
                add(before, found->second);
    }

    std::string_view rule_id(std::size_t index) const {
        return news_.id_of_rule(news_.rule_of[index]);
    }

    // Findings with one trace can be the same in files with different names.
    Hash trace_of(std::size_t index) const {
        Finding const& one = news_.findings[index];
        return hash_of(
            {hash_of(rule_id(index)), one.message, one.function, news_.code[index].text});
    }

    // Where a function has moved to another file, its findings that are gone have, too.
    void move_functions() {
        using Place = std::pair<Hash, std::uint32_t>;
        std::map<Place, std::uint32_t> files;
        for (std::size_t i = 0; i < olds_.findings.size(); ++i) {
            Finding const& older = olds_.findings[i];
            if (!older.has_partner() || older.function.is_none()) continue;
            Finding const& newer = news_.findings[older.partner];
            if (newer.file == older.file || newer.function != older.function) continue;
            bool const is_first =
                files.emplace(Place(older.function, older.file), newer.file).second;
            if (is_first) moved_.emplace_back(olds_.ids[i], path_of_new(older.partner));
        }
        for (Finding& one : gone_.findings)
            if (auto const moved = files.find({one.function, one.file}); moved != files.end())
                one.file = moved->second;
    }

    std::string const& path_of_new(std::uint32_t index) const {
        return news_.paths.all()[news_.file_of[index]];
    }

    // Gives the files of the series the paths of the new side.
    void rename_files(JoinedNames const& names) {
        std::unordered_map<std::string, std::uint32_t> numbers;
        for (std::size_t i = 0; i < names.files().size(); ++i)
            numbers.emplace(names.files()[i], number_now(static_cast<std::uint32_t>(i)));
        std::unordered_map<std::uint32_t, std::string> paths;
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

    std::uint32_t number_now(std::uint32_t file) const {
        auto const found = renamed_.find(file);
        return found == renamed_.end() ? file : found->second;
    }

    void save_olds(std::int64_t run) {
        for (std::size_t i = 0; i < olds_.findings.size(); ++i) {
            if (olds_.findings[i].has_partner()) continue;
            store_.note_gone(olds_.ids[i], run);
            if (!olds_.is_suppressed[i]) ++counts_.fixed;
        }
        for (std::size_t i = 0; i < gone_.findings.size(); ++i)
            if (gone_.findings[i].has_partner()) store_.note_back(gone_.ids[i], run);
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
            columns.bind(1, news_.ids[index]);
            columns.step();
            save_new(run, index, columns.get());
            columns.reset();
        }
    }

    void save_new(std::int64_t run, std::uint32_t index, sqlite3_stmt* columns) {
        Finding const& one = news_.findings[index];
        Sighting const sighting{
            one,    news_.code[index], news_.prints_of[index], trace_of(index), path_of_new(index),
            columns};
        if (one.has_partner())
            store_.see(id_of(one.partner), sighting);
        else
            store_.add(run, sighting);
        if (news_.is_suppressed[index]) {
            ++counts_.suppressed;
            return;
        }
        ++counts_.open;
        if (!one.has_partner()) ++counts_.added;
        if (one.has_partner() && one.partner >= olds_.ids.size()) ++counts_.returned;
    }

    std::int64_t id_of(std::uint32_t partner) const {
        bool const is_open = partner < olds_.ids.size();
        return is_open ? olds_.ids[partner] : gone_.ids[partner - olds_.ids.size()];
    }

    SeriesStore&             store_;
    std::atomic<bool> const& is_interrupted_;
    DiffStore                texts_;         // of the run
    StoredSide               olds_;          // the open findings
    std::vector<std::string> series_tools_;  // of all runs
    Numbers                  other_olds_;    // the rules with which gone ones are compared
    Numbers                  other_news_;
    StoredSide               gone_;    // those that may have come back; without names
    std::set<std::int64_t>   loaded_;  // their ids
    NewSide                  news_;
    RunCounts                counts_;
    // The numbers of files that have another name, and the number that both names have.
    std::unordered_map<std::uint32_t, std::uint32_t> renamed_;
    // Open findings whose functions have moved to files with these paths.
    std::vector<std::pair<std::int64_t, std::string>> moved_;
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

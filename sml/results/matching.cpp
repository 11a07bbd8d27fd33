#include <sml/results/matching.hpp>

#include <sml/results/alignment.hpp>
#include <sml/results/groups.hpp>
#include <sml/results/line_map.hpp>

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>
#include <unordered_map>

namespace sml::results {

namespace {

using Key = Hash (*)(Finding const&);

Hash rule_of(Finding const& one) { return {one.rule, 1}; }
Hash place_of(Finding const& one) { return {one.rule, std::uint64_t{one.file} + 1}; }

// A key, and that all is equal that is compared in a pair.
template <Key key>
Hash with_content(Finding const& one) {
    Hash const own = key(one);
    return own.is_none() ? own : hash_of({own, one.flow, one.content});
}

// A key, and that the flows are equal.
template <Key key>
Hash with_flow(Finding const& one) {
    Hash const own = key(one);
    return own.is_none() ? own : hash_of({own, one.flow});
}

// What is equal in pairs of a stage. None where something that the stage needs is not known.

Hash by_surroundings_in_function(Finding const& one) {
    if (one.text.is_none() || one.surroundings.is_none()) return {};
    return hash_of({place_of(one), one.message, one.function, one.text, one.surroundings});
}
Hash by_surroundings(Finding const& one) {
    if (one.text.is_none() || one.surroundings.is_none()) return {};
    return hash_of({place_of(one), one.message, one.text, one.surroundings});
}
Hash by_text(Finding const& one) {
    if (one.text.is_none()) return {};
    return hash_of({place_of(one), one.message, one.function, one.text});
}
Hash by_function(Finding const& one) {
    if (!one.text.is_none()) return {};
    return hash_of({place_of(one), one.message, one.function});
}
Hash by_message(Finding const& one) { return hash_of({place_of(one), one.message}); }
Hash by_loose_message_and_text(Finding const& one) {
    if (one.text.is_none()) return {};
    return hash_of({place_of(one), one.loose, one.function, one.text});
}
Hash by_loose_message(Finding const& one) { return hash_of({place_of(one), one.loose}); }
Hash by_text_alone(Finding const& one) {
    if (one.text.is_none()) return {};
    return hash_of({place_of(one), one.function, one.text});
}
Hash by_rule_and_file(Finding const& one) { return place_of(one); }
Hash by_moved_function(Finding const& one) {
    if (one.function.is_none()) return {};
    return hash_of({rule_of(one), one.message, one.function, one.text});
}
Hash by_moved_text(Finding const& one) {
    if (one.function.is_none() || one.text.is_none()) return {};
    return hash_of({rule_of(one), one.function, one.text});
}
Hash by_moved_surroundings(Finding const& one) {
    if (one.text.is_none() || one.surroundings.is_none()) return {};
    return hash_of({rule_of(one), one.message, one.text, one.surroundings});
}

bool are_known_to_differ(Hash const& a, Hash const& b) {
    return !a.is_none() && !b.is_none() && a != b;
}
bool have_other_texts(Finding const& older, Finding const& newer) {
    return are_known_to_differ(older.text, newer.text);
}
bool have_other_functions(Finding const& older, Finding const& newer) {
    return are_known_to_differ(older.function, newer.function);
}

/// The file of each function; `several` if there are more.
class Homes {
public:
    explicit Homes(std::span<Finding const> findings) {
        for (Finding const& one : findings) {
            if (one.function.is_none()) continue;
            auto const [home, is_new] = files_.try_emplace(one.function, one.file);
            if (!is_new && home->second != one.file) home->second = several;
        }
    }

    bool is_only_home(Finding const& one) const {
        auto const found = files_.find(one.function);
        return found != files_.end() && found->second == one.file;
    }

private:
    static constexpr std::uint32_t several = Finding::none;

    struct LowHalf {
        std::size_t operator()(Hash const& hash) const { return hash.low; }
    };
    std::unordered_map<Hash, std::uint32_t, LowHalf> files_;
};

class Matching {
public:
    Matching(Matched& olds, Matched& news) : olds_(olds), news_(news) {}

    std::vector<RenamedFile> run(std::vector<std::string> const& files, Stages stages) {
        match_fingerprints();
        auto const renamed = join_renamed_files(olds_.findings, news_.findings, files);
        match_fingerprints();
        match_equal();
        if (stages == Stages::equal) return renamed;
        match_in_place(Stage::place, by_message, may_be_at_place);
        match_changed();
        match_moved();
        return renamed;
    }

private:
    Finding& old_at(std::uint32_t index) { return olds_.findings[index]; }
    Finding& new_at(std::uint32_t index) { return news_.findings[index]; }

    void pair(std::uint32_t older, std::uint32_t newer, Stage stage) {
        old_at(older).partner = newer;
        new_at(newer).partner = older;
        old_at(older).stage = new_at(newer).stage = stage;
    }

    // Rule and message are equal, and what is known of the code.
    void match_equal() {
        match_counted_by_content<by_surroundings_in_function>(Stage::surroundings);
        match_counted_by_content<by_text>(Stage::text);
        match_counted_by_content<by_function>(Stage::function);
        match_some(Stage::text, with_content<by_text>);
        match_some(Stage::text, by_text);
        match_some(Stage::function, with_content<by_function>);
        match_some(Stage::function, by_function);
        match_counted(Stage::surroundings, by_surroundings);
    }

    void match_changed() {
        match_counted(Stage::message, by_loose_message_and_text);
        match_some(Stage::message, by_loose_message_and_text);
        match_in_place(Stage::message, by_loose_message, may_have_other_number);
        match_in_place(Stage::message, by_text_alone, may_be_anywhere);
        match_single(Stage::message, by_text_alone, [](auto const&, auto const&) { return true; });
        match_in_place(Stage::message, by_rule_and_file, may_have_other_message);
    }

    void match_moved() {
        if (!has_left(olds_.findings) || !has_left(news_.findings)) return;
        Homes const old_homes(olds_.findings);
        Homes const new_homes(news_.findings);
        auto const  have_one_home = [&](std::span<Finding const> findings, Homes const& homes,
                                       std::span<std::uint32_t const> indices) {
            return std::ranges::all_of(
                 indices, [&](std::uint32_t index) { return homes.is_only_home(findings[index]); });
        };
        LineMap const lines(olds_.findings, news_.findings);
        for (Key const key : {with_content<by_moved_function>, by_moved_function,
                              with_content<by_moved_text>, by_moved_text})
            for_each(key, [&](Group const& group) {
                if (have_one_home(olds_.findings, old_homes, group.olds) &&
                    have_one_home(news_.findings, new_homes, group.news))
                    pair_some(group, Stage::moved, lines);
            });
        match_single(Stage::moved, by_moved_surroundings, [](auto const& older, auto const& newer) {
            return !have_other_functions(older, newer);
        });
    }

    static bool has_left(std::span<Finding const> findings) {
        return std::ranges::any_of(findings, [](Finding const& one) { return !one.has_partner(); });
    }

    template <class KeyOf, class Use>
    void for_each(KeyOf const& key_of, Use const& use) {
        for_each_group(std::span<Finding const>(olds_.findings),
                       std::span<Finding const>(news_.findings), key_of, use);
    }

    // As many on both sides: in their order.
    void match_counted(Stage stage, Key key) {
        for_each(key, [&](Group const& group) { pair_counted(group, stage); });
    }
    void pair_counted(Group const& group, Stage stage) {
        if (group.olds.size() != group.news.size()) return;
        for (std::size_t i = 0; i < group.olds.size(); ++i)
            pair(group.olds[i], group.news[i], stage);
    }

    template <Key key>
    void match_counted_by_content(Stage stage) {
        for (Key const one : {Key(with_content<key>), Key(with_flow<key>), key})
            match_counted(stage, one);
    }

    // Not as many: those that have moved as the findings around them; of these, such with one flow.
    void match_some(Stage stage, Key key) {
        if (!has_left(olds_.findings) || !has_left(news_.findings)) return;
        LineMap const lines(olds_.findings, news_.findings);
        for_each(key, [&](Group const& group) { pair_some(group, stage, lines); });
    }
    void pair_some(Group const& group, Stage stage, LineMap const& lines) {
        bool const fewer_olds = group.olds.size() < group.news.size();
        auto const fewer = fewer_olds ? group.olds : group.news;
        auto const more = fewer_olds ? group.news : group.olds;
        auto const cost = [&](std::size_t i, std::size_t k) {
            Finding const& older = old_at(fewer_olds ? fewer[i] : more[k]);
            Finding const& newer = new_at(fewer_olds ? more[k] : fewer[i]);
            return 2 * lines.distance(older, newer) + (older.flow == newer.flow ? 0 : 1);
        };
        for (auto const& [i, k] : cheapest_pairs(fewer.size(), more.size(), cost))
            pair(fewer_olds ? fewer[i] : more[k], fewer_olds ? more[k] : fewer[i], stage);
    }

    template <class May>
    void match_single(Stage stage, Key key, May const& may) {
        for_each(key, [&](Group const& group) {
            bool const is_single = group.olds.size() == 1 && group.news.size() == 1;
            if (is_single && may(old_at(group.olds[0]), new_at(group.news[0])))
                pair(group.olds[0], group.news[0], stage);
        });
    }

    // Those that are where they must be by the findings around them.
    template <class May>
    void match_in_place(Stage stage, Key key, May const& may) {
        if (!has_left(olds_.findings) || !has_left(news_.findings)) return;
        LineMap const lines(olds_.findings, news_.findings);
        for_each(key, [&](Group const& group) {
            for (std::size_t i = 0, k = 0; i < group.olds.size() && k < group.news.size();) {
                Finding const& older = old_at(group.olds[i]);
                Finding const& newer = new_at(group.news[k]);
                auto const     order = place_order(older, newer, lines);
                if (order == 0 && may(older, newer, lines.shift(older, newer)))
                    pair(group.olds[i], group.news[k], stage);
                bool const old_is_first = order < 0 || (order == 0 && has_less_code(older, newer));
                bool const new_is_first = order > 0 || (order == 0 && has_less_code(newer, older));
                if (!new_is_first || older.has_partner()) ++i;
                if (!old_is_first || newer.has_partner()) ++k;
            }
        });
    }

    // 0 if both are at one place, -1 if the old one is before the new one, 1 if it is behind.
    static int place_order(Finding const& older, Finding const& newer, LineMap const& lines) {
        if (lines.distance(older, newer) == 0) return 0;
        if (older.line <= 0 || newer.line <= 0) return older.line <= 0 ? -1 : 1;
        auto const moved = std::int64_t{newer.line} - older.line;
        return moved > lines.shift(older, newer).most ? -1 : 1;
    }

    // An order that does not depend on the side.
    static bool has_less_code(Finding const& one, Finding const& other) {
        auto const code = [](Finding const& of) {
            return std::tie(of.text, of.function, of.message, of.column, of.flow, of.content);
        };
        return code(one) < code(other);
    }

    using Shift = LineMap::Shift;

    static bool may_be_anywhere(Finding const&, Finding const&, Shift const&) { return true; }

    static bool may_be_at_place(Finding const& older, Finding const& newer, Shift const& shift) {
        bool const differ = have_other_texts(older, newer) || have_other_functions(older, newer);
        return !differ || shift.is_sure();
    }

    static bool may_have_other_number(Finding const& older, Finding const& newer,
                                      Shift const& shift) {
        if (have_other_texts(older, newer)) return false;
        return !have_other_functions(older, newer) || shift.is_sure();
    }

    static bool may_have_other_message(Finding const& older, Finding const& newer,
                                       Shift const& shift) {
        if (have_other_texts(older, newer) || have_other_functions(older, newer)) return false;
        bool const have_lines = older.line > 0 && newer.line > 0;
        bool const is_exact = have_lines && shift.is_exactly(std::int64_t{newer.line} - older.line);
        return shift.is_sure() || (is_exact && older.column == newer.column);
    }

    void match_fingerprints();

    Matched& olds_;
    Matched& news_;
};

/// A fingerprint of a rule.
struct OwnPrint {
    Hash          value;
    std::uint32_t finding;

    auto operator<=>(OwnPrint const&) const = default;
};

// Those that one finding alone has, in the order of their values.
std::vector<OwnPrint> own_prints(Matched const& side) {
    std::vector<OwnPrint> prints;
    prints.reserve(side.fingerprints.size());
    for (Fingerprint const& one : side.fingerprints) {
        Hash const rule{side.findings[one.finding].rule, 1};
        prints.push_back({hash_of({rule, one.value}), one.finding});
    }
    std::ranges::sort(prints);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < prints.size();) {
        std::size_t end = i + 1;
        while (end < prints.size() && prints[end].value == prints[i].value) ++end;
        if (end == i + 1) prints[kept++] = prints[i];
        i = end;
    }
    prints.resize(kept);
    return prints;
}

// Findings with one message first: some fingerprints are numbers that others had before.
void Matching::match_fingerprints() {
    if (olds_.fingerprints.empty() || news_.fingerprints.empty()) return;
    auto const olds = own_prints(olds_);
    auto const news = own_prints(news_);
    auto const match_if = [&](auto const& may) {
        for (auto older = olds.begin(), newer = news.begin();
             older != olds.end() && newer != news.end();) {
            if (older->value != newer->value) {
                older->value < newer->value ? ++older : ++newer;
                continue;
            }
            Finding const& one = old_at(older->finding);
            Finding const& other = new_at(newer->finding);
            if (!one.has_partner() && !other.has_partner() && may(one, other))
                pair(older->finding, newer->finding, Stage::fingerprint);
            ++older;
            ++newer;
        }
    };
    match_if([](Finding const& one, Finding const& other) { return one.message == other.message; });
    match_if([](Finding const& one, Finding const& other) { return one.file == other.file; });
}

}  // namespace

std::vector<RenamedFile> match(Matched& olds, Matched& news, std::vector<std::string> const& files,
                               Stages stages) {
    return Matching(olds, news).run(files, stages);
}

}  // namespace sml::results

#include <sml/results/renamed_files.hpp>

#include <sml/results/groups.hpp>
#include <sml/results/paths.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

namespace sml::results {

namespace {

/// How alike an old and a new file are.
struct Likeness {
    std::size_t findings = 0;       // that are in both
    std::size_t of_known_code = 0;  // of these, such that more than rule and message are known
    std::size_t kinds = 0;          // of these, different ones
};

/// How many findings each file has.
std::vector<std::size_t> counts(std::span<Finding const> findings, std::size_t files) {
    std::vector<std::size_t> counts(files);
    for (Finding const& one : findings) ++counts[one.file];
    return counts;
}

class Renaming {
public:
    Renaming(std::span<Finding> olds, std::span<Finding> news,
             std::vector<std::string> const& files)
        : olds_(olds),
          news_(news),
          files_(files),
          in_old_(counts(olds, files.size())),
          in_new_(counts(news, files.size())) {}

    std::vector<RenamedFile> run() {
        if (!has_lonely(in_old_, in_new_) || !has_lonely(in_new_, in_old_)) return {};
        add_partners();
        add_equal();
        auto const renamed = chosen();
        join(renamed);
        return renamed;
    }

private:
    static bool has_lonely(std::vector<std::size_t> const& here,
                           std::vector<std::size_t> const& there) {
        for (std::size_t i = 0; i < here.size(); ++i)
            if (here[i] > 0 && there[i] == 0) return true;
        return false;
    }
    bool is_only_old(std::uint32_t file) const { return in_new_[file] == 0; }
    bool is_only_new(std::uint32_t file) const { return in_old_[file] == 0; }

    void add_partners() {
        for (Finding const& older : olds_) {
            if (!older.has_partner() || !is_only_old(older.file)) continue;
            std::uint32_t const file = news_[older.partner].file;
            if (is_only_new(file)) add({older.file, file}, 1, true);
        }
    }

    void add_equal() {
        auto const key_of = [&](Finding const& one) {
            bool const is_lonely = is_only_old(one.file) || is_only_new(one.file);
            if (!is_lonely) return Hash{};
            return hash_of({Hash{one.rule, 1}, one.message, one.function, one.text});
        };
        for_each_group(olds_, news_, key_of, [&](Group const& group) { add_group(group); });
    }

    // A finding that is in very many files says nothing.
    void add_group(Group const& group) {
        constexpr std::size_t most_files = 64;
        auto const            olds = files_of(olds_, group.olds);
        auto const            news = files_of(news_, group.news);
        if (olds.size() > most_files || news.size() > most_files) return;
        Finding const& one = olds_[group.olds.front()];
        bool const     is_code_known = !one.text.is_none() || !one.function.is_none();
        for (auto const& [older, in_old] : olds)
            for (auto const& [newer, in_new] : news)
                add({older, newer}, std::min(in_old, in_new), is_code_known);
    }

    static std::map<std::uint32_t, std::size_t> files_of(std::span<Finding const>       findings,
                                                         std::span<std::uint32_t const> indices) {
        std::map<std::uint32_t, std::size_t> files;
        for (std::uint32_t const index : indices) ++files[findings[index].file];
        return files;
    }

    void add(RenamedFile pair, std::size_t findings, bool is_code_known) {
        Likeness& likeness = likenesses_[pair];
        likeness.findings += findings;
        if (is_code_known) likeness.of_known_code += findings;
        ++likeness.kinds;
    }

    bool have_one_name(RenamedFile pair) const {
        return name_in(files_[pair.first]) == name_in(files_[pair.second]);
    }

    bool is_likely(RenamedFile pair, Likeness const& likeness) const {
        auto const [fewest, most] = std::minmax(in_old_[pair.first], in_new_[pair.second]);
        std::size_t const least_kinds = have_one_name(pair) ? 1 : 2;
        // Rule and message alone are much the same in many files.
        bool const is_half = 2 * likeness.of_known_code >= fewest || 2 * likeness.findings >= most;
        return likeness.kinds >= least_kinds && is_half;
    }

    // Of a million findings of the larger file, how many are in both.
    std::size_t share(RenamedFile pair, Likeness const& likeness) const {
        constexpr std::size_t whole = 1'000'000;
        return likeness.findings * whole / std::max(in_old_[pair.first], in_new_[pair.second]);
    }

    // The likeliest pairs first. A file is in one pair at most.
    std::vector<RenamedFile> chosen() const {
        std::vector<std::tuple<std::size_t, bool, RenamedFile>> likely;
        for (auto const& [pair, likeness] : likenesses_)
            if (is_likely(pair, likeness))
                likely.emplace_back(~share(pair, likeness), !have_one_name(pair), pair);
        std::ranges::sort(likely);
        std::vector<bool>        is_taken(files_.size());
        std::vector<RenamedFile> chosen;
        for (auto const& [rank, differs, pair] : likely) {
            if (is_taken[pair.first] || is_taken[pair.second]) continue;
            is_taken[pair.first] = is_taken[pair.second] = true;
            chosen.push_back(pair);
        }
        return chosen;
    }

    void join(std::vector<RenamedFile> const& pairs) {
        std::map<std::uint32_t, std::uint32_t> numbers;
        for (auto const& [older, newer] : pairs)
            numbers[older] = numbers[newer] = std::min(older, newer);
        if (numbers.empty()) return;
        for (auto const findings : {olds_, news_})
            for (Finding& one : findings)
                if (auto const found = numbers.find(one.file); found != numbers.end())
                    one.file = found->second;
    }

    std::span<Finding>              olds_;
    std::span<Finding>              news_;
    std::vector<std::string> const& files_;
    std::vector<std::size_t>        in_old_;  // by file
    std::vector<std::size_t>        in_new_;
    std::map<RenamedFile, Likeness> likenesses_;
};

}  // namespace

std::vector<RenamedFile> join_renamed_files(std::span<Finding> olds, std::span<Finding> news,
                                            std::vector<std::string> const& files) {
    return Renaming(olds, news, files).run();
}

}  // namespace sml::results

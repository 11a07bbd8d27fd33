#include <sml/results/joined_names.hpp>

#include <algorithm>

namespace sml::results {

namespace {

bool has_tool(std::vector<std::string> const& tools, std::string_view tool) {
    return std::ranges::find(tools, tool) != tools.end();
}

void forget_text(Finding& one) { one.text = one.surroundings = {}; }

}  // namespace

JoinedNames::JoinedNames(SideData const& olds, SideData const& news,
                         std::vector<MovedRoot> const& given)
    : olds_(olds), news_(news), paths_(olds.paths.all(), news.paths.all(), given) {
    for (SideData const* const side : {&olds, &news})
        for (std::string const& path : side->paths.all())
            files_.push_back(name_of(side->side, path));
    std::ranges::sort(files_);
    files_.erase(std::unique(files_.begin(), files_.end()), files_.end());
    sorted_ = files_.size();
}

std::string JoinedNames::name_of(Side side, std::string const& path) const {
    return side == Side::old_side ? paths_.of_old(path) : paths_.of_new(path);
}

std::vector<std::uint32_t> JoinedNames::rules_of(SideData const&                 side,
                                                 std::vector<std::string> const& old_tools) {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t rule = 0; rule < side.rules.all().size(); ++rule) {
        std::string const& tool = side.tool_of_rule(rule);
        bool const is_in_both = has_tool(old_tools, tool) && has_tool(news_.tools.all(), tool);
        numbers.push_back(rules_.number_of((is_in_both ? tool : std::string()) + '\0' +
                                           std::string(side.id_of_rule(rule))));
    }
    std::vector<std::uint32_t> rules;
    rules.reserve(side.findings.size());
    for (Finding const& one : side.findings) rules.push_back(numbers[one.rule]);
    return rules;
}

std::uint32_t JoinedNames::file_number(std::string const& name) {
    auto const end = files_.begin() + static_cast<std::ptrdiff_t>(sorted_);
    auto const found = std::lower_bound(files_.begin(), end, name);
    if (found != end && *found == name) return static_cast<std::uint32_t>(found - files_.begin());
    auto const [other, is_new] =
        others_.try_emplace(name, static_cast<std::uint32_t>(files_.size()));
    if (is_new) files_.push_back(name);
    return other->second;
}

void JoinedNames::apply(SideData& side) {
    auto const                 rules = rules_of(side, olds_.tools.all());
    std::vector<std::uint32_t> files;
    for (std::string const& path : side.paths.all())
        files.push_back(file_number(name_of(side.side, path)));
    for (std::size_t i = 0; i < rules.size(); ++i) {
        side.findings[i].rule = rules[i];
        side.findings[i].file = files[side.findings[i].file];
    }
}

Texts texts_of(Finding const& one) {
    if (!one.surroundings.is_none()) return Texts::of_lines;
    return one.text.is_none() ? Texts::none : Texts::of_regions;
}

Texts texts_of(SideData const& side) {
    Texts most = Texts::none;
    for (Finding const& one : side.findings) most = std::max(most, texts_of(one));
    return most;
}

void forget_texts_of_one_side(SideData& olds, SideData& news) {
    if (texts_of(olds) == texts_of(news)) return;
    for (SideData* const side : {&olds, &news}) std::ranges::for_each(side->findings, forget_text);
}

void forget_other_texts(SideData& side, Texts known) {
    for (Finding& one : side.findings)
        if (texts_of(one) != known) forget_text(one);
}

}  // namespace sml::results

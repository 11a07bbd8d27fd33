#include <sml/results/joined_names.hpp>

#include <algorithm>

namespace sml::results {

namespace {

bool has_tool(SideData const& side, std::string const& tool) {
    return std::ranges::count(side.tools.all(), tool) > 0;
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

// A rule of a side starts with the number of its tool.
std::uint32_t JoinedNames::rule_number(SideData const& side, std::string const& rule) {
    auto const         blank = rule.find(' ');
    std::string const& tool = side.tools.all()[std::stoul(rule.substr(0, blank))];
    bool const         is_in_both = has_tool(olds_, tool) && has_tool(news_, tool);
    return rules_.number_of((is_in_both ? tool : std::string()) + '\0' + rule.substr(blank + 1));
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
    std::vector<std::uint32_t> rules;
    std::vector<std::uint32_t> files;
    for (std::string const& rule : side.rules.all()) rules.push_back(rule_number(side, rule));
    for (std::string const& path : side.paths.all())
        files.push_back(file_number(name_of(side.side, path)));
    for (Finding& one : side.findings) {
        one.rule = rules[one.rule];
        one.file = files[one.file];
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

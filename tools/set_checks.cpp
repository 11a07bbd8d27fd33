#include "set_checks.hpp"

#include "errors.hpp"
#include "sarif/fields.hpp"

#include <algorithm>

namespace bradep {

namespace {

// The order of keys is that of addresses, which means nothing to a user.
bool stands_before(SetCheck const& a, SetCheck const& b) {
    int const files = a.key->first.str().compare(b.key->first.str());
    return files != 0 ? files < 0 : a.key->second < b.key->second;
}

SetCheck check_of(CheckForm const& form, ResultSet const& set) {
    if (!form.first_numbered_name) return {nullptr, nullptr, &form};
    auto const& checks = set.application_results.checks;
    auto const  found = checks.find(*form.first_numbered_name);
    return {&*form.first_numbered_name, found == checks.end() ? nullptr : &found->second, &form};
}

}  // namespace

std::vector<SetCheck> checks_of(ResultSet const& set, std::size_t most) {
    std::vector<SetCheck> all;
    std::set<NumberedKey> listed;
    for (auto const& [id, form] : set.check_data) {
        if (all.size() == most) return all;
        auto const one = check_of(form, set);
        if (one.check == nullptr || listed.insert(*one.key).second) all.push_back(one);
    }
    auto const formless = static_cast<std::ptrdiff_t>(all.size());
    for (auto const& [key, check] : set.application_results.checks)
        if (!listed.contains(key)) all.push_back({&key, &check, nullptr});
    auto const shown = static_cast<std::ptrdiff_t>(std::min(most, all.size()));
    std::partial_sort(all.begin() + formless, all.begin() + shown, all.end(), stands_before);
    all.erase(all.begin() + shown, all.end());
    return all;
}

std::size_t count_checks(ResultSet const& set) {
    auto const has_no_check = [&](auto const& form) { return !check_of(form.second, set).check; };
    auto const alone = std::ranges::count_if(set.check_data, has_no_check);
    return set.application_results.checks.size() + static_cast<std::size_t>(alone);
}

bool Review::is_absent(Check const& check) const {
    auto const& state = sarif::fields::baseline_state.held(sarif::CheckAlone{check});
    return sarif::has_category_of_import(check.category) && state.str() == "absent";
}

std::optional<sarif::Result> imported_result(SetCheck const& check, ResultSet const& set) {
    if (!check.form || !check.check || !sarif::has_category_of_import(check.category()))
        return std::nullopt;
    try {
        return sarif::restored_result(*check.form, set);
    } catch (DamagedInput const&) {  // a native check: its fields mean something else
        return std::nullopt;
    }
}

}  // namespace bradep

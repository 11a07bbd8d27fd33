#include "sarif/mapping.hpp"

#include "sarif/fields.hpp"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep::sarif {

namespace {

Text const& uri_of(Place const& place) {
    static Text const none;
    return place.uri ? *place.uri : none;
}

// The URI in the key of an information record.
Text const& key_uri(Place const& place, NumberedKey const&) { return uri_of(place); }
Text const& key_uri(RelatedPlace const& related, NumberedKey const&) {
    return uri_of(related.place);
}
Text const& key_uri(Suppression const&, NumberedKey const& check) { return check.first; }

template <class List>
void add_infos(List const& list, Result const& result, NumberedKey const& check,
               Filling const& filling) {
    auto&       tables = filling.set.application_results;
    auto const& elements = std::invoke(list.said, result);
    for (std::size_t i = list.first; i < elements.size(); ++i) {
        auto const key = filling.next_key(tables.info_numbers, key_uri(elements[i], check));
        filling.at(tables.first_key_sets, check).insert(key);
        FilledInfo const       record{filling.add(tables.infos, key), filling};
        fields::InfoHead const head{filling.comparisons.interned(list.role),
                                    static_cast<std::int32_t>(i), check};
        hold(fields::of_info, head, record);
        hold(list.rows, elements[i], record);
    }
}

// The records are sorted by their index in their list.
std::vector<Info const*> infos_of(NumberedKey const& check, ResultSet const& set) {
    std::vector<Info const*> infos;
    auto const&              tables = set.application_results;
    auto const               keys = tables.first_key_sets.find(check);
    if (keys == tables.first_key_sets.end()) return infos;
    for (auto const& key : keys->second)
        infos.push_back(&entry(tables.infos, key, "an information record"));
    // The order of keys is that of addresses, which has no meaning.
    std::ranges::sort(infos, {},
                      [](Info const* info) { return fields::position.held(ReadInfo{*info}); });
    return infos;
}

void restore_info(ReadInfo const& record, Result& result) {
    if (!record.info.category.holds<"TOOLTIP_INFO">())
        not_imported("an information record is no tooltip");
    auto const& role = fields::role.held(record).str();
    for_each_row(fields::info_lists, [&](auto const& list) {
        if (role == list.role)
            restore(list.rows, std::invoke(list.said, result).emplace_back(), record);
    });
}

// Finds the length of the longest text of a result.
class LongestText {
public:
    explicit LongestText(Result const& result) {
        see_all(fields::of_check, result);
        see_all(fields::info_lists, result);
        see_all(fields::of_form, result);
    }

    std::size_t bytes() const { return bytes_; }

private:
    template <class Rows, class Part>
    void see_all(Rows const& rows, Part const& part) {
        for_each_row(rows, [&](auto const& row) { see_row(row, part); });
    }
    template <class Row, class Part>
    void see_row(Row const& row, Part const& part) {
        if constexpr (requires { row.said; }) see(std::invoke(row.said, part));
    }

    void see(std::int32_t) {}
    void see(Text const& text) { bytes_ = std::max(bytes_, text.str().size()); }
    void see(Fingerprints const& fingerprints) {
        for (auto const& [name, value] : fingerprints) {
            see(name);
            see(value);
        }
    }
    void see(KeptJson const& json) { see(json.text); }
    void see(Descriptor const& descriptor) { see(descriptor.text); }
    void see(bool) {}
    void see(More const& more) {
        for (auto const& [pointer, text] : more.texts) {
            see(pointer);
            see(text);
        }
    }
    template <class T>
    void see(std::optional<T> const& value) {
        if (value) see(*value);
    }
    template <class T>
    void see(std::vector<T> const& elements) {
        for (T const& element : elements) see(element);
    }
    template <class Part>
    void see(Part const& part) {
        see_all(fields::rows_of(part), part);
    }

    std::size_t bytes_ = 0;
};

// The number of entries of the longest container of the set after the result is added.
std::size_t most_entries(Result const& result, Filling const& filling) {
    std::size_t lists = 1 + result.flows.size();  // `named_ints` has the length of each
    std::size_t steps = 0;
    for (auto const& flow : result.flows) {
        lists += flow.size();
        for (auto const& thread : flow) steps += thread.size();
    }
    auto const infos = result.locations.size() + result.related.size() + result.suppressions.size();
    auto const& tables = filling.set.application_results;
    return std::max({filling.set.check_data.size() + 1, tables.signatures.size() + 1,
                     filling.size(tables.events) + steps, filling.size(tables.infos) + infos, lists,
                     result.fingerprints.size() + result.partial_fingerprints.size(),
                     result.more.texts.size()});
}

void refuse_more(std::size_t found, std::size_t most, char const* what) {
    if (found > most)
        throw DamagedInput("a result set has no room for " + std::string(what) + " " +
                           std::to_string(found) + ", only for " + std::to_string(most));
}

void add(Result const& result, Filling const& filling, SetLimits const& limits) {
    refuse_more(LongestText(result).bytes(), limits.text_bytes, "a text of this many bytes:");
    refuse_more(most_entries(result, filling), limits.entries, "this many entries of a map:");
    auto&      set = filling.set;
    auto&      tables = set.application_results;
    auto const uri = result.locations.empty() ? Text() : uri_of(result.locations.front());
    auto const key = filling.next_key(tables.check_numbers, uri);
    auto const id = static_cast<std::int32_t>(set.check_data.size());

    FilledCheck const record{filling.add(tables.checks, key),
                             set.check_data.emplace_back(id, CheckForm()).second, key, filling};
    hold(fields::of_check, result, record);
    for_each_row(fields::info_lists,
                 [&](auto const& list) { add_infos(list, result, key, filling); });
    hold(fields::of_form, result, record);
    hold(fields::of_form_place, result, record);
    auto const strings = Text::fAllStrings.size() + 1;  // plus one: the empty text has no entry
    refuse_more(strings, limits.strings, "this many strings:");
}

}  // namespace

void add_result(Result const& result, ResultSet& set, Comparisons& comparisons,
                SetLimits const& limits) {
    DescriptorNumbers descriptors;
    for (std::int32_t number = 1; auto const one = fields::descriptor_at(number, set); ++number)
        descriptors.emplace(std::pair(one->component, one->text.text), number);
    add(result, {set, comparisons, descriptors}, limits);
}

struct SetFiller::Tables : LateTables {
    using LateTables::LateTables;

    DescriptorNumbers descriptors;
};

SetFiller::SetFiller(ResultSet& set, Comparisons& comparisons)
    : set_(set),
      comparisons_(comparisons),
      tables_(std::make_unique<Tables>(set.application_results)) {}

SetFiller::~SetFiller() = default;

void SetFiller::add(Result const& result) {
    sarif::add(result, {set_, comparisons_, tables_->descriptors, tables_.get()}, {});
}

void SetFiller::add(RunFacts const& facts) {
    Filling const   filling{set_, comparisons_, tables_->descriptors};
    SetLimits const limits;
    auto&           entries = set_.application_results.signatures;
    auto const      run = std::string(fields::runs_prefix) + std::to_string(facts.run) + '/';
    for (auto const& [pointer, text] : facts.facts.texts) {
        refuse_more(text.text.str().size(), limits.text_bytes, "a text of this many bytes:");
        refuse_more(entries.size() + 1, limits.entries, "this many entries of a map:");
        auto const key = comparisons_.interned(run + pointer.str());
        hold(fields::of_run_fact, text, FilledEntry{filling.at(entries, key)});
    }
    refuse_more(Text::fAllStrings.size() + 1, limits.strings, "this many strings:");
}

void SetFiller::finish() { tables_->insert_all(); }

Result restored_result(CheckForm const& form, ResultSet const& set) {
    if (!form.first_numbered_name) not_imported("a check form names no check");
    auto const& key = *form.first_numbered_name;
    auto const& check = entry(set.application_results.checks, key, "a key");
    if (!has_category_of_import(check.category)) not_imported("a check has no message");
    ReadCheck const record{check, form, set};
    Result          result;
    restore(fields::of_check, result, record);
    for (auto const* info : infos_of(key, set)) restore_info({*info}, result);
    restore(fields::of_form, result, record);
    return result;
}

std::vector<RunFacts> restored_facts(ResultSet const& set) {
    std::map<std::int32_t, RunFacts> by_run;
    for (auto const& [key, entry] : set.application_results.signatures) {
        std::string_view const name = key.str();
        if (!name.starts_with(fields::runs_prefix)) continue;
        auto const   number = name.substr(fields::runs_prefix.size());
        std::int32_t run = -1;
        auto const   end = std::from_chars(number.data(), number.data() + number.size(), run).ptr;
        auto const   rest = number.substr(static_cast<std::size_t>(end - number.data()));
        if (run < 0 || !rest.starts_with('/')) continue;
        KeptJson fact{Text()};
        restore(fields::of_run_fact, fact, ReadEntry{entry});
        auto& facts = by_run[run];
        facts.run = run;
        facts.facts.texts.emplace(std::string(rest.substr(1)), fact);
    }
    std::vector<RunFacts> all;
    for (auto& [run, facts] : by_run) all.push_back(std::move(facts));
    return all;
}

bool has_category_of_import(Category const& category) {
    return category.holds<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">();
}

std::set<NumberedKey> suppressed_checks(ResultSet const& set) {
    std::set<NumberedKey> suppressed;
    for (auto const& [key, info] : set.application_results.infos) {
        ReadInfo const record{info};
        if (fields::role.held(record).str() != fields::suppressions.role) continue;
        if (!info.category.holds<"TOOLTIP_INFO">()) continue;
        fields::InfoHead head;
        Suppression      suppression;
        restore(fields::of_info, head, record);
        restore(fields::suppressions.rows, suppression, record);
        if (!suppression.status || suppression.status->str() == "accepted")
            suppressed.insert(head.check);
    }
    return suppressed;
}

}  // namespace bradep::sarif

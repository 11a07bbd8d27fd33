#include "sarif/kernel_runs.hpp"

#include <sml/results/hash.hpp>
#include <sml/results/message.hpp>
#include <sml/results/paths.hpp>
#include <sml/results/query.hpp>
#include "sarif/category_texts.hpp"

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace bradep::sarif {

using sml::results::Hash;
using sml::results::hash_of;
using sml::results::Query;
using sml::tables::Database;

namespace {

std::string of_set(std::int64_t set) { return " WHERE result_set = " + std::to_string(set); }

/// Rows of which each belongs to a finding, in the order of the findings. The first column is the
/// row of the finding.
class RowsOfFindings {
public:
    RowsOfFindings(Database& database, std::string const& sql)
        : rows_(database, sql), has_row_(rows_.next()) {}

    /// Calls `use(rows)` for each row of the finding. Findings must be asked for in their order.
    template <class Use>
    void for_each(std::int64_t finding, Use const& use) {
        for (; has_row_ && rows_.integer(0) <= finding; has_row_ = rows_.next())
            if (rows_.integer(0) == finding) use(rows_);
    }

private:
    Query rows_;
    bool  has_row_;
};

/// The function of each finding: the least name of those in which it is located.
class Functions {
public:
    Functions(Database& database, std::int64_t set)
        : names_(database,
                 "SELECT parent, p1__qualified_signature__qualified_name__name"
                 " FROM checks__located_names" +
                     of_set(set)) {}

    std::string of(std::int64_t finding) {
        std::string least;
        names_.for_each(finding, [&](Query const& row) {
            auto const name = row.text(1);
            if (!name.empty() && (least.empty() || name < least)) least = name;
        });
        return least;
    }

private:
    RowsOfFindings names_;
};

/// The payload of each finding's category, as JSON; empty if there is none.
class Payloads {
public:
    Payloads(Database& database, std::int64_t set)
        : rows_(database, "SELECT \"row\", category_args FROM checks" + of_set(set)) {}

    std::string of(std::int64_t finding) {
        std::string payload;
        rows_.for_each(finding, [&](Query const& row) { payload = row.text(1); });
        return payload;
    }

private:
    RowsOfFindings rows_;
};

// As in "argument of call event".
std::string in_words(std::string_view name) {
    std::string words(name);
    for (char& c : words)
        c = c == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return words;
}

bool stays_in_uri(char c) {
    bool const is_alphanumeric =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return is_alphanumeric ||
           std::string_view("-._~/!$&'()*+,;=@").find(c) != std::string_view::npos;
}

// A URI that the path has: relative ones stay so.
std::string uri_of(std::string_view path) {
    constexpr char const* digits = "0123456789ABCDEF";
    std::string           uri;
    bool const            has_drive = path.size() > 2 && path[1] == ':' &&
                           std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
                           (path[2] == '/' || path[2] == '\\');
    if (has_drive) {
        (uri = "file:///") += path[0];
        uri += ':';
        path.remove_prefix(2);
    } else if (path.starts_with("file://")) {
        return std::string(path);
    } else if (path.starts_with('/')) {
        uri = "file://";
    }
    for (char const c : path) {
        if (has_drive && c == '\\') {
            uri += '/';
        } else if (stays_in_uri(c)) {
            uri += c;
        } else {
            auto const byte = static_cast<unsigned char>(c);
            ((uri += '%') += digits[byte >> 4]) += digits[byte & 15];
        }
    }
    return uri;
}

// Braces around one value are a list for one compiler and that value for another.
template <class Value>
json::object with(std::string_view name, Value&& value) {
    json::object object;
    object.emplace(name, std::forward<Value>(value));
    return object;
}

json::array list_of(json::object one) {
    json::array list;
    list.push_back(std::move(one));
    return list;
}

json::object region_of(std::int64_t line, std::int64_t column) {
    json::object region;
    if (line > 0) region["startLine"] = line;
    if (line > 0 && column > 0) region["startColumn"] = column;
    return region;
}

// The columns from `first` on are a path, a line and a column.
json::object location_of(Query const& row, int first) {
    json::object physical;
    if (auto const path = row.text(first); !path.empty())
        physical["artifactLocation"] = with("uri", uri_of(path));
    auto region = region_of(row.integer(first + 1), row.integer(first + 2));
    if (!region.empty() && !physical.empty()) physical["region"] = std::move(region);
    json::object location;
    if (!physical.empty()) location["physicalLocation"] = std::move(physical);
    return location;
}

constexpr std::size_t most_nested = 1000;

// The value that a text of JSON spells; a text that is none, as a string.
json::value value_of(std::string_view text) {
    boost::system::error_code error;
    json::parse_options       options;
    options.max_depth = most_nested;
    auto value = json::parse(text, error, {}, options);
    return error ? json::value(text) : value;
}

json::object& properties_of(json::object& object) {
    auto& bag = object["properties"];
    return bag.is_object() ? bag.get_object() : bag.emplace_object();
}

void set_payload(json::object& object, std::string_view payload) {
    if (!payload.empty()) properties_of(object)["payload"] = value_of(payload);
}

/// A finding, and a hash of what it has in common with those that a diff takes for equal.
struct Identified {
    Hash         identity;
    std::int64_t line, column, finding;

    auto rank() const { return std::tie(identity, line, column, finding); }
};

std::string hexadecimal(std::uint64_t number) {
    constexpr char const* digits = "0123456789abcdef";
    std::string           text;
    for (int shift = 60; shift >= 0; shift -= 4) text += digits[number >> shift & 15];
    return text;
}

// A hash each, and the number among those that are equal, in the order of their places.
std::vector<std::string> fingerprints_of(std::vector<Identified> findings) {
    std::ranges::sort(findings, {}, &Identified::rank);
    std::vector<std::string> prints(findings.size());
    std::size_t              number = 0;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        bool const is_equal = i > 0 && findings[i].identity == findings[i - 1].identity;
        number = is_equal ? number + 1 : 1;
        auto const row = static_cast<std::size_t>(findings[i].finding);
        prints.at(row) = hexadecimal(findings[i].identity.low) + ':' + std::to_string(number);
    }
    return prints;
}

/// Makes the results of a run, one by one.
class Results {
public:
    Results(Database& database, std::int64_t set, std::vector<std::string> const& rules,
            std::vector<std::string> const& fingerprints)
        : findings_(database,
                    "SELECT finding, rule, level, class, message, uri, line, \"column\","
                    " suppressed, \"key\" FROM findings" +
                        of_set(set)),
          payloads_(database, set),
          functions_(database, set),
          steps_(database, steps_sql(set)),
          infos_(database, infos_sql(set)),
          rules_(rules),
          fingerprints_(fingerprints) {}

    void run(LogSource::ResultSink const& sink) {
        while (findings_.next()) sink(std::string(findings_.text(key)), next());
    }

private:
    enum Column : int { finding, rule, level, class_, message, uri, line, column, suppressed, key };

    // The events of the failures, in the order of their steps.
    static std::string steps_sql(std::int64_t set) {
        return "SELECT s.parent, e.kind, e.kind_args,"
               " coalesce(nullif(e.source_ref__localization__file, ''), s.p0__p0),"
               " e.source_ref__localization__first_position,"
               " e.source_ref__localization__second_position, e.optional_string,"
               " s.p1, s.p1_args FROM checks__failure__steps AS s LEFT JOIN events AS e"
               " ON e.result_set = s.result_set AND e.key0 = s.p0__p0 AND e.key1 = s.p0__p1"
               " WHERE s.result_set = " +
               std::to_string(set);
    }

    // The information records to which the checks' keys lead.
    static std::string infos_sql(std::int64_t set) {
        return "SELECT c.\"row\", i.category, i.category_args,"
               " coalesce(nullif(i.location__localization__file, ''), i.key0),"
               " i.location__localization__first_position,"
               " i.location__localization__second_position"
               " FROM checks AS c"
               " CROSS JOIN first_key_sets AS k ON k.result_set = c.result_set"
               " AND k.key0 = c.key0 AND k.key1 = c.key1"
               " CROSS JOIN first_key_sets__value AS v ON v.result_set = k.result_set"
               " AND v.parent = k.\"row\""
               " CROSS JOIN infos AS i ON i.result_set = v.result_set"
               " AND i.key0 = v.p0 AND i.key1 = v.p1"
               " WHERE c.result_set = " +
               std::to_string(set);
    }

    json::object next() {
        std::int64_t const row = findings_.integer(finding);
        json::object       result;
        result["ruleId"] = findings_.text(rule);
        auto const index = std::ranges::lower_bound(rules_, findings_.text(rule));
        result["ruleIndex"] = index - rules_.begin();
        result["level"] = level_of_finding();
        result["message"] = with("text", message_of_finding());
        add_location(result, row);
        add_flow(result, row);
        add_related(result, row);
        result["partialFingerprints"] =
            with("finding/v1", fingerprints_.at(static_cast<std::size_t>(row)));
        if (findings_.integer(suppressed) != 0)
            result["suppressions"] = list_of(with("kind", "external"));
        properties_of(result)["key"] = findings_.text(key);
        if (auto const name = findings_.text(class_); !name.empty())
            properties_of(result)["class"] = name;
        set_payload(result, payloads_.of(row));
        return result;
    }

    // A set has no colours, but some checks have been classified.
    std::string_view level_of_finding() const {
        auto const classes = ',' + std::string(findings_.text(class_)) + ',';
        for (char const* const severe : {",CRITICAL,", ",CRITICAL_CHK,", ",PROVEN,"})
            if (classes.find(severe) != std::string::npos) return "error";
        return findings_.text(level);
    }

    std::string message_of_finding() const {
        if (auto const said = findings_.text(message); !said.empty()) return std::string(said);
        auto const text = description_of_category(findings_.text(rule));
        return text.empty() ? "Check " + std::string(findings_.text(rule)) : std::string(text);
    }

    void add_location(json::object& result, std::int64_t row) {
        auto       location = location_of(findings_, uri);
        auto const name = functions_.of(row);
        if (!name.empty())
            location["logicalLocations"] =
                list_of(json::object{{"name", name}, {"kind", "function"}});
        if (!location.empty()) result["locations"] = list_of(std::move(location));
    }

    void add_flow(json::object& result, std::int64_t row) {
        json::array steps;
        steps_.for_each(row, [&](Query const& event) {
            auto location = location_of(event, 3);
            auto said =
                event.text(6).empty() ? in_words(event.text(1)) : std::string(event.text(6));
            if (!said.empty()) location["message"] = with("text", std::move(said));
            json::object step = with("location", std::move(location));
            set_payload(step, event.text(2));
            if (auto const arm = event.text(7); !arm.empty())
                properties_of(step)["value"] =
                    json::object{{"arm", arm}, {"args", value_of(event.text(8))}};
            steps.push_back(std::move(step));
        });
        if (steps.empty()) return;
        auto thread = with("locations", std::move(steps));
        result["codeFlows"] = list_of(with("threadFlows", list_of(std::move(thread))));
    }

    void add_related(json::object& result, std::int64_t row) {
        json::array all;
        infos_.for_each(row, [&](Query const& info) {
            auto location = location_of(info, 3);
            location["message"] = with("text", in_words(info.text(1)));
            set_payload(location, info.text(2));
            all.push_back(std::move(location));
        });
        if (!all.empty()) result["relatedLocations"] = std::move(all);
    }

    Query                           findings_;
    Payloads                        payloads_;
    Functions                       functions_;
    RowsOfFindings                  steps_;
    RowsOfFindings                  infos_;
    std::vector<std::string> const& rules_;
    std::vector<std::string> const& fingerprints_;
};

}  // namespace

bool holds_kernel_checks(Database& database, std::int64_t set) {
    return Query(database, "SELECT 1 FROM findings" + of_set(set) + " AND run IS NULL LIMIT 1")
        .next();
}

KernelRuns::KernelRuns(Database& database, std::int64_t set) : database_(database), set_(set) {
    Payloads                payloads(database, set);
    Functions               functions(database, set);
    std::vector<Identified> findings;
    std::set<std::string>   rules;
    Query                   rows(database,
                                 "SELECT finding, rule, uri, message, line, \"column\" FROM findings" + of_set(set));
    while (rows.next()) {
        auto const row = rows.integer(0);
        auto const said = rows.text(3).empty()
                              ? sml::results::payload_without_places(payloads.of(row))
                              : sml::results::without_places(rows.text(3));
        rules.emplace(rows.text(1));
        findings.push_back(
            {hash_of({hash_of(rows.text(1)), hash_of(sml::results::path_of(rows.text(2))),
                      hash_of(functions.of(row)), hash_of(said)}),
             rows.integer(4), rows.integer(5), row});
    }
    rules_.assign(rules.begin(), rules.end());
    fingerprints_ = fingerprints_of(std::move(findings));
}

json::object KernelRuns::run(std::size_t) const {
    json::array descriptors;
    for (std::string const& rule : rules_) {
        json::object descriptor = with("id", rule);
        if (auto const text = description_of_category(rule); !text.empty())
            descriptor["shortDescription"] = with("text", text);
        descriptors.push_back(std::move(descriptor));
    }
    json::object driver{{"name", "kernel"}, {"rules", std::move(descriptors)}};
    return with("tool", with("driver", std::move(driver)));
}

void KernelRuns::results(std::size_t, ResultSink const& sink) const {
    Results(database_, set_, rules_, fingerprints_).run(sink);
}

}  // namespace bradep::sarif

#pragma once
// One result of a SARIF log with all references resolved: indices, message ids and defaults are
// replaced by values. An empty optional is a property that the log does not give.

#include <sml/core/Strings.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace bradep::sarif {

/// Copies share one text in memory.
using Text = sml::Strings_T;

struct Place {
    std::optional<Text>         uri;   ///< as written: neither decoded nor joined with its base
    std::optional<Text>         base;  ///< uriBaseId
    std::optional<std::int32_t> line;
    std::optional<std::int32_t> column;
    std::optional<std::int32_t> end_line;
    std::optional<std::int32_t> end_column;
    std::optional<Text>         logical;  ///< name of the first logical location
    bool logical_is_short = false;        ///< it is not its `fullyQualifiedName`, but its `name`

    bool operator==(Place const&) const = default;
};

struct RelatedPlace {
    Place                       place;
    std::optional<std::int32_t> id;
    std::optional<Text>         message;

    bool operator==(RelatedPlace const&) const = default;
};

/// The text of JSON.
struct KeptJson {
    KeptJson(Text const& its_text) : text(its_text) {}
    operator Text const&() const { return text; }

    Text text;

    bool operator==(KeptJson const&) const = default;
};

struct Step {
    std::optional<Place> place;
    std::optional<Text>  message;
    /// An object: the properties that have no field, by JSON pointer.
    std::optional<KeptJson> more = {};

    bool operator==(Step const&) const = default;
};

struct Suppression {
    std::optional<Text> kind;
    std::optional<Text> status;

    bool operator==(Suppression const&) const = default;
};

using ThreadFlow = std::vector<Step>;
using CodeFlow = std::vector<ThreadFlow>;

/// Orders texts alphabetically; their own order is that of addresses.
struct Alphabetical {
    bool operator()(Text const& a, Text const& b) const { return !(a == b) && a.str() < b.str(); }
};
using Fingerprints = std::map<Text, Text, Alphabetical>;

/// The properties that have no field, by JSON pointer.
struct More {
    std::map<Text, KeptJson, Alphabetical> texts;

    bool operator==(More const&) const = default;
};

/// What the tool says of a rule.
struct Descriptor {
    Text     component;  ///< the JSON pointer of its tool component in the run, without first slash
    KeptJson text;

    bool operator==(Descriptor const&) const = default;
};

/// What a run has beside results.
struct RunFacts {
    std::int32_t run = 0;
    More         facts;
};

struct Result {
    std::int32_t              run = 0;
    std::optional<Text>       tool;
    std::optional<Text>       tool_version;
    std::optional<Text>       rule;
    std::optional<Descriptor> descriptor;
    Text                      level;
    Text                      kind;
    std::optional<Text>       message;
    std::vector<Place>        locations;
    std::vector<RelatedPlace> related;
    std::vector<CodeFlow>     flows;
    Fingerprints              fingerprints;
    Fingerprints              partial_fingerprints;
    std::vector<Suppression>  suppressions;
    std::optional<Text>       baseline_state;
    More                      more;

    bool operator==(Result const&) const = default;
};

}  // namespace bradep::sarif

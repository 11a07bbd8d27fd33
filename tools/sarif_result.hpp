#pragma once
// One result of a SARIF log with every reference resolved: no index, message id or default is left
// to look up. An empty optional is a property that the log does not give.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace bradep::sarif {

struct Place {
    std::optional<std::string>  uri;   // as written: neither decoded nor joined with its base
    std::optional<std::string>  base;  // uriBaseId
    std::optional<std::int32_t> line;
    std::optional<std::int32_t> column;
    std::optional<std::int32_t> end_line;
    std::optional<std::int32_t> end_column;
    std::optional<std::string>  logical;  // name of the first logical location

    bool operator==(Place const&) const = default;
};

struct Related_Place {
    Place                       place;
    std::optional<std::int32_t> id;
    std::optional<std::string>  message;

    bool operator==(Related_Place const&) const = default;
};

struct Step {
    std::optional<Place>       place;
    std::optional<std::string> message;

    bool operator==(Step const&) const = default;
};

struct Suppression {
    std::optional<std::string> kind;
    std::optional<std::string> status;

    bool operator==(Suppression const&) const = default;
};

using Thread_Flow = std::vector<Step>;
using Code_Flow = std::vector<Thread_Flow>;
using Fingerprints = std::map<std::string, std::string>;

struct Result {
    std::int32_t               run = 0;
    std::optional<std::string> tool;
    std::optional<std::string> tool_version;
    std::optional<std::string> rule;
    std::string                level;
    std::string                kind;
    std::optional<std::string> message;
    std::vector<Place>         locations;
    std::vector<Related_Place> related;
    std::vector<Code_Flow>     flows;
    Fingerprints               fingerprints;
    Fingerprints               partial_fingerprints;
    std::vector<Suppression>   suppressions;
    std::optional<std::string> baseline_state;

    bool operator==(Result const&) const = default;
};

}  // namespace bradep::sarif

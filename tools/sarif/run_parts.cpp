#include "sarif/run_parts.hpp"

#include "sarif/kept.hpp"
#include "sarif/members_at.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

namespace bradep::sarif {

namespace {

using json_input::Cursor;
using json_input::ValueParser;

constexpr std::string_view results_name = "results";
constexpr std::string_view artifacts_name = "artifacts";
constexpr std::string_view bag_name = "properties";

// The lists that values of the run refer to, and what is kept of the run.
constexpr auto names = [] {
    constexpr std::string_view lists[] = {results_name,          artifacts_name, "logicalLocations",
                                          "threadFlowLocations", "addresses",    "webRequests",
                                          "webResponses"};
    std::array<std::string_view, std::size(lists) + std::size(kept::all_of_run)> all;
    auto const end = std::ranges::copy(lists, all.begin()).out;
    std::ranges::transform(kept::all_of_run, end, &kept::Member::name);
    return all;
}();

// Artifacts can hold whole source files. Only their locations are kept.
json::value without_contents(json::value const& artifact, json::storage_ptr const& storage) {
    auto const* const members = artifact.if_object();
    if (members == nullptr) return json::value(artifact, storage);
    json::object kept(storage);
    if (auto const* const location = members->if_contains("location"))
        kept.emplace("location", *location);
    return kept;
}

json::value artifacts_at(Cursor& at, ValueParser& parser, json::storage_ptr const& storage) {
    if (at.peek() != '[') return json::value(parser.kind_of(at), storage);
    json::array kept(storage);
    for (at.enter(); at.next();) kept.push_back(without_contents(parser.parse(at), storage));
    return kept;
}

}  // namespace

RunParts::RunParts(Cursor& at, ValueParser& parser) : value_(json::storage_ptr(&arena_)) {
    if (at.peek() != '{') {
        value_ = parser.kind_of(at);
        return;
    }
    value_.emplace_object();
    auto const parts = members_at(at, names);
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (parts[i]) read(names[i], *parts[i], parser);
}

void RunParts::read(std::string_view name, Cursor part, ValueParser& parser) {
    auto& members = value_.get_object();
    if (name == artifacts_name) {
        members.emplace(name, artifacts_at(part, parser, &arena_));
    } else if (name == results_name) {
        if (part.peek() == '[') results_ = part;
        members.emplace(name, parser.kind_of(part));
    } else if (name != bag_name || part.peek() == '{') {
        members.emplace(name, parser.parse(part, &arena_));
    }
}

}  // namespace bradep::sarif

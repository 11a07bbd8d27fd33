#include "report/reported_sources.hpp"

#include "json_input.hpp"
#include "signals.hpp"

#include <variant>

namespace bradep {

namespace json = boost::json;
using json_input::found;
using json_input::found_text;

namespace {

// Bases may have bases.
constexpr int most_bases = 16;

bool is_absolute(std::string_view uri) {
    auto const end = uri.find_first_of(":/");
    return end != std::string_view::npos && (uri[end] == ':' || end == 0);
}

// The URI with those of its bases in front, as far as the run says them.
std::string resolved(json::value const& location, json::value const* bases) {
    std::string uri;
    auto const* at = &location;
    for (int i = 0; i < most_bases && at != nullptr; ++i) {
        auto const part = found_text(at, "uri").value_or(std::string_view());
        bool const needs_slash = !part.empty() && !part.ends_with('/') && !uri.empty();
        uri = std::string(part) + (needs_slash ? "/" : "") + uri;
        auto const base = found_text(at, "uriBaseId");
        if (is_absolute(uri) || !base) break;
        at = found(bases, *base);
    }
    return uri;
}

}  // namespace

void ReportedSources::note(json::object const& run, json::object const& result) {
    for (auto const& [name, value] : result) note_in(run, value);
}

void ReportedSources::note_in(json::object const& run, json::value const& value) {
    if (auto const* const list = value.if_array()) {
        for (auto const& element : *list) note_in(run, element);
        return;
    }
    auto const* const object = value.if_object();
    if (object == nullptr) return;
    for (auto const& [name, member] : *object) {
        if (name == "properties") continue;
        if (name != "physicalLocation") {
            note_in(run, member);
            continue;
        }
        auto const* const location = found(&member, "artifactLocation");
        auto const        uri = found_text(location, "uri");
        if (uri && !uri->empty() && !paths_.contains(std::string(*uri)))
            paths_.emplace(*uri, resolved(*location, run.if_contains("originalUriBaseIds")));
    }
}

void ReportedSources::add_to(report::ReportWriter&    writer,
                             report::SourceDirectory& directory) const {
    for (auto const& [uri, path] : paths_) {
        Interruption::check();
        auto const source = directory.read(path);
        if (auto const* const text = std::get_if<std::string>(&source))
            writer.add_source(uri, *text);
        else
            writer.skip_source(uri, reason_of(std::get<report::Skipped>(source)));
    }
}

}  // namespace bradep

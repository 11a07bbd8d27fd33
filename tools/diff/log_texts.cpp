#include "diff/log_texts.hpp"

#include "json_input.hpp"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>

namespace bradep {

namespace {

using namespace json_input;
using sml::results::Flagged;
using sml::results::SourceLines;

json::value const* at(json::value const* value, std::initializer_list<char const*> path) {
    for (char const* const name : path) value = found(value, name);
    return value;
}

std::optional<std::string_view> text_at(json::value const*                 value,
                                        std::initializer_list<char const*> path, char const* name) {
    return found_text(at(value, path), name);
}

// What the importer would refuse is none here: it says so itself.
std::optional<std::int64_t> number_at(json::value const* value, char const* name) {
    auto const* const number = found(value, name);
    return number ? integer(*number) : std::nullopt;
}

/// The results of one run.
class RunTexts {
public:
    explicit RunTexts(json::value const& run) : artifacts_(found_list(&run, "artifacts")) {
        for (std::size_t i = 0; element(artifacts_, i) != nullptr; ++i)
            if (auto const uri = text_at(element(artifacts_, i), {"location"}, "uri"))
                numbers_.emplace(*uri, i);
    }

    Flagged flagged(json::value const& result) {
        auto const* const locations = found_list(&result, "locations");
        auto const* const place = found(element(locations, 0), "physicalLocation");
        if (place == nullptr) return {};
        auto const line = number_at(found(place, "region"), "startLine");
        if (line)
            if (auto const* const lines = lines_of(found(place, "artifactLocation")))
                return lines->at(*line);
        auto const context = text_at(place, {"contextRegion", "snippet"}, "text");
        if (line && context) {
            auto const first = number_at(found(place, "contextRegion"), "startLine").value_or(1);
            auto const flagged = SourceLines(std::string(*context)).at(*line - first + 1);
            if (!flagged.text.is_none()) return flagged;
        }
        if (auto const own = text_at(place, {"region", "snippet"}, "text"))
            return {sml::results::hash_of(sml::results::without_blanks(*own)), {}};
        return {};
    }

private:
    // Null if the log does not have the text.
    SourceLines const* lines_of(json::value const* location) {
        auto const own = number_at(location, "index").value_or(-1);
        auto       index = static_cast<std::size_t>(own);
        if (own < 0) {
            auto const uri = found_text(location, "uri");
            auto const number = uri ? numbers_.find(*uri) : numbers_.end();
            if (number == numbers_.end()) return nullptr;
            index = number->second;
        }
        auto const known = lines_.find(index);
        if (known != lines_.end()) return &known->second;
        auto const text = text_at(element(artifacts_, index), {"contents"}, "text");
        if (!text) return nullptr;
        return &lines_.try_emplace(index, std::string(*text)).first->second;
    }

    json::array const*                      artifacts_;
    std::map<std::string_view, std::size_t> numbers_;  // by URI
    std::map<std::size_t, SourceLines>      lines_;    // by index of the artifact
};

}  // namespace

sml::results::FlaggedByForm flagged_in_log(std::string_view text, std::string const& name) {
    sml::results::FlaggedByForm all;
    bool const                  has_text = text.find("\"snippet\"") != std::string_view::npos ||
                          text.find("\"contents\"") != std::string_view::npos;
    if (!has_text) return all;
    Document const document(text, name);
    auto const*    runs = found_list(&document.root(), "runs");
    if (runs == nullptr) return all;
    for (json::value const& run : *runs) {
        RunTexts          texts(run);
        auto const* const results = found_list(&run, "results");
        if (results == nullptr) continue;
        for (json::value const& result : *results) all.push_back(texts.flagged(result));
    }
    return all;
}

}  // namespace bradep

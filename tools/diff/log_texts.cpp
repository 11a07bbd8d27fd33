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
    for (char const* const name : path) {
        if (value == nullptr || !value->is_object()) return nullptr;
        value = member(*value, name);
    }
    return value;
}

std::optional<std::string_view> text_at(json::value const*                 value,
                                        std::initializer_list<char const*> path) {
    auto const* const found = at(value, path);
    if (found == nullptr || !found->is_string()) return std::nullopt;
    return view_of(*found);
}

std::optional<std::int64_t> number_at(json::value const*                 value,
                                      std::initializer_list<char const*> path) {
    auto const* const found = at(value, path);
    if (found == nullptr || !found->is_number()) return std::nullopt;
    // What the importer would refuse is none here: it says so itself.
    json::error_code error;
    auto const       number = found->to_number<std::int64_t>(error);
    return error ? std::nullopt : std::optional(number);
}

json::array const* list_at(json::value const* value, char const* name) {
    auto const* const found = at(value, {name});
    return found != nullptr && found->is_array() ? &found->get_array() : nullptr;
}

json::value const* element(json::array const* list, std::int64_t index) {
    if (list == nullptr || index < 0 || static_cast<std::size_t>(index) >= list->size())
        return nullptr;
    return &(*list)[static_cast<std::size_t>(index)];
}

/// The results of one run.
class RunTexts {
public:
    explicit RunTexts(json::value const& run) : artifacts_(list_at(&run, "artifacts")) {
        for (std::int64_t i = 0; element(artifacts_, i) != nullptr; ++i)
            if (auto const uri = text_at(element(artifacts_, i), {"location", "uri"}))
                numbers_.emplace(*uri, i);
    }

    Flagged flagged(json::value const& result) {
        auto const* const locations = list_at(&result, "locations");
        auto const* const place = at(element(locations, 0), {"physicalLocation"});
        if (place == nullptr) return {};
        auto const line = number_at(place, {"region", "startLine"});
        if (line)
            if (auto const* const lines = lines_of(at(place, {"artifactLocation"})))
                return lines->at(*line);
        auto const context = text_at(place, {"contextRegion", "snippet", "text"});
        if (line && context) {
            auto const first = number_at(place, {"contextRegion", "startLine"}).value_or(1);
            auto const flagged = SourceLines(std::string(*context)).at(*line - first + 1);
            if (!flagged.text.is_none()) return flagged;
        }
        if (auto const own = text_at(place, {"region", "snippet", "text"}))
            return {sml::results::hash_of(sml::results::without_blanks(*own)), {}};
        return {};
    }

private:
    // Null if the log does not have the text.
    SourceLines const* lines_of(json::value const* location) {
        auto index = number_at(location, {"index"}).value_or(-1);
        if (index < 0) {
            auto const uri = text_at(location, {"uri"});
            auto const found = uri ? numbers_.find(*uri) : numbers_.end();
            if (found == numbers_.end()) return nullptr;
            index = found->second;
        }
        auto const known = lines_.find(index);
        if (known != lines_.end()) return &known->second;
        auto const text = text_at(element(artifacts_, index), {"contents", "text"});
        if (!text) return nullptr;
        return &lines_.try_emplace(index, std::string(*text)).first->second;
    }

    json::array const*                       artifacts_;
    std::map<std::string_view, std::int64_t> numbers_;  // by URI
    std::map<std::int64_t, SourceLines>      lines_;    // by index of the artifact
};

}  // namespace

sml::results::FlaggedByForm flagged_in_log(std::string_view text, std::string const& name) {
    sml::results::FlaggedByForm all;
    bool const                  has_text = text.find("\"snippet\"") != std::string_view::npos ||
                          text.find("\"contents\"") != std::string_view::npos;
    if (!has_text) return all;
    Document const document(text, name);
    auto const*    runs = list_at(&document.root(), "runs");
    if (runs == nullptr) return all;
    for (json::value const& run : *runs) {
        RunTexts          texts(run);
        auto const* const results = list_at(&run, "results");
        if (results == nullptr) continue;
        for (json::value const& result : *results) all.push_back(texts.flagged(result));
    }
    return all;
}

}  // namespace bradep

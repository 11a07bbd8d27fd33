#include "json_line.hpp"

#include <sml/bindings/bindings.hpp>
#include <sml/core/decimal_point.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/text/json_writer.hpp>
#include "errors.hpp"
#include "json_cursor.hpp"
#include "sarif/fields.hpp"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

namespace {

namespace fields = sarif::fields;
using sarif::Text;
using sml::inspect::append_json_integer;
using sml::inspect::JsonWriter;
using sml::inspect::StrayByte;

template <class Rows, class Part>
void add_members(JsonWriter& json, Rows const& rows, Part const& part);
template <class Part>
void write(JsonWriter& json, Part const& part);

void write(JsonWriter& json, std::int32_t number) {
    append_json_integer(json.text, std::int64_t{number});
}

void write(JsonWriter& json, Text const& text) { json.string(text.str()); }

// Whether no character outside quotes and backslashes would be escaped.
bool has_no_character_to_escape(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        auto const run = text.substr(0, text.find_first_of("\"\\"));
        escaped.clear();
        sml::inspect::append_json_characters(escaped, run, StrayByte::replaced);
        if (escaped != run) return false;
        text.remove_prefix(std::min(run.size() + 1, text.size()));
    }
    return true;
}

bool is_kept_json(std::string_view text) {
    if (!has_no_character_to_escape(text)) return false;
    try {
        return json_input::JsonText(text, {}).view().size() == text.size();
    } catch (DamagedInput const&) {
        return false;
    }
}

// A set that no import has written can have any text there, which is printed as a string.
void write(JsonWriter& json, sarif::KeptJson const& value) {
    auto const text = value.text.str();
    if (is_kept_json(text))
        json.text += text;
    else
        json.string(text);
}

void write(JsonWriter& json, sarif::More const& more) {
    json.open('{');
    for (auto const& [pointer, value] : more.texts) {
        json.next();
        write(json, pointer);
        json.text += ':';
        write(json, value);
    }
    json.close('}');
}

// Results share their texts, so a line can be far longer than the whole set. It is written in
// pieces and never held in memory as a whole.
template <class T>
void write(JsonWriter& json, std::vector<T> const& elements) {
    json.open('[');
    for (T const& element : elements) {
        json.next();
        write(json, element);
    }
    json.close(']');
}

template <class Part>
void write(JsonWriter& json, Part const& part) {
    json.open('{');
    add_members(json, fields::rows_of(part), part);
    json.close('}');
}

template <class T>
void add_member(JsonWriter& json, char const* name, T const& value) {
    json.member(name);
    write(json, value);
}
template <class T>
void add_member(JsonWriter& json, char const* name, std::optional<T> const& value) {
    if (value) add_member(json, name, *value);
}
void add_member(JsonWriter& json, char const* name, sarif::More const& more) {
    if (more.texts.empty()) return;
    json.member(name);
    write(json, more);
}
template <class T>
void add_member(JsonWriter& json, char const* name, std::vector<T> const& elements) {
    if (elements.empty()) return;
    json.member(name);
    write(json, elements);
}

template <class Row, class Part>
void add_row(JsonWriter& json, Row const& row, Part const& part) {
    if constexpr (requires { row.place_rows; }) {
        if (auto const* const place = fields::place_in(std::invoke(row.said, part)))
            add_members(json, row.place_rows, *place);
    } else if constexpr (requires { row.shown; }) {
        if (row.shown != nullptr) add_member(json, row.shown, std::invoke(row.said, part));
    }
}

template <class Rows, class Part>
void add_members(JsonWriter& json, Rows const& rows, Part const& part) {
    for_each_row(rows, [&](auto const& row) { add_row(json, row, part); });
}

// A log may use one name in both families. The complete fingerprint is then the one that is
// written.
void add_fingerprints(JsonWriter& json, sarif::Result const& result) {
    auto all = result.fingerprints;
    all.insert(result.partial_fingerprints.begin(), result.partial_fingerprints.end());
    if (all.empty()) return;
    json.member(fields::complete.shown);
    json.open('{');
    for (auto const& [name, value] : all) {
        json.next();
        write(json, name);
        json.text += ':';
        write(json, value);
    }
    json.close('}');
}

void add_key(JsonWriter& json, NumberedKey const& key) {
    json.member("key");
    json.open('[');
    json.next();
    write(json, key.first);
    json.next();
    write(json, key.second);
    json.close(']');
}

// Passes on all bytes except the first `before` and the last `behind` ones.
class InnerBytes : public std::streambuf {
public:
    InnerBytes(std::ostream& out, std::size_t before, std::size_t behind)
        : out_(out), before_(before), behind_(behind) {}

private:
    std::streamsize xsputn(char const* bytes, std::streamsize count) override {
        held_.append(bytes, static_cast<std::size_t>(count));
        auto const skipped = std::min(before_, held_.size());
        held_.erase(0, skipped);
        before_ -= skipped;
        if (held_.size() <= behind_) return count;
        auto const inner = held_.size() - behind_;
        out_.write(held_.data(), static_cast<std::streamsize>(inner));
        held_.erase(0, inner);
        return out_ ? count : 0;
    }

    std::ostream& out_;
    std::string   held_;
    std::size_t   before_;
    std::size_t   behind_;
};

// The set has already been verified within limits, so none are needed here.
sml::inspect::VerifyOptions without_limits() {
    constexpr auto              most = std::numeric_limits<std::uint64_t>::max();
    sml::inspect::VerifyOptions options;
    options.limits = {.depth = sml::inspect::Limits::depth_cap,
                      .elements = most,
                      .text_bytes = most,
                      .memory = most};
    options.decimal_point = sml::core::decimal_point();
    return options;
}

// Only roots can be written and dumped, so the category is dumped as a part of one.
void write_category(std::ostream& out, sml::Checks::T_Check_Category const& category) {
    constexpr char const* stem = "Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T";
    constexpr char const* path = "[0].1.category";
    std::list<std::pair<std::int32_t, CheckForm>> forms(1);
    forms.front().second.category = category;
    auto const& bytes = sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_fromCxx(forms);

    auto const before =
        R"({"root":")" + std::string(stem) + R"(","path":")" + path + R"(","value":)";
    constexpr std::string_view behind = "}\n";
    InnerBytes                 inner(out, before.size(), behind.size());
    std::ostream               stream(&inner);
    dump(*sml::inspect::find_root(stem), bytes, stream, {.walk = without_limits(), .path = path});
}

}  // namespace

void write_json_line(std::ostream& out, NumberedKey const* key,
                     sml::Checks::T_Check_Category const& category) {
    JsonWriter json(out, false, StrayByte::replaced);
    json.open('{');
    if (key) add_key(json, *key);
    json.member("category");
    json.flush();
    write_category(out, category);
    json.close('}');
    json.end_line();
    json.flush();
}

void write_json_line(std::ostream& out, NumberedKey const& key, sarif::Result const& result) {
    JsonWriter json(out, false, StrayByte::replaced);
    json.open('{');
    add_key(json, key);
    add_members(json, fields::of_line, result);
    add_fingerprints(json, result);
    json.close('}');
    json.end_line();
    json.flush();
}

}  // namespace bradep

#include "json_line.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <list>
#include <streambuf>
#include <string>
#include <string_view>

#include <sml/bindings/bindings.hpp>
#include <sml/core/decimal_point.hpp>
#include <sml/inspect/dump.hpp>
#include "printable.hpp"

namespace bradep {
namespace {

using sarif::Place;
using sarif::Result;
using sarif::Text;

// JSON on its way out. Results share their texts, so that a line can be far longer than all of its
// set: it is never held as a whole.
class Json_Output {
public:
    explicit Json_Output(std::ostream& out) : out_(out) {}

    Json_Output& operator<<(std::string_view json) {
        json_ += json;
        if (json_.size() >= flushed_at) flush();
        return *this;
    }

    void flush() {
        out_ << json_;
        json_.clear();
    }

private:
    static constexpr std::size_t flushed_at = std::size_t{1} << 16;

    std::ostream& out_;
    std::string   json_;
};

void write(Json_Output& out, std::string const& text) { out << json_string(text); }
void write(Json_Output& out, Text const& text) { write(out, text.str()); }
void write(Json_Output& out, std::int32_t number) { out << std::to_string(number); }

class Json_Object {
public:
    explicit Json_Object(Json_Output& out) : out_(out) { out_ << "{"; }
    void end() { out_ << "}"; }

    // The value is to come.
    Json_Output& member(std::string const& name) {
        out_ << (is_empty_ ? "" : ",");
        is_empty_ = false;
        write(out_, name);
        return out_ << ":";
    }
    template <typename T>
    void add(char const* name, std::optional<T> const& value) {
        if (value) add(name, *value);
    }
    void add(char const* name, Text const& value) { write(member(name), value); }
    void add(char const* name, std::int32_t value) { write(member(name), value); }

private:
    Json_Output& out_;
    bool         is_empty_ = true;
};

template <typename List, typename Write>
void write_list(Json_Output& out, List const& list, Write const& write_element) {
    char const* comma = "";
    out << "[";
    for (auto const& element : list) {
        out << comma;
        write_element(out, element);
        comma = ",";
    }
    out << "]";
}

template <typename List, typename Write>
void add_list(Json_Object& object, char const* name, List const& list, Write const& write_element) {
    if (!list.empty()) write_list(object.member(name), list, write_element);
}

void add_place(Json_Object& object, Place const& place) {
    object.add("uri", place.uri);
    object.add("base", place.base);
    object.add("line", place.line);
    object.add("column", place.column);
    object.add("endLine", place.end_line);
    object.add("endColumn", place.end_column);
}

void write_place(Json_Output& out, Place const& place) {
    Json_Object object(out);
    add_place(object, place);
    object.end();
}

void write_related(Json_Output& out, sarif::Related_Place const& related) {
    Json_Object object(out);
    object.add("id", related.id);
    add_place(object, related.place);
    object.add("message", related.message);
    object.end();
}

void write_step(Json_Output& out, sarif::Step const& step) {
    auto const  place = step.place.value_or(Place{});
    Json_Object object(out);
    object.add("uri", place.uri);
    object.add("line", place.line);
    object.add("column", place.column);
    object.add("message", step.message);
    object.end();
}

void write_thread(Json_Output& out, sarif::Thread_Flow const& thread) {
    write_list(out, thread, write_step);
}

void write_flow(Json_Output& out, sarif::Code_Flow const& flow) {
    write_list(out, flow, write_thread);
}

void write_suppression(Json_Output& out, sarif::Suppression const& suppression) {
    Json_Object object(out);
    object.add("kind", suppression.kind);
    object.add("status", suppression.status);
    object.end();
}

// A log may use one name in both families; the complete fingerprint is the stronger one.
void add_fingerprints(Json_Object& line, Result const& result) {
    auto all = result.fingerprints;
    all.insert(result.partial_fingerprints.begin(), result.partial_fingerprints.end());
    if (all.empty()) return;
    Json_Object object(line.member("fingerprints"));
    for (auto const& [name, value] : all) write(object.member(name.str()), value);
    object.end();
}

void add_key(Json_Object& line, Numbered_Key const& key) {
    auto& json = line.member("key") << "[";
    write(json, key.first);
    write(json << ",", key.second);
    json << "]";
}

// Hands on what stands between the first and the last so many bytes.
class Inner_Bytes : public std::streambuf {
public:
    Inner_Bytes(std::ostream& out, std::size_t before, std::size_t behind)
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

// The set has been verified, so that no limit is needed any more.
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

// A category stands in no bytes of its own, only in those of a root.
void write_category(std::ostream& out, sml::Checks::T_Check_Category const& category) {
    constexpr char const* stem = "Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T";
    constexpr char const* path = "[0].1.category";
    std::list<std::pair<std::int32_t, Check_Form>> forms(1);
    forms.front().second.category = category;
    auto const& bytes = sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_fromCxx(forms);

    auto const before =
        R"({"root":")" + std::string(stem) + R"(","path":")" + path + R"(","value":)";
    constexpr std::string_view behind = "}\n";
    Inner_Bytes                inner(out, before.size(), behind.size());
    std::ostream               stream(&inner);
    dump(*sml::inspect::find_root(stem), bytes, stream, {.walk = without_limits(), .path = path});
}

}  // namespace

void write_json_line(std::ostream& out, Numbered_Key const* key,
                     sml::Checks::T_Check_Category const& category) {
    Json_Output json(out);
    Json_Object line(json);
    if (key) add_key(line, *key);
    line.member("category");
    json.flush();
    write_category(out, category);
    line.end();
    json << "\n";
    json.flush();
}

void write_json_line(std::ostream& out, Numbered_Key const& key, Result const& result) {
    Json_Output json(out);
    Json_Object line(json);
    add_key(line, key);
    line.add("run", result.run);
    line.add("tool", result.tool);
    line.add("rule", result.rule);
    line.add("level", result.level);
    line.add("kind", result.kind);
    line.add("baselineState", result.baseline_state);
    add_list(line, "suppressions", result.suppressions, write_suppression);
    line.add("message", result.message);
    add_list(line, "locations", result.locations, write_place);
    add_list(line, "related", result.related, write_related);
    add_list(line, "flows", result.flows, write_flow);
    add_fingerprints(line, result);
    line.end();
    json << "\n";
    json.flush();
}

}  // namespace bradep

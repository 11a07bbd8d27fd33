#include <report/writer/report_writer.hpp>

#include <sml/inspect/text/json_text.hpp>
#include <sml/inspect/text/json_writer.hpp>

#include <algorithm>
#include <functional>
#include <sstream>
#include <type_traits>
#include <utility>

namespace bradep::report {

using sml::inspect::append_json_integer;
using sml::inspect::append_json_string;
using sml::inspect::JsonWriter;
using sml::inspect::StrayByte;

namespace {

constexpr std::int64_t format = 1;
constexpr std::size_t  chunk_size = 64;

constexpr std::array<std::string_view, text_columns> names_of_texts = {
    "tool", "rule", "level", "kind", "category", "class", "message", "uri", "function", "state"};

/// The bytes that the largest value of a column needs.
struct Width {
    char const* name;
    int         bytes;
};

Width width_of(std::vector<std::uint32_t> const& values) {
    auto const largest = values.empty() ? 0 : *std::ranges::max_element(values);
    if (largest <= 0xFF) return {"u8", 1};
    if (largest <= 0xFFFF) return {"u16", 2};
    return {"u32", 4};
}

void append_values(std::string& bytes, std::vector<std::uint32_t> const& values, Width width) {
    for (std::uint32_t const value : values)
        for (int byte = 0; byte < width.bytes; ++byte)
            bytes += static_cast<char>(value >> 8 * byte & 0xFF);
}

template <class Texts>
void add_texts(JsonWriter& json, Texts const& texts) {
    json.open('[');
    for (std::string const& text : texts) {
        json.next();
        json.string(text);
    }
    json.close(']');
}

template <class Number>
void add_number(JsonWriter& json, std::string_view name, Number value) {
    json.member(name);
    using Wide = std::conditional_t<std::is_signed_v<Number>, std::int64_t, std::uint64_t>;
    append_json_integer(json.text, Wide{value});
}

template <class Numbers>
void add_numbers(JsonWriter& json, std::string_view name, Numbers const& numbers) {
    json.member(name);
    json.open('{');
    for (auto const& [key, number] : numbers) add_number(json, key, number);
    json.close('}');
}

void add_sets(JsonWriter& json, std::string_view name, std::vector<ReportedSet> const& sets) {
    json.member(name);
    json.open('[');
    for (ReportedSet const& set : sets) {
        json.next();
        json.open('{');
        json.string_member("name", set.name);
        add_number(json, "bytes", set.bytes);
        json.close('}');
    }
    json.close(']');
}

void add_history(JsonWriter& json, std::vector<SeriesRun> const& runs) {
    json.member("history");
    json.open('[');
    for (SeriesRun const& run : runs) {
        json.next();
        json.open('{');
        add_number(json, "run", run.number);
        json.string_member("name", run.name);
        add_number(json, "findings", run.findings);
        add_number(json, "open", run.open);
        add_number(json, "new", run.added);
        add_number(json, "returned", run.returned);
        add_number(json, "fixed", run.fixed);
        json.close('}');
    }
    json.close(']');
}

template <class Write>
std::string json_of(Write const& write) {
    std::ostringstream text;
    JsonWriter         json(text, false, StrayByte::replaced);
    write(json);
    json.flush();
    return std::move(text).str();
}

}  // namespace

std::uint32_t ReportWriter::add_run(std::string_view json) {
    runs_ += run_count_ == 0 ? "[" : ",";
    runs_ += json;
    return run_count_++;
}

void ReportWriter::add(FindingColumns const& finding, std::string_view details) {
    details_ += findings_.size() % chunk_size == 0 ? '[' : ',';
    details_ += details;
    findings_.push_back(finding);
    if (findings_.size() % chunk_size == 0) flush_details();
}

void ReportWriter::flush_details() {
    auto const number = (findings_.size() - 1) / chunk_size;
    details_ += ']';
    queue_.add("details-" + std::to_string(number), std::exchange(details_, {}));
}

void ReportWriter::add_source(std::string_view uri, std::string_view text) {
    sources_.emplace(uri, add_source_chunk(json_of([&](JsonWriter& json) {
                         json.open('{');
                         json.string_member("uri", uri);
                         json.string_member("text", text);
                         json.close('}');
                     })));
}

// All files that are left out for one reason share a chunk.
void ReportWriter::skip_source(std::string_view uri, std::string_view reason) {
    auto const [known, is_new] = skipped_.try_emplace(std::string(reason));
    ++known->second.files;
    if (is_new)
        known->second.chunk = add_source_chunk(json_of([&](JsonWriter& json) {
            json.open('{');
            json.string_member("skipped", reason);
            json.close('}');
        }));
    sources_.emplace(uri, known->second.chunk);
}

std::uint32_t ReportWriter::add_source_chunk(std::string content) {
    queue_.add("source-" + std::to_string(source_chunks_), std::move(content));
    return source_chunks_++;
}

template <class Value>
void ReportWriter::add_column(std::string_view name, Value const& value, Columns& columns) const {
    std::vector<std::uint32_t> values;
    values.reserve(findings_.size());
    for (FindingColumns const& one : findings_) values.push_back(value(one));
    Width const width = width_of(values);
    append_values(columns.bytes, values, width);
    columns.types.emplace_back(name, width.name);
}

ReportWriter::Columns ReportWriter::columns(bool has_identities) const {
    Columns all;
    add_column("run", std::mem_fn(&FindingColumns::run), all);
    for (std::size_t i = 0; i < text_columns; ++i)
        add_column(
            names_of_texts[i], [&](FindingColumns const& one) { return one.texts[i]; }, all);
    add_column("line", std::mem_fn(&FindingColumns::line), all);
    add_column("column", std::mem_fn(&FindingColumns::column), all);
    add_column("suppressed", std::mem_fn(&FindingColumns::is_suppressed), all);
    if (has_identities) add_column("identity", std::mem_fn(&FindingColumns::identity), all);
    return all;
}

void ReportWriter::add_dictionaries(JsonWriter& json) const {
    json.member("dictionaries");
    json.open('{');
    for (std::size_t i = 0; i < text_columns; ++i) {
        if (i == static_cast<std::size_t>(TextColumn::message)) continue;
        json.member(names_of_texts[i]);
        add_texts(json, dictionaries_[i].texts());
    }
    json.close('}');
}

void ReportWriter::add_sources(JsonWriter& json) const {
    json.member("source");
    json.open('{');
    add_numbers(json, "files", sources_);
    std::map<std::string, std::uint64_t> files;
    for (auto const& [reason, skipped] : skipped_) files.emplace(reason, skipped.files);
    add_numbers(json, "skipped", files);
    json.close('}');
}

std::string ReportWriter::index(Description const& description, Columns const& columns) const {
    return json_of([&](JsonWriter& json) {
        json.open('{');
        add_number(json, "format", format);
        json.string_member("title", description.title);
        add_sets(json, "sets", description.sets);
        if (description.old_sets) add_sets(json, "old_sets", *description.old_sets);
        add_number(json, "findings", findings_.size());
        add_number(json, "chunk_size", chunk_size);
        json.member("columns");
        json.open('[');
        for (auto const& [name, type] : columns.types) {
            json.next();
            json.open('{');
            json.string_member("name", name);
            json.string_member("type", type);
            json.close('}');
        }
        json.close(']');
        add_dictionaries(json);
        if (has_sources_) add_sources(json);
        if (description.history) add_history(json, *description.history);
        json.close('}');
    });
}

void ReportWriter::finish(Description const& description) {
    if (!details_.empty()) flush_details();
    auto       all = columns(description.has_identities);
    auto const index_text = index(description, all);
    queue_.add("columns", std::exchange(all.bytes, {}));
    queue_.add("runs", run_count_ == 0 ? "[]" : std::exchange(runs_, {}) + ']');
    auto const& messages = dictionaries_[static_cast<std::size_t>(TextColumn::message)].texts();
    queue_.add("messages", json_of([&](JsonWriter& json) { add_texts(json, messages); }));
    queue_.add("index", index_text);
    queue_.finish();
}

}  // namespace bradep::report

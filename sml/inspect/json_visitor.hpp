#pragma once
// Writes the events of a walk as JSON, as `dump` prints it.

#include <sml/inspect/dump.hpp>
#include <sml/inspect/finding.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/inspect/text/json_writer.hpp>
#include <sml/inspect/type.hpp>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <utility>

namespace sml::inspect {

/// Writes each event as JSON.
class JsonVisitor {
public:
    JsonVisitor(std::ostream& out, DumpOptions::Form form, Budget& budget)
        : budget_(budget),
          json_(out, form == DumpOptions::Form::pretty),
          in_lines_(form == DumpOptions::Form::lines) {}

    void start(Root const& root, std::string_view path) {
        if (in_lines_) return;
        json_.open('{');
        json_.string_member("root", root.stem);
        if (!path.empty()) json_.string_member("path", path);
        json_.member("value");
    }

    void flush() { json_.flush(); }

    void finish(Finding const* behind_value) {
        if (in_lines_) return;
        if (behind_value != nullptr) {
            json_.member("unsafe");
            write_unsafe(*behind_value);
        }
        json_.close('}');
        json_.end_line();
    }

    /// Writes an unsafe finding in place of a value.
    void mark(Finding const& finding) {
        json_.open('{');
        json_.member("unsafe");
        write_unsafe(finding);
        json_.close('}');
        if (in_lines_ && depth_ == 0) json_.end_line();
    }

    /// Writes it in place of an entry of the open container.
    void mark_entry(Finding const& finding) {
        begin_entry();
        mark(finding);
    }

    void integer(Type const& type, std::int64_t value) { put(value, type.kind == Kind::int64); }
    void natural(Type const& type, std::uint64_t value) { put(value, type.kind == Kind::uint64); }
    void flag(bool value) { json_.text += value ? "true" : "false"; }
    void number(double value) { append_json_double(json_.text, value); }
    void string(std::string_view value) { json_.string(value); }
    void text(std::string_view value) { json_.string(value); }

    void big_integer(std::string_view hexadecimal) {
        Budget::Hold const held(budget_, memory_for_conversion(hexadecimal.size()));
        json_.text += '"';
        append_decimal(json_.text, hexadecimal);
        json_.text += '"';
    }

    void ieee_float(std::string_view value, std::int32_t width) {
        json_.open('{');
        json_.member("width");
        append_json_integer(json_.text, std::int64_t{width});
        json_.string_member("hex", value);
        json_.close('}');
    }

    void enumeration(Type const& type, std::int32_t value) {
        if (type.has_tag(value))
            append_json_string(json_.text, type.enumerators[static_cast<std::size_t>(value)]);
        else
            append_json_integer(json_.text, std::int64_t{value});
    }

    void absent(Type const&) {
        if (!in_lines_ || depth_ > 0) json_.text += "null";
    }
    void present(Type const&) {}

    void begin(Type const& type, std::uint64_t) {
        if (++depth_ > 1 || !in_lines_) json_.open(has_names(type) ? '{' : '[');
    }

    void part(Type const& type, std::uint64_t index) {
        if (has_names(type)) return json_.member(type.parts[index].name);
        begin_entry();
        if (type.kind != Kind::map) return;
        json_.open('[');
        json_.next();
    }

    void entry_value(Type const&) { json_.next(); }
    void end_entry(Type const&) { json_.close(']'); }

    void end(Type const& type) {
        if (--depth_ > 0 || !in_lines_)
            json_.close(has_names(type) ? '}' : ']');
        else if (line_is_open_)
            json_.end_line();
    }

    void begin_variant(Type const& type, std::int32_t tag, Arm const*) {
        json_.open('{');
        json_.member("arm");
        if (type.has_tag(tag))
            return append_json_string(json_.text, type.arms[static_cast<std::size_t>(tag)].name);
        json_.text += "null";
        json_.member("tag");
        append_json_integer(json_.text, std::int64_t{tag});
    }

    void payload(Type const&) { json_.member("args"); }
    void end_variant(Type const&) { json_.close('}'); }

    void reference(Type const& type, std::int32_t tag, std::uint64_t word) {
        begin_variant(type, tag, nullptr);
        payload(type);
        if (type.is_signed_word(tag))
            put(static_cast<std::int64_t>(word), true);
        else
            put(word, true);
        end_variant(type);
    }

private:
    static bool has_names(Type const& type) {
        return type.kind == Kind::record || type.kind == Kind::group;
    }

    void write_unsafe(Finding const& finding) {
        json_.open('{');
        json_.member("offset");
        append_json_integer(json_.text, finding.offset);
        json_.string_member("expected", finding.expected);
        json_.string_member("found", finding.found);
        json_.close('}');
    }

    void begin_entry() {
        if (depth_ > 1 || !in_lines_)
            json_.next();
        else if (std::exchange(line_is_open_, true))
            json_.end_line();
    }

    template <class Number>
    void put(Number value, bool in_quotes) {
        if (in_quotes) json_.text += '"';
        append_json_integer(json_.text, value);
        if (in_quotes) json_.text += '"';
    }

    Budget&     budget_;
    JsonWriter  json_;
    bool        in_lines_;
    bool        line_is_open_ = false;
    std::size_t depth_ = 0;
};

}  // namespace sml::inspect

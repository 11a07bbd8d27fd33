#include "sarif/log_writer.hpp"

#include <sml/inspect/text/json_writer.hpp>
#include "json_input.hpp"
#include "sarif/schema.hpp"
#include "signals.hpp"

#include <string>
#include <utility>

namespace bradep::sarif {

namespace {

using sml::inspect::JsonWriter;
using sml::inspect::StrayByte;

constexpr char const* start_of_log =
    R"({"$schema":"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json",)"
    R"("version":"2.1.0","runs":[)";

}  // namespace

void write_value(JsonWriter& json, json::value const& value) {
    if (auto const* const object = value.if_object()) {
        json.open('{');
        for (auto const& [name, member] : *object) {
            json.member(name);
            write_value(json, member);
        }
        json.close('}');
    } else if (auto const* const list = value.if_array()) {
        json.open('[');
        for (auto const& element : *list) {
            json.next();
            write_value(json, element);
        }
        json.close(']');
    } else if (auto const* const text = value.if_string()) {
        json.string(*text);
    } else {
        json_input::append_json_scalar(json.text, value);
    }
}

void LogWriter::add(LogSource const& source) {
    for (std::size_t number = 0; number < source.runs(); ++number) add_run(source, number);
}

void LogWriter::add_run(LogSource const& source, std::size_t number) {
    JsonWriter json(out_, false, StrayByte::replaced);
    json.text += runs_ == 0 ? start_of_log : ",";
    json.text += '\n';
    auto const  pointer = "/runs/" + std::to_string(runs_++);
    json::value run = source.run(number);
    make_fit(run, schema::run, pointer, left_out_);
    json.open('{');
    for (auto const& [name, value] : run.get_object()) {
        json.member(name);
        write_value(json, value);
    }
    json.member("results");
    json.open('[');
    std::size_t results = 0;
    source.results(number, [&](std::string const&, json::object&& object) {
        Interruption::check();
        json::value result = std::move(object);
        if (!make_fit(result, schema::result, pointer + "/results/" + std::to_string(results++),
                      left_out_))
            return;
        json.next();
        json.text += '\n';
        write_value(json, result);
    });
    json.close(']');
    json.close('}');
    json.flush();
}

void LogWriter::finish() {
    if (runs_ == 0) out_ << start_of_log;
    out_ << "\n]}\n";
}

}  // namespace bradep::sarif

#pragma once
// Results as JSON objects in the form of a log, by the rows in fields.hpp.

#include "json_cursor.hpp"
#include "sarif/result.hpp"

#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// Makes the objects. Throws DamagedInput if the texts of one have more than `most` bytes: what a
/// set holds once, a result can have many times.
class ResultJson {
public:
    explicit ResultJson(std::uint64_t most) : most_(most) {}

    /// The result, without a reference to the descriptor of its rule.
    json::object object_of(Result const& result);

    /// Adds properties that are kept as JSON text, by pointer. What leads nowhere becomes a member
    /// whose name is the pointer, and a text that is no JSON a string: neither is SARIF.
    void add_kept(json::object& object, More const& more);

    /// The value that the text spells, else the text as a string.
    json::value value_of_text(std::string_view text);

    /// Must be called before each object.
    void start() { taken_ = 0; }

private:
    template <class Row, class Part>
    void add_row(json::object& object, Row const& row, Part const& part);
    template <class Rows, class Part>
    void add_rows(json::object& object, Rows const& rows, Part const& part);
    void add_more(json::object& object, KeptJson const& more);

    json::value value_of(std::int32_t number) { return number; }
    json::value value_of(Text const& text);
    json::value value_of(Fingerprints const& fingerprints);
    json::value value_of(Place const& place);
    json::value value_of(Step const& step);
    json::value value_of(ThreadFlow const& flow);
    json::value value_of(CodeFlow const& flow);
    template <class T>
    json::value value_of(std::vector<T> const& elements);
    template <class Part>
    json::value value_of(Part const& part);
    template <class T>
    void add(json::object& object, std::string_view path, T const& value);
    template <class T>
    void add(json::object& object, std::string_view path, std::optional<T> const& value);

    void spend(std::size_t bytes);

    std::uint64_t           most_;
    std::uint64_t           taken_ = 0;
    json_input::ValueParser parser_;
};

}  // namespace bradep::sarif

#pragma once
// Parses JSON and reads members of objects. A value that is absent or null is returned as null or
// as an empty optional; a value of a wrong type throws a Misfit.

#include <sml/inspect/text/json_text.hpp>

#include <boost/json.hpp>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bradep::json_input {

namespace json = boost::json;

/// Thrown for a value that does not fit. `where` must point into a value that is being read.
struct Misfit {
    json::value const* where;
    std::string        what;
};

/// A parsed document. It owns its values in one arena, so that destroying a deeply nested one needs
/// no deep stack.
class Document {
public:
    /// Throws DamagedInput with `name:line:column`. Lines and columns (in characters) count from 1.
    /// The number of bytes parsed so far is stored into `done` now and then.
    Document(std::string_view text, std::string const& name,
             std::atomic<std::uint64_t>* done = nullptr);

    json::value const& root() const { return root_; }

private:
    json::monotonic_resource arena_;
    json::value              root_;
};

/// The JSON pointer from `root` to a value in it, by address; none if it is not in it.
std::optional<std::string> pointer_below(json::value const& root, json::value const& wanted);

json::value const*          member(json::value const& object, std::string_view name);
json::array const*          list(json::value const& object, std::string_view name);
std::optional<std::string>  text(json::value const& object, std::string_view name);
std::optional<std::int32_t> number(json::value const& object, std::string_view name);

/// A name as a token of a JSON pointer.
std::string escaped_token(std::string_view name);

/// The value as an integer, if it is one that is exact: 12 and 12.0 are the same in JSON.
std::optional<std::int64_t> integer(json::value const& value);

/// Appends a value that is no container. Whole numbers have neither point nor exponent.
void append_json_scalar(std::string& text, json::value const& value,
                        sml::inspect::StrayByte stray = sml::inspect::StrayByte::kept);

/// An index, or none if it is absent or -1, which is "no index" in SARIF. Throws Misfit for other
/// negative numbers.
std::optional<std::size_t> index(json::value const& object, std::string_view name);

std::string text_of(json::value const& value);

/// The same without a copy: the views point into the document.
std::optional<std::string_view> view(json::value const& object, std::string_view name);
std::string_view                view_of(json::value const& value);

// The same for values that need not fit: what is absent, null or of a wrong type is null. So may
// the arguments be.

json::value const*              found(json::value const* object, std::string_view name);
json::array const*              found_list(json::value const* object, std::string_view name);
std::optional<std::string_view> found_text(json::value const* object, std::string_view name);
json::value const*              element(json::array const* list, std::size_t at);
/// The element whose index is a value of the document.
json::value const* indexed(json::array const* list, json::value const* index);

}  // namespace bradep::json_input

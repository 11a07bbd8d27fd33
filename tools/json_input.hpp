#pragma once
// Parsing JSON and taking it apart: a value that is absent or null is none, one of a wrong type is
// a Misfit.

#include <boost/json.hpp>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bradep::json_input {

namespace json = boost::json;

/// `where` must lie in the document that is being read.
struct Misfit {
    json::value const* where;
    std::string        what;
};

/// A document owns its values in one arena, so that taking down a deep one needs no deep stack.
class Document {
public:
    /// Throws DamagedInput with `name:line:column`. Lines and columns (in characters) count from 1.
    /// `done` is told how many bytes have been parsed, now and then.
    Document(std::string_view text, std::string const& name,
             std::atomic<std::uint64_t>* done = nullptr);

    json::value const& root() const { return root_; }

    /// The JSON pointer of a value of this document.
    std::string pointer_to(json::value const& value) const;

private:
    json::monotonic_resource arena_;
    json::value              root_;
};

json::value const*          member(json::value const& object, std::string_view name);
json::array const*          list(json::value const& object, std::string_view name);
std::optional<std::string>  text(json::value const& object, std::string_view name);
std::optional<std::int32_t> number(json::value const& object, std::string_view name);

/// An index of -1 says "no index" in SARIF and is none here.
std::optional<std::size_t> index(json::value const& object, std::string_view name);

std::string text_of(json::value const& value);

/// The same without a copy: a view into the document.
std::optional<std::string_view> view(json::value const& object, std::string_view name);
std::string_view                view_of(json::value const& value);

}  // namespace bradep::json_input

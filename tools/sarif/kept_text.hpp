#pragma once
// The JSON text of a property that is kept as such.

#include "sarif/run_lists.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace bradep::sarif {

/// Thrown if what indices lead to has more bytes than a value may take.
struct TooMuchResolved {};

/// Appends texts of values without blanks, with whole numbers without point and exponent. What has
/// an index stands without it and with what the index leads to, as another log has other lists. A
/// message that has only an id gets the text. Property bags stand as they are. A tool component
/// stands without its rules, and with those of its taxa and notifications that are referred to.
/// Notifications of the level "none" are left out.
class KeptText {
public:
    /// The message strings are those of the rule. The lists must outlive this object. What comes
    /// from elsewhere may have so many bytes in each call.
    KeptText(RunLists& lists, Rule const& rule, std::uint64_t most_resolved)
        : lists_(lists), rule_(rule), most_resolved_(most_resolved) {}

    /// Throws TooMuchResolved.
    void append(std::string& text, schema::Property const& property, json::value const& value);
    void append(std::string& text, schema::Type const& type, json::value const& value);

private:
    struct Names;

    void add(json::value const& value, schema::Type const* type);
    void add(json::value const& value, schema::Property const& property);
    void add_members(json::value const& object, schema::Type const* type, Names const& except);
    void add_object(json::value const& object, schema::Type const* type);
    void add_artifact_location(json::value const& location);
    void add_shared(json::value const& object, schema::Type const& type);
    void add_message(json::value const& message);
    void add_notification(json::value const& notification);
    void add_reference(json::value const& reference);
    void add_component_reference(json::value const& reference);
    void add_component(json::value const& component);
    void add_used(json::value const& component, std::string_view list);
    void add_name(std::string_view name);
    void add_resolved(std::string_view name, json::value const* value);
    void spend(std::uint64_t bytes);
    void separate();

    RunLists&     lists_;
    Rule          rule_;
    std::uint64_t most_resolved_;
    std::string*  text_ = nullptr;
    std::uint64_t resolved_ = 0;
    /// The list that references to descriptors lead to at present.
    std::string_view descriptors_ = "taxa";
};

}  // namespace bradep::sarif

#pragma once
// The lists of a run that its values refer to, and what their references lead to.

#include "json_input.hpp"
#include "sarif/schema.hpp"

#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep::sarif {

namespace json = boost::json;

/// The descriptor of a rule, a taxon or a notification, and the tool component that defines it.
/// Either may be null.
struct Rule {
    json::value const* descriptor = nullptr;
    json::value const* component = nullptr;
};

/// All members return null for a reference that leads nowhere.
class RunLists {
public:
    /// Keeps pointers into the run, which must outlive this object.
    explicit RunLists(json::value const& run);

    json::value const* driver() const { return driver_; }
    json::array const* extensions() const { return extensions_; }
    json::array const* taxonomies() const { return taxonomies_; }
    json::value const* artifact(json::value const* index) const;
    /// What the index of such an object leads to. Only the members that the object does not have
    /// itself are taken from there.
    json::value const* shared(schema::Type const& type, json::value const& object) const;

    /// The component that a toolComponentReference refers to; without one, the driver. A GUID that
    /// a component has decides alone. An index may be one of the taxonomies of the run or of the
    /// tool's extensions: it is that of the list where it has the name that the reference gives,
    /// else of the first that is long enough.
    json::value const* component(json::value const* reference) const;

    /// What a reportingDescriptorReference refers to, in one of these lists of its component.
    Rule referred(json::value const& reference, std::initializer_list<std::string_view> lists);

    /// Notes that a descriptor is referred to, and those that its relationships lead to.
    void use(json::value const* descriptor);
    bool is_used(json::value const& descriptor) const { return used_.contains(&descriptor); }

    /// The message string with this id, of the rule or of its component, else of the driver.
    json::value const* message_string(std::string_view id, Rule const& rule) const;

private:
    using ByText = std::map<std::string_view, json::value const*>;

    void               add_component(json::value const& component);
    json::value const* by_id(json::array const& list, std::string_view id);
    json::value const* driver_ = nullptr;
    json::array const* artifacts_;
    json::array const* extensions_ = nullptr;
    json::array const* taxonomies_;
    std::map<schema::Type const*, json::array const*> shared_;
    ByText                                            by_guid_;
    ByText                                            by_name_;
    std::map<json::array const*, ByText>              by_id_;
    std::set<json::value const*>                      used_;
};

}  // namespace bradep::sarif

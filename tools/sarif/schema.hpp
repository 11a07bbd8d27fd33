#pragma once
// What SARIF 2.1.0 allows: the properties of each object and their types, without those that are
// neither read nor written, such as the contents of artifacts and graphs.

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace bradep::sarif::schema {

struct Property;

enum class Kind { boolean, integer, number, text, object };

struct Type {
    Kind                      kind;
    std::span<Property const> properties = {};  ///< of an object, by name
    /// The only values of a text, if there are any; of an object, properties of which it must have
    /// at least one.
    std::span<std::string_view const> words = {};
    std::int64_t                      least = std::numeric_limits<std::int64_t>::min();
    std::int64_t                      most = std::numeric_limits<std::int64_t>::max();
    bool (*fits)(std::string_view text) = nullptr;  ///< if given, must hold for a text
    bool is_open = false;                           ///< whether an object may have others, too

    /// Null if the object has no property of this name.
    Property const* property(std::string_view name) const;
};

enum class Shape {
    one,
    list,
    map  ///< an object whose members have any name
};

/// Flags of a property.
enum Demand : unsigned {
    required = 1,
    unique = 2,    ///< a list has no two equal elements
    not_empty = 4  ///< nor is it empty
};

struct Property {
    constexpr Property(std::string_view its_name, Type const& its_type,
                       Shape its_shape = Shape::one, unsigned its_demands = 0)
        : name(its_name), type(&its_type), shape(its_shape), demands(its_demands) {}

    std::string_view name;
    Type const*      type;
    Shape            shape;
    unsigned         demands;
};

/// A property bag. What it holds is of no type, but for its tags.
extern Type const bag;
extern Type const address;
extern Type const artifact_change;
extern Type const artifact_content;
extern Type const artifact_location;
extern Type const attachment;
extern Type const code_flow;
extern Type const configuration_override;
extern Type const conversion;
extern Type const exception;
extern Type const fix;
extern Type const invocation;
extern Type const location;
extern Type const location_relationship;
extern Type const logical_location;
extern Type const message;
extern Type const multiformat_message_string;
extern Type const notification;
extern Type const physical_location;
extern Type const rectangle;
extern Type const region;
extern Type const replacement;
extern Type const reporting_configuration;
extern Type const reporting_descriptor;
extern Type const reporting_descriptor_reference;
extern Type const reporting_descriptor_relationship;
extern Type const result;
extern Type const result_provenance;
extern Type const run;
extern Type const run_automation_details;
extern Type const special_locations;
extern Type const stack;
extern Type const stack_frame;
extern Type const suppression;
extern Type const thread_flow;
extern Type const thread_flow_location;
extern Type const tool;
extern Type const tool_component;
extern Type const tool_component_reference;
extern Type const translation_metadata;
extern Type const version_control_details;
extern Type const web_request;
extern Type const web_response;

}  // namespace bradep::sarif::schema

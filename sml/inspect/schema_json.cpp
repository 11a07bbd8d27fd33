#include <sml/inspect/schema_json.hpp>

#include <sml/inspect/sha256.hpp>
#include <sml/inspect/text/json_writer.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

namespace sml::inspect {

namespace {

constexpr std::array kind_names{
    "int32",  "uint32", "int64",       "uint64",   "bool",      "double", "integer", "float",
    "string", "text",   "enumeration", "optional", "list",      "set",    "map",     "tuple",
    "flags",  "record", "group",       "variant",  "reference", "boxed"};
static_assert(kind_names.size() == static_cast<std::size_t>(Kind::boxed) + 1);

char const* name_of(Kind kind) { return kind_names[static_cast<std::size_t>(kind)]; }

/// Calls `use` with each type of a part, payload, key or element of a type.
template <class Use>
void for_each_inner(Type const& type, Use use) {
    for (Part const& part : type.parts) use(*part.type);
    for (Arm const& arm : type.arms)
        if (arm.payload != nullptr) use(*arm.payload);
    if (type.key != nullptr) use(*type.key);
    if (type.element != nullptr) use(*type.element);
}

using NamedTypes = std::map<std::string_view, Type const*>;

void collect(Type const& type, NamedTypes& found) {
    if (!type.name.empty() && !found.emplace(type.name, &type).second) return;
    for_each_inner(type, [&](Type const& inner) { collect(inner, found); });
}

class SchemaWriter {
public:
    explicit SchemaWriter(std::ostream& out) : json_(out, true) {}

    void write(std::span<Root const> roots) {
        NamedTypes types;
        json_.open('{');
        json_.member("roots");
        json_.open('[');
        for (Root const& root : roots) {
            collect(*root.type, types);
            json_.next();
            write(root);
        }
        json_.close(']');
        json_.member("types");
        json_.open('{');
        for (auto const& [name, type] : types) {
            json_.member(name);
            write_definition(*type);
        }
        json_.close('}');
        json_.close('}');
        json_.end_line();
        json_.flush();
    }

private:
    void write(Root const& root) {
        json_.open('{');
        json_.string_member("stem", root.stem);
        json_.member("type");
        write_use(*root.type);
        json_.string_member("digest", wire_digest(root));
        json_.close('}');
    }

    void write_use(Type const& type) {
        if (!type.name.empty()) return append_json_string(json_.text, type.name);
        switch (type.kind) {
            case Kind::optional:
            case Kind::boxed:
            case Kind::list:
            case Kind::set:
            case Kind::map:
            case Kind::tuple:
            case Kind::flags: break;
            default: return append_json_string(json_.text, name_of(type.kind));
        }
        json_.open('{');
        json_.member(name_of(type.kind));
        write_inner(type);
        if (type.kind == Kind::set || type.kind == Kind::map)
            json_.string_member("held", type.hashed ? "hashed" : "sorted");
        if (type.kind == Kind::map)
            json_.string_member("repeated_key", type.last_wins ? "is read over" : "is dropped");
        json_.close('}');
    }

    void write_inner(Type const& type) {
        if (type.kind == Kind::flags)
            return append_json_integer(json_.text, std::uint64_t{type.flag_count});
        bool const is_one = type.kind != Kind::map && type.kind != Kind::tuple;
        if (is_one) return write_use(*type.element);
        json_.open('[');
        for_each_inner(type, [&](Type const& inner) {
            json_.next();
            write_use(inner);
        });
        json_.close(']');
    }

    void write_definition(Type const& type) {
        json_.open('{');
        json_.string_member("kind", name_of(type.kind));
        if (type.kind == Kind::enumeration)
            write_enumerators(type);
        else if (type.arms.empty())
            write_fields(type);
        else
            write_arms(type);
        json_.close('}');
    }

    void write_enumerators(Type const& type) {
        json_.member("enumerators");
        json_.open('[');
        for (std::string_view const name : type.enumerators) {
            json_.next();
            append_json_string(json_.text, name);
        }
        json_.close(']');
    }

    void write_fields(Type const& type) {
        json_.member("fields");
        json_.open('[');
        for (Part const& part : type.parts) {
            json_.next();
            json_.open('{');
            json_.string_member("name", part.name);
            json_.member("type");
            write_use(*part.type);
            json_.close('}');
        }
        json_.close(']');
    }

    void write_arms(Type const& type) {
        json_.member("arms");
        json_.open('[');
        for (Arm const& arm : type.arms) {
            json_.next();
            json_.open('{');
            json_.member("tag");
            append_json_integer(json_.text, std::int64_t{&arm - type.arms.data()});
            json_.string_member("name", arm.name);
            if (arm.payload != nullptr) {
                json_.member("payload");
                write_use(*arm.payload);
            }
            if (type.has_catch_all && &arm == &type.arms.back()) {
                json_.member("serves_all_other_tags");  // the name that readers of schemas have
                json_.text += "true";
            }
            json_.close('}');
        }
        json_.close(']');
    }

    JsonWriter json_;
};

/// The text of a wire form, in which every type is written out. A type that occurs inside itself is
/// written there as the number of levels up to it.
class WireText {
public:
    std::string text;

    void add(Type const& type) {
        if (type.kind == Kind::boxed) return add(*type.element);
        auto const above = std::ranges::find(open_, &type);
        if (above != open_.end()) {
            text += '^' + std::to_string(open_.end() - above);
            return;
        }
        if (!type.name.empty()) open_.push_back(&type);
        text += type.kind == Kind::group ? "record" : name_of(type.kind);
        if (type.kind == Kind::flags) text += std::to_string(type.flag_count);
        text += '(';
        for (std::string_view const name : type.enumerators) (text += name) += ',';
        for (Part const& part : type.parts) add_named(part.name, part.type);
        for (Arm const& arm : type.arms) add_named(arm.name, arm.payload);
        if (type.key != nullptr) add_named("", type.key);
        if (type.element != nullptr) add_named("", type.element);
        text += type.has_catch_all ? "*)" : ")";
        if (!type.name.empty()) open_.pop_back();
    }

private:
    void add_named(std::string_view name, Type const* type) {
        text += name;
        text += ':';
        if (type != nullptr) add(*type);
        text += ',';
    }

    std::vector<Type const*> open_;
};

}  // namespace

void write_schema(std::span<Root const> roots, std::ostream& out) {
    try {
        SchemaWriter(out).write(roots);
    } catch (OutputEnded const&) {
        // The state of the stream shows it to the caller.
    }
}

std::string wire_digest(Root const& root) {
    WireText wire;
    wire.add(*root.type);
    Sha256 sum;
    sum.add(wire.text);
    return sum.hexadecimal();
}

std::string type_text(Type const& type) {
    if (!type.name.empty()) return std::string(type.name);
    if (type.kind == Kind::boxed) return type_text(*type.element);
    std::string text = name_of(type.kind);
    if (type.kind == Kind::flags) return text + " of " + std::to_string(type.flag_count);
    char separator = '<';
    for_each_inner(type, [&](Type const& inner) {
        text += separator;
        if (separator == ',') text += ' ';
        text += type_text(inner);
        separator = ',';
    });
    return separator == ',' ? text + '>' : text;
}

}  // namespace sml::inspect

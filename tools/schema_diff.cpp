#include "schema_diff.hpp"

#include <algorithm>
#include <deque>
#include <set>
#include <utility>
#include <variant>

namespace bradep {

namespace {

namespace json = boost::json;
using json_input::Misfit;

constexpr std::string_view inner_kinds[] = {"optional", "boxed", "list", "set",
                                            "map",      "tuple", "flags"};

std::string text(json::value const& object, std::string_view name) {
    if (auto found = json_input::text(object, name)) return *std::move(found);
    throw Misfit{&object, "not a schema: the member \"" + std::string(name) + "\" is missing"};
}

json::array const& list(json::value const& object, std::string_view name) {
    if (auto const* const found = json_input::list(object, name)) return *found;
    throw Misfit{&object, "not a schema: the member \"" + std::string(name) + "\" is missing"};
}

json::value const& part(json::value const& object, std::string_view name) {
    if (auto const* const found = json_input::member(object, name)) return *found;
    throw Misfit{&object, "not a schema: the member \"" + std::string(name) + "\" is missing"};
}

// The parts of a type use: its name or kind and, for a type without a name, the types inside it.
struct Shape {
    std::string                     kind;
    std::vector<json::value const*> inner;
    std::int64_t                    flags = 0;
};

// Returns the kind of a type without a name, and the value of that member.
std::pair<std::string_view, json::value const*> inner_kind_of(json::value const& use) {
    for (std::string_view const kind : inner_kinds)
        if (auto const* const inside = json_input::member(use, kind)) return {kind, inside};
    throw Misfit{&use, "not a schema: no type"};
}

// A boxed value has the same bytes as a value that is not boxed.
json::value const& without_boxes(json::value const& boxed) {
    auto const* use = &boxed;
    while (!use->is_string()) {
        auto const [kind, inside] = inner_kind_of(*use);
        if (kind != "boxed") break;
        use = inside;
    }
    return *use;
}

Shape shape_of(json::value const& boxed) {
    auto const& use = without_boxes(boxed);
    if (auto const* const name = use.if_string()) return {std::string(*name), {}, 0};
    auto const [kind, inside] = inner_kind_of(use);
    Shape shape{std::string(kind), {}, 0};
    if (auto const* const number = inside->if_int64())
        shape.flags = *number;
    else if (auto const* const several = inside->if_array())
        for (json::value const& one : *several) shape.inner.push_back(&one);
    else
        shape.inner.push_back(inside);
    return shape;
}

std::string spelled(json::value const& whole) {
    std::string                                                text;
    std::vector<std::variant<json::value const*, char const*>> left{&whole};  // last is next
    while (!left.empty()) {
        auto const next = left.back();
        left.pop_back();
        if (auto const* const piece = std::get_if<char const*>(&next)) {
            text += *piece;
            continue;
        }
        Shape const shape = shape_of(*std::get<json::value const*>(next));
        text += shape.kind == "flags" ? std::to_string(shape.flags) + " flags" : shape.kind;
        if (shape.inner.empty()) continue;
        left.emplace_back(">");
        for (std::size_t i = shape.inner.size(); i-- > 0;) {
            left.emplace_back(shape.inner[i]);
            left.emplace_back(i == 0 ? "<" : ", ");
        }
    }
    return text;
}

struct Named {
    std::string        name;
    json::value const* type;  // null if there is none
};

std::vector<Named> fields_of(json::value const& definition) {
    std::vector<Named> fields;
    for (json::value const& field : list(definition, "fields"))
        fields.push_back({text(field, "name"), &part(field, "type")});
    return fields;
}

// Arms with their payloads, or enumerators. The index is the tag.
std::vector<Named> tagged_of(json::value const& definition) {
    std::vector<Named> all;
    if (auto const* const enumerators = json_input::list(definition, "enumerators")) {
        for (json::value const& one : *enumerators) all.push_back({json_input::text_of(one), {}});
        return all;
    }
    for (json::value const& arm : list(definition, "arms"))
        all.push_back({text(arm, "name"), json_input::member(arm, "payload")});
    return all;
}

std::string catch_all_arm(json::value const& definition) {
    auto const* const arms = json_input::list(definition, "arms");
    if (arms == nullptr || arms->empty() ||
        json_input::member(arms->back(), "serves_all_other_tags") == nullptr)
        return "none";
    return text(arms->back(), "name");
}

std::vector<Named>::const_iterator find(std::vector<Named> const& all, std::string const& name) {
    return std::ranges::find(all, name, &Named::name);
}

// Compares all types that a root reaches. It uses a queue, not recursion, because a schema may be
// nested as deeply as it is long.
class Comparison {
public:
    Comparison(json::value const& old, json::value const& now)
        : old_types_(part(old, "types")), now_types_(part(now, "types")) {}

    std::vector<std::string> changes;

    // Compares two type uses and all types that they reach. The changes of a type are reported
    // before those of the types inside it.
    void compare_all(json::value const& old, json::value const& now, std::string const& where) {
        compare(old, now, where);
        while (!left_.empty()) {
            auto const next = std::move(left_.front());
            left_.pop_front();
            compare_uses(*next.old, *next.now, next.where);
        }
    }

private:
    struct Uses {
        json::value const* old;
        json::value const* now;
        std::string        where;
    };

    void compare(json::value const& old, json::value const& now, std::string const& where) {
        left_.push_back({&old, &now, where});
    }

    void compare_uses(json::value const& old, json::value const& now, std::string const& where) {
        Shape const       was = shape_of(old);
        Shape const       is = shape_of(now);
        auto const* const old_type = json_input::member(old_types_, was.kind);
        auto const* const now_type = json_input::member(now_types_, is.kind);
        if (old_type != nullptr && now_type != nullptr)
            return compare_named({was.kind, old_type}, {is.kind, now_type}, where);
        if (was.kind == is.kind && (old_type != nullptr || now_type != nullptr))
            throw Misfit{&old, "not a schema: the type " + was.kind + " is missing"};
        if (was.kind != is.kind || was.inner.size() != is.inner.size() || was.flags != is.flags)
            return add_change(where, "was " + spelled(old) + ", is " + spelled(now));
        for (std::size_t i = 0; i < was.inner.size(); ++i)
            compare(*was.inner[i], *is.inner[i], where);
    }

    void add_change(std::string const& where, std::string const& what) {
        changes.push_back(where + ": " + what);
    }

    void compare_named(Named const& old, Named const& now, std::string const& where) {
        if (!compared_.emplace(old.name, now.name).second) return;
        auto const kind_of = [](Named const& type) {
            auto kind = text(*type.type, "kind");
            return kind == "group" ? "record" : kind;
        };
        auto const was = kind_of(old);
        auto const is = kind_of(now);
        if (was != is)
            return add_change(
                where, "was the " + was + " " + old.name + ", is the " + is + " " + now.name);
        if (was == "record")
            compare_fields(now.name, fields_of(*old.type), fields_of(*now.type));
        else
            compare_tagged(now.name, was == "enumeration" ? "enumerator" : "arm", *old.type,
                           *now.type);
    }

    void compare_fields(std::string const& type, std::vector<Named> const& old,
                        std::vector<Named> const& now) {
        std::vector<std::string> kept_before;
        for (Named const& field : old)
            if (find(now, field.name) == now.end())
                add_change(type, "the field " + field.name + " is gone");
            else
                kept_before.push_back(field.name);
        std::vector<std::string> kept_now;
        for (Named const& field : now) {
            auto const was = find(old, field.name);
            if (was == old.end()) {
                add_change(type, "the field " + field.name + " is new");
                continue;
            }
            kept_now.push_back(field.name);
            compare(*was->type, *field.type, type + "." + field.name);
        }
        for (std::size_t i = 0; i < kept_now.size(); ++i)
            if (kept_before[i] != kept_now[i])
                return add_change(
                    type, "the fields from " + kept_before[i] + " on stand in another order");
    }

    void compare_tagged(std::string const& type, std::string const& noun, json::value const& old,
                        json::value const& now) {
        auto const  was = tagged_of(old);
        auto const  is = tagged_of(now);
        std::string moved;
        for (std::size_t tag = 0; tag < was.size(); ++tag) {
            auto const found = find(is, was[tag].name);
            if (found == is.end()) {
                add_change(type, "the " + noun + " " + was[tag].name + " with tag " +
                                     std::to_string(tag) + " is gone");
                continue;
            }
            auto const tag_now = static_cast<std::size_t>(found - is.begin());
            if (tag_now != tag)
                moved += (moved.empty() ? "" : ", ") + was[tag].name + " " + std::to_string(tag) +
                         " -> " + std::to_string(tag_now);
            compare_payloads(type + "." + was[tag].name, was[tag].type, found->type);
        }
        if (!moved.empty()) add_change(type, news(noun, was, is) + "tags move: " + moved);
        compare_catch_all(type, catch_all_arm(old), catch_all_arm(now));
    }

    // The names that are new, which can be why the tags of others have changed.
    static std::string news(std::string const& noun, std::vector<Named> const& was,
                            std::vector<Named> const& is) {
        std::string all;
        for (Named const& one : is)
            if (find(was, one.name) == was.end()) all += (all.empty() ? "" : ", ") + one.name;
        return all.empty() ? "" : "with the new " + noun + " " + all + " ";
    }

    void compare_payloads(std::string const& where, json::value const* old,
                          json::value const* now) {
        if (old != nullptr && now != nullptr) return compare(*old, *now, where);
        if (old != nullptr) add_change(where, "has no payload any more");
        if (now != nullptr) add_change(where, "has a payload now");
    }

    void compare_catch_all(std::string const& type, std::string const& was, std::string const& is) {
        if (was != is) add_change(type, "the catch-all arm was " + was + ", is " + is);
    }

    json::value const&                            old_types_;
    json::value const&                            now_types_;
    std::set<std::pair<std::string, std::string>> compared_;
    std::deque<Uses>                              left_;
};

json::value const* root_with(json::value const& schema, std::string const& stem) {
    for (json::value const& root : list(schema, "roots"))
        if (text(root, "stem") == stem) return &root;
    return nullptr;
}

}  // namespace

std::vector<std::string> breaking_changes(json::value const& old, json::value const& now) {
    Comparison comparison(old, now);
    for (json::value const& root : list(old, "roots")) {
        auto const        stem = text(root, "stem");
        auto const* const same = root_with(now, stem);
        if (same == nullptr)
            comparison.changes.push_back("the root " + stem + " is gone");
        else
            comparison.compare_all(part(root, "type"), part(*same, "type"), "the root " + stem);
    }
    return std::move(comparison.changes);
}

std::vector<std::string> changed_roots(json::value const& old, json::value const& now) {
    std::vector<std::string> stems;
    for (json::value const& root : list(old, "roots")) {
        auto const        stem = text(root, "stem");
        auto const* const same = root_with(now, stem);
        if (same == nullptr || text(*same, "digest") != text(root, "digest")) stems.push_back(stem);
    }
    return stems;
}

}  // namespace bradep

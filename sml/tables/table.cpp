#include <sml/tables/table.hpp>

#include <algorithm>
#include <cctype>
#include <span>
#include <utility>

namespace sml::tables {

using inspect::Kind;
using inspect::Part;
using inspect::Type;

namespace {

constexpr Type flag_type{.kind = Kind::flag, .least_size = 1};

std::string joined(std::string_view a, std::string_view b, std::string_view between) {
    std::string both(a);
    if (!a.empty() && !b.empty()) both += between;
    return both += b;
}

/// Names of parts from the root or the entry, the outermost first.
using Names = std::vector<std::string>;

Names with(Names names, std::string name) {
    names.push_back(std::move(name));
    return names;
}

std::string joined(std::span<std::string const> names, std::string_view between) {
    std::string all;
    for (std::string const& name : names) all = joined(all, name, between);
    return all;
}

class SchemaMaker {
public:
    explicit SchemaMaker(inspect::Root const& root) : schema_{&root, {}} {
        add_table({}, std::nullopt, nullptr);
        add_value(0, *root.type, {});
        complete(0);
        for (std::size_t table = 1; table < schema_.tables.size(); ++table) name(table);
    }

    Schema schema_;

private:
    static constexpr std::string_view between_names = "__";

    std::uint32_t add_table(Names path, std::optional<std::uint32_t> parent,
                            Type const* container) {
        auto const index = static_cast<std::uint32_t>(schema_.tables.size());
        Table&     table = schema_.tables.emplace_back();
        table.name = "root";
        table.path = joined(path, ".");
        table.parent = parent;
        table.container = container;
        paths_.push_back(std::move(path));
        add_column(index, "result_set", Storage::integer, Form::result_set);
        if (container == nullptr) return index;
        add_column(index, "row", Storage::integer, Form::row);
        if (parent == 0u) return index;
        add_column(index, "parent", Storage::integer, Form::parent);
        add_column(index, "position", Storage::integer, Form::position);
        return index;
    }

    void add_column(std::uint32_t table, std::string name, Storage storage, Form form,
                    std::uint32_t value = 0) {
        auto& columns = schema_.tables[table].columns;
        auto  is_taken = [&](Column const& column) { return are_equal_names(column.name, name); };
        while (std::ranges::any_of(columns, is_taken)) name += '_';
        columns.push_back({std::move(name), storage, form, value});
    }

    /// Adds what the entries of a table consist of: a map's key and its value, or an element.
    void complete(std::uint32_t table) {
        Type const* const container = schema_.tables[table].container;
        if (container == nullptr) return;
        open_.push_back(container);
        if (Type const* const key = container->key) add_key(table, *key);
        add_value(table, *container->element, {});
        open_.pop_back();
    }

    void add_key(std::uint32_t table, Type const& key) {
        if (key.kind != Kind::tuple) return add_value(table, key, {"key"});
        for (std::size_t i = 0; i < key.parts.size(); ++i)
            add_value(table, *key.parts[i].type, {"key" + std::to_string(i)});
    }

    void add_value(std::uint32_t table, Type const& type, Names const& names) {
        bool const contains_itself = std::ranges::count(open_, &type) > 0;
        if (contains_itself) return add_json(table, type, names);
        switch (type.kind) {
            case Kind::tuple:
            case Kind::record:
            case Kind::group: return add_parts(table, type, names);
            case Kind::flags: return add_flags(table, type, names);
            case Kind::boxed: return add_value(table, *type.element, names);
            case Kind::optional: return add_optional(table, type, names);
            case Kind::list:
            case Kind::set:
            case Kind::map: return add_child(table, type, names);
            default: return add_leaf(table, type, names);
        }
    }

    void add_parts(std::uint32_t table, Type const& type, Names const& names) {
        open_.push_back(&type);
        for (std::size_t i = 0; i < type.parts.size(); ++i) {
            Part const& part = type.parts[i];
            add_value(
                table, *part.type,
                with(names, part.name.empty() ? "p" + std::to_string(i) : std::string(part.name)));
        }
        open_.pop_back();
    }

    void add_flags(std::uint32_t table, Type const& type, Names const& names) {
        for (std::uint32_t i = 0; i < type.flag_count; ++i)
            add_leaf(table, flag_type, with(names, "p" + std::to_string(i)));
    }

    void add_optional(std::uint32_t table, Type const& type, Names const& names) {
        Type const* element = type.element;
        while (element->kind == Kind::boxed) element = element->element;
        std::uint32_t flag = LayoutStep::none;
        bool const    is_optional = element->kind == Kind::optional;
        bool const    has_own_column = is_optional || element->has_parts() ||
                                    element->is_container() || element->kind == Kind::flags;
        if (has_own_column) {
            flag = add_to(table);
            add_column(table, column_name(names), Storage::integer, Form::flag, flag);
        }
        auto const step = add_step(table, LayoutStep::Kind::optional, type, flag);
        add_value(table, *element, is_optional ? with(names, "value") : names);
        auto& layout = schema_.tables[table].layout;
        layout[step].end = static_cast<std::uint32_t>(layout.size());
    }

    void add_child(std::uint32_t table, Type const& type, Names const& names) {
        Names path = paths_[table];
        if (names.empty()) path.push_back("value");
        path.insert(path.end(), names.begin(), names.end());
        auto const child = add_table(std::move(path), table, &type);
        add_step(table, LayoutStep::Kind::child, type, child);
        complete(child);
    }

    void add_json(std::uint32_t table, Type const& type, Names const& names) {
        add_column(table, column_name(names), Storage::text, Form::json, add_to(table, type));
    }

    void add_leaf(std::uint32_t table, Type const& type, Names const& names) {
        auto const value = add_to(table, type);
        auto const name = column_name(names);
        auto const add = [&](std::string_view suffix, Storage storage, Form form) {
            add_column(table, name + std::string(suffix), storage, form, value);
        };
        switch (type.kind) {
            case Kind::int32:
            case Kind::uint32:
            case Kind::int64: return add("", Storage::integer, Form::integer);
            case Kind::uint64: return add("", Storage::text, Form::word);
            case Kind::flag: return add("", Storage::integer, Form::flag);
            case Kind::enumeration: return add("", Storage::text, Form::enumerator);
            case Kind::string:
            case Kind::text: return add("", Storage::text, Form::text);
            case Kind::variant:
            case Kind::reference:
                add("", Storage::text, Form::arm);
                return add("_args", Storage::text, Form::args);
            case Kind::big_integer:
                add("", Storage::text, Form::decimal);
                return add("_order", Storage::text, Form::order);
            case Kind::number:
                add("", Storage::text, Form::exact);
                return add("_double", Storage::real, Form::nearest);
            case Kind::ieee_float:
                add("", Storage::text, Form::exact);
                add("_width", Storage::integer, Form::width);
                return add("_double", Storage::real, Form::nearest);
            default: __builtin_unreachable();  // these are no leaves
        }
    }

    /// Adds a value to the entries of a table and returns its index.
    std::uint32_t add_to(std::uint32_t table) { return schema_.tables[table].values++; }
    std::uint32_t add_to(std::uint32_t table, Type const& type) {
        auto const value = add_to(table);
        add_step(table, LayoutStep::Kind::value, type, value);
        return value;
    }

    std::uint32_t add_step(std::uint32_t table, LayoutStep::Kind kind, Type const& type,
                           std::uint32_t index) {
        auto& layout = schema_.tables[table].layout;
        layout.push_back({kind, &type, index});
        return static_cast<std::uint32_t>(layout.size()) - 1;
    }

    static std::string column_name(Names const& names) {
        return names.empty() ? "value" : joined(names, between_names);
    }

    /// The name of a child is that of its parent and the path from there. That of another table is
    /// the shortest suffix of its path that is unique among these.
    void name(std::size_t index) {
        Table&      table = schema_.tables[index];
        auto const& path = paths_[index];
        auto const  parent = *table.parent;
        if (parent != 0) {
            auto const own = std::span(path).subspan(paths_[parent].size());
            table.name =
                joined(schema_.tables[parent].name, joined(own, between_names), between_names);
            return;
        }
        std::size_t length = 1;
        while (length < path.size() && !is_unique(index, length)) ++length;
        table.name = joined(std::span(path).last(length), between_names);
        if (table.name == schema_.tables.front().name) table.name += '_';
    }

    bool is_unique(std::size_t index, std::size_t length) const {
        auto const suffix = std::span(paths_[index]).last(length);
        for (std::size_t other = 1; other < paths_.size(); ++other) {
            bool const is_child = *schema_.tables[other].parent != 0;
            if (other == index || is_child || paths_[other].size() < length) continue;
            if (std::ranges::equal(std::span(paths_[other]).last(length), suffix)) return false;
        }
        return true;
    }

    std::vector<Names>       paths_;  // of the tables
    std::vector<Type const*> open_;   // the types around the present one
};

template <class Named>
Named const* find_in(std::vector<Named> const& all, std::string_view name) {
    auto const found = std::ranges::find_if(
        all, [&](Named const& one) { return are_equal_names(one.name, name); });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

Schema schema_of(inspect::Root const& root) { return std::move(SchemaMaker(root).schema_); }

Column const* Table::find(std::string_view column) const { return find_in(columns, column); }
Table const*  Schema::find(std::string_view table) const { return find_in(tables, table); }

bool are_equal_names(std::string_view a, std::string_view b) {
    auto const lower = [](unsigned char c) { return std::tolower(c); };
    return std::ranges::equal(a, b, {}, lower, lower);
}

}  // namespace sml::tables

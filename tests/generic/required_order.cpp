#include "tests/generic/required_order.hpp"

#include "tests/generic/row.hpp"

#include <algorithm>

namespace generic {

namespace {

enum class Order { less, greater, neither };

template <class T>
Order order_of(T const& a, T const& b) {
    if (a < b) return Order::less;
    return b < a ? Order::greater : Order::neither;
}

// The order is by address. The empty text, which has no entry, is before all others.
std::uintptr_t place_of(sml::Strings_T const& handle) {
    return handle.str().empty() ? 0 : reinterpret_cast<std::uintptr_t>(&handle.str());
}

Order order_of_digits(std::string const& a, std::string const& b) {
    return a.size() != b.size() ? order_of(a.size(), b.size()) : order_of(a, b);
}

Order order_of_integers(std::string const& a, std::string const& b) {
    bool const a_is_negative = a[0] == '-';
    bool const b_is_negative = b[0] == '-';
    if (a_is_negative != b_is_negative) return a_is_negative ? Order::less : Order::greater;
    return a_is_negative ? order_of_digits(b, a) : order_of_digits(a, b);
}

Order order_of_floats(zelvanite::IEEE754Float const& a, zelvanite::IEEE754Float const& b) {
    if (mpfr_unordered_p(a.number(), b.number())) return Order::neither;
    if (mpfr_less_p(a.number(), b.number())) return Order::less;
    if (mpfr_greater_p(a.number(), b.number())) return Order::greater;
    return order_of(a.width, b.width);
}

template <class T>
Order order_as(Node const& a, Node const& b) {
    return order_of(a.as<T>(), b.as<T>());
}

Order order_of_leaves(Node const& a, Node const& b) {
    switch (a.kind) {
        case Kind::int32: return order_as<std::int32_t>(a, b);
        case Kind::uint32: return order_as<std::uint32_t>(a, b);
        case Kind::int64: return order_as<std::int64_t>(a, b);
        case Kind::uint64: return order_as<std::uint64_t>(a, b);
        case Kind::flag: return order_as<bool>(a, b);
        case Kind::real: return order_as<double>(a, b);
        case Kind::text: return order_as<std::string>(a, b);
        case Kind::handle:
            return order_of(place_of(a.as<sml::Strings_T>()), place_of(b.as<sml::Strings_T>()));
        case Kind::big_integer:
            return order_of_integers(a.as<sml::BigInteger>().str(), b.as<sml::BigInteger>().str());
        case Kind::ieee_float:
            return order_of_floats(a.as<zelvanite::IEEE754Float>(),
                                   b.as<zelvanite::IEEE754Float>());
        default: return order_of(a.tag, b.tag);
    }
}

bool is_nan(Node const& leaf) {
    if (leaf.kind == Kind::real) return leaf.as<double>() != leaf.as<double>();
    return leaf.kind == Kind::ieee_float &&
           mpfr_nan_p(leaf.as<zelvanite::IEEE754Float>().number()) != 0;
}

bool equal_in_step(std::vector<Node> const& a, std::vector<Node> const& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!required_equal(a[i], b[i])) return false;
    return true;
}

// The part of a hash table that has the same key: an element, or an entry.
Node const* same_key(Node const& table, Node const& part) {
    bool const is_map = table.kind == Kind::hash_map;
    for (Node const& candidate : table.parts) {
        bool const found = is_map ? required_equal(candidate.parts[0], part.parts[0])
                                  : required_equal(candidate, part);
        if (found) return &candidate;
    }
    return nullptr;
}

bool equal_tables(Node const& a, Node const& b) {
    if (a.parts.size() != b.parts.size()) return false;
    for (Node const& part : a.parts) {
        Node const* other = same_key(b, part);
        if (other == nullptr || !required_equal(part, *other)) return false;
    }
    return true;
}

// Compares the parts in their order: the first that is less gives true, the first that is unequal
// gives false.
bool less_part_by_part(std::vector<Node> const& a, std::vector<Node> const& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (required_less(a[i], b[i])) return true;
        if (!required_equal(a[i], b[i])) return false;
    }
    return false;
}

// Compares the elements in their order by `<` in both directions, without `==`.
Order walk(std::vector<Node> const& a, std::vector<Node> const& b) {
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (required_less(a[i], b[i])) return Order::less;
        if (required_less(b[i], a[i])) return Order::greater;
    }
    return Order::neither;
}

bool less_lists(Node const& a, Node const& b) {
    if (a.parts.size() != b.parts.size()) return a.parts.size() < b.parts.size();
    return walk(a.parts, b.parts) == Order::less;
}

bool less_sorted(Node const& a, Node const& b) {
    Order const met = walk(a.parts, b.parts);
    if (met != Order::neither) return met == Order::less;
    return a.parts.size() < b.parts.size();
}

bool less_tables(Node const& a, Node const& b) {
    if (a.parts.size() != b.parts.size()) return a.parts.size() < b.parts.size();
    for (Node const& part : a.parts)
        if (same_key(b, part) == nullptr) return false;
    for (Node const& part : a.parts) {
        Node const& other = *same_key(b, part);
        bool const  is_map = a.kind == Kind::hash_map;
        Node const& left = is_map ? part.parts[1] : part;
        Node const& right = is_map ? other.parts[1] : other;
        if (required_less(left, right)) return true;
        if (required_less(right, left)) return false;
    }
    return false;
}

bool less_optionals(Node const& a, Node const& b) {
    if (a.parts.empty() || b.parts.empty()) return a.parts.size() < b.parts.size();
    return required_less(a.parts[0], b.parts[0]);
}

// Compares a pair by `<` alone: the second decides if the first is neither less nor greater.
bool less_pair_by_less_alone(std::vector<Node> const& a, std::vector<Node> const& b) {
    if (required_less(a[0], b[0])) return true;
    return !required_less(b[0], a[0]) && required_less(a[1], b[1]);
}

bool less_bounds(Node const& a, Node const& b) {
    if (a.parts.empty() || b.parts.empty()) return a.parts.size() < b.parts.size();
    return less_pair_by_less_alone(a.parts[0].parts, b.parts[0].parts);
}

// Compares the format, the bounds and the flag.
bool less_real_full_range(std::vector<Node> const& a, std::vector<Node> const& b) {
    if (required_less(a[0], b[0])) return true;
    if (required_less(b[0], a[0])) return false;
    if (less_bounds(a[1], b[1])) return true;
    if (less_bounds(b[1], a[1])) return false;
    return required_less(a[2], b[2]);
}

// Compares the intervals, then the multiplicity.
bool less_value_range(std::vector<Node> const& a, std::vector<Node> const& b) {
    auto const a_size = a[0].parts.size();
    auto const b_size = b[0].parts.size();
    if (a_size != b_size) return a_size < b_size;
    Order const met = walk(a[0].parts, b[0].parts);
    if (met != Order::neither) return met == Order::less;
    return required_less(a[1], b[1]);
}

bool less_payloads(Node const& a, Node const& b) {
    static Shape const* const value_range = row_named("Infos::T_Value_Range").arms;
    if (a.shape == value_range && a.tag == 1)
        return less_real_full_range(a.parts[0].parts, b.parts[0].parts);
    if (a.shape == value_range && a.tag >= 2)
        return less_value_range(a.parts[0].parts, b.parts[0].parts);
    return required_less(a.parts[0], b.parts[0]);
}

bool less_variants(Node const& a, Node const& b) {
    if (a.tag < b.tag) return true;
    if (a.tag > b.tag || a.tag < 0) return false;
    if (a.shape->arm_behind(a.tag) == -1) return true;
    return less_payloads(a, b);
}

// The word is an identifier, which is signed, in arm 0, and an address in the others.
bool less_references(Node const& a, Node const& b) {
    if (a.tag < b.tag) return true;
    if (a.tag > b.tag || a.tag < 0) return false;
    auto const left = a.parts[1].as<std::uint64_t>();
    auto const right = b.parts[1].as<std::uint64_t>();
    bool const signs_differ = (left ^ right) >> 63 != 0;
    return a.tag == 0 && signs_differ ? left > right : left < right;
}

// Stack escape data is a map of states by handle, and a flag.
bool is_escape_data(Node const& group) {
    return group.parts.size() == 2 && group.parts[0].kind == Kind::sorted_map &&
           group.parts[0].shape->last_wins && group.parts[1].kind == Kind::flag;
}

bool less_groups(Node const& a, Node const& b) {
    if (is_escape_data(a)) return less_pair_by_less_alone(a.parts, b.parts);
    return less_part_by_part(a.parts, b.parts);
}

}  // namespace

bool required_equal(Node const& a, Node const& b) {
    switch (a.kind) {
        case Kind::optional:
        case Kind::box:
        case Kind::group:
        case Kind::record:
        case Kind::list:
        case Kind::sorted_set:
        case Kind::sorted_map: return equal_in_step(a.parts, b.parts);
        case Kind::hash_set:
        case Kind::hash_map: return equal_tables(a, b);
        case Kind::variant:
        case Kind::reference:
            return a.tag == b.tag && a.tag >= 0 && equal_in_step(a.parts, b.parts);
        default: return !is_nan(a) && !is_nan(b) && order_of_leaves(a, b) == Order::neither;
    }
}

bool required_less(Node const& a, Node const& b) {
    switch (a.kind) {
        case Kind::optional: return less_optionals(a, b);
        case Kind::box: return required_less(a.parts[0], b.parts[0]);
        case Kind::group: return less_groups(a, b);
        case Kind::record: return less_part_by_part(a.parts, b.parts);
        case Kind::variant: return less_variants(a, b);
        case Kind::reference: return less_references(a, b);
        case Kind::list: return less_lists(a, b);
        case Kind::sorted_set:
        case Kind::sorted_map: return less_sorted(a, b);
        case Kind::hash_set:
        case Kind::hash_map: return less_tables(a, b);
        default: return order_of_leaves(a, b) == Order::less;
    }
}

}  // namespace generic

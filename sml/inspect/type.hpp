#pragma once
// Descriptors of the schema's types, made from their declarations at compile time.
//
// A descriptor says all that is needed to walk the bytes of a type without building an object.

#include <sml/core/export.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace sml::inspect {

/// How a type stands on the wire.
enum class Kind : std::uint8_t {
    int32,
    uint32,
    int64,
    uint64,
    flag,         ///< one byte, T or F
    number,       ///< a `double` as decimal text
    big_integer,  ///< hexadecimal text
    ieee_float,   ///< hexadecimal float text and a width word
    string,       ///< interned: written in full once, then by id
    text,         ///< a length and bytes
    enumeration,
    optional,
    list,
    set,
    map,
    tuple,   ///< parts without names and without framing
    flags,   ///< a fixed number of flags
    record,  ///< named fields without framing
    group,   ///< the named parts of an arm that has no record of its own
    variant,
    reference,  ///< a tag and one word behind it, whatever the tag
    boxed,      ///< its element, which a reader holds as an object of its own
};

/// Whether values of a kind are words that may have any value.
constexpr bool is_plain_word(Kind kind) noexcept { return kind <= Kind::uint64; }

struct Type;

/// A field of a record, a part of a group, or a part of a tuple.
struct Part {
    std::string_view name;  ///< empty in a tuple
    Type const*      type;
};

/// A part of a record, group or tuple in which the parts that are such themselves are taken apart,
/// too: what stands on the wire in a row. Words that may have any value are told by the part behind
/// them.
struct FlatPart {
    Type const*   type;                   ///< null for the end, which has only words before it
    std::uint32_t words_before = 0;       ///< in bytes
    std::uint32_t least_size = 0;         ///< with the words before it
    std::uint32_t least_size_of_row = 0;  ///< from here to the next part of no such size, and of it
    Kind          kind = Kind::record;    ///< of the type; the end alone has the kind of a record

    // The way to it: indices of parts, the outermost first.
    static constexpr std::size_t longest_way = 7;

    std::uint8_t                          way_length = 0;
    std::array<std::uint8_t, longest_way> way{};
};

/// An arm of a variant.
struct Arm {
    std::string_view name;
    Type const*      payload;  ///< null where nothing follows the tag
};

/// A descriptor. All that it points to lives as long as the program.
struct Type {
    Kind          kind;
    bool          has_catch_all{};  ///< the last arm serves every other tag
    bool          hashed{};         ///< a set or map in no order of its keys
    bool          last_wins{};      ///< a map read insert-then-read
    std::uint32_t least_size{};     ///< no value takes fewer bytes

    FlatPart const*       flat{};     ///< of what has parts: the parts taken apart, and the end
    std::span<Part const> parts{};    ///< tuple, record, group
    std::span<Arm const>  arms{};     ///< variant, reference; the index is the tag
    Type const*           element{};  ///< of optional, list, set, boxed; value of map
    Type const*           key{};      ///< of map

    std::uint32_t                     object_size{};  ///< of the C++ object, in bytes
    std::uint32_t                     entry_size{};   ///< of what a list, set or map holds
    std::uint32_t                     node_heap{};    ///< what the node takes that holds it
    std::uint32_t                     flag_count{};
    std::string_view                  name{};         ///< the C++ name, where it is a type's own
    std::span<std::string_view const> enumerators{};  ///< the index is the value

    /// A record, group or tuple.
    bool has_parts() const noexcept {
        return kind == Kind::record || kind == Kind::group || kind == Kind::tuple;
    }

    bool is_container() const noexcept {
        return kind == Kind::list || kind == Kind::set || kind == Kind::map;
    }

    bool is_plain_word() const noexcept { return inspect::is_plain_word(kind); }

    /// Whether a variant, reference or enumeration has this tag or value.
    bool has_tag(std::int32_t tag) const noexcept {
        std::size_t const count = kind == Kind::enumeration ? enumerators.size() : arms.size();
        return tag >= 0 && static_cast<std::size_t>(tag) < count;
    }

    /// Whether the word of a reference has a sign.
    bool is_signed_word(std::int32_t tag) const noexcept {
        return has_tag(tag) && arms[static_cast<std::size_t>(tag)].payload->kind == Kind::int64;
    }

    /// The arm that serves a tag, null where the tag stands bare.
    Arm const* arm_of(std::int32_t tag) const noexcept {
        if (has_tag(tag)) return &arms[static_cast<std::size_t>(tag)];
        return has_catch_all ? &arms.back() : nullptr;
    }
    /// The same where a payload follows.
    Arm const* with_payload(std::int32_t tag) const noexcept {
        Arm const* const arm = arm_of(tag);
        return arm != nullptr && arm->payload != nullptr ? arm : nullptr;
    }
};

/// A root: the stem of its entry points and its type.
struct Root {
    std::string_view stem;
    Type const*      type;
};

/// All roots, in their fixed order.
SML_API std::span<Root const> roots();

/// The root with this stem, null where there is none.
SML_API Root const* find_root(std::string_view stem);

}  // namespace sml::inspect

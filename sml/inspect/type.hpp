#pragma once
// Descriptors of the schema's types, made from their declarations at compile time.
//
// A descriptor holds all that is needed to walk the bytes of a type without building an object.

#include <sml/core/export.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace sml::inspect {

/// The kind of a type, which says what its bytes are.
enum class Kind : std::uint8_t {
    int32,
    uint32,
    int64,
    uint64,
    flag,         ///< one byte, T or F
    number,       ///< a `double` as decimal text
    big_integer,  ///< hexadecimal text
    ieee_float,   ///< hexadecimal float text and a width word
    string,       ///< interned: a definition or a back-reference
    text,         ///< a length word and as many bytes
    enumeration,
    optional,
    list,
    set,
    map,
    tuple,   ///< parts without names, one after another
    flags,   ///< a fixed number of flags
    record,  ///< named fields, one after another
    group,   ///< the named parts of an arm that has no record of its own
    variant,
    reference,  ///< a tag and a word of 8 bytes, for any tag
    boxed,      ///< its element, which a reader holds in an object on the heap
};

/// Whether values of a kind are plain words: words of which every value is good.
constexpr bool is_plain_word(Kind kind) noexcept { return kind <= Kind::uint64; }

struct Type;

/// A field of a record, a part of a group, or a part of a tuple.
struct Part {
    std::string_view name;  ///< empty in a tuple
    Type const*      type;
};

/// A part of a record, group or tuple, where the parts of a nested record, group or tuple count as
/// parts of the outer one. Flat parts are in the order of the bytes. A plain word is no flat part:
/// the flat part after it counts its bytes.
struct FlatPart {
    Type const*   type;              ///< null for the end: the words after the last part
    std::uint32_t words_before = 0;  ///< bytes of the plain words before it
    std::uint32_t least_size = 0;    ///< in bytes, with the words before it
    /// The sum of the least sizes from this part to the next one that a walk can't skip after one
    /// comparison, with that one.
    std::uint32_t least_size_of_row = 0;
    Kind          kind = Kind::record;  ///< of the type; `record` for the end

    // The path to it: indices of parts, the outermost first.
    static constexpr std::size_t longest_way = 7;

    std::uint8_t                          way_length = 0;
    std::array<std::uint8_t, longest_way> way{};
};

/// An arm of a variant.
struct Arm {
    std::string_view name;
    Type const*      payload;  ///< null if nothing follows the tag
};

/// A descriptor. All that it points to lives as long as the program.
struct Type {
    Kind          kind;
    bool          has_catch_all{};  ///< the last arm is a catch-all arm
    bool          hashed{};         ///< a set or map that a reader holds in a hash table
    bool          last_wins{};      ///< a map in which values are read over earlier ones
    std::uint32_t least_size{};     ///< no value takes fewer bytes

    FlatPart const*       flat{};     ///< of a type with parts: the flat parts and the end
    std::span<Part const> parts{};    ///< tuple, record, group
    std::span<Arm const>  arms{};     ///< variant, reference; the index is the tag
    Type const*           element{};  ///< of optional, list, set, boxed; value of map
    Type const*           key{};      ///< of map

    std::uint32_t                     object_size{};  ///< of the C++ object, in bytes
    std::uint32_t                     entry_size{};   ///< of an element or entry of a container
    std::uint32_t                     node_heap{};    ///< of a node with such an entry, in bytes
    std::uint32_t                     flag_count{};
    std::string_view                  name{};         ///< the C++ name of a class or enumeration
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

    /// Whether the word of a reference with this tag is signed.
    bool is_signed_word(std::int32_t tag) const noexcept {
        return has_tag(tag) && arms[static_cast<std::size_t>(tag)].payload->kind == Kind::int64;
    }

    /// The arm of a tag: for an unset or unknown one the catch-all arm, null if the variant has
    /// none.
    Arm const* arm_of(std::int32_t tag) const noexcept {
        if (has_tag(tag)) return &arms[static_cast<std::size_t>(tag)];
        return has_catch_all ? &arms.back() : nullptr;
    }
    /// The same, but null if the arm has no payload.
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

/// All roots, always in the same order. They live as long as the program.
SML_API std::span<Root const> roots();

/// Returns the root with this stem, null if there is none. It lives as long as the program.
SML_API Root const* find_root(std::string_view stem);

}  // namespace sml::inspect

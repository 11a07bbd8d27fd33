#pragma once
// Types and macros with which a schema header declares its types.
//
//   SML_RECORD(Type, fields...)   a record of the schema, fields in wire order
//   SML_FIELDS(Type, fields...)   the parts of an arm that has no record of its own
//   SML_VARIANT(Type)             a variant; `using arms = core::Arms<...>` comes before it
//   SML_REFERENCE(Type, Id, Ptr)  an identifier or an address in one 8-byte word
//   SML_ENUM(Type, names...)      an enumeration, names in ascending order, by bytes
//   SML_OWN_LIFE(Type)            a record whose special members the library defines
//
// The module's source file defines the declared members, with the macros of `sml/core/define.hpp`.

#include <sml/core/Strings.hpp>
#include <sml/core/arm_access.hpp>
#include <sml/core/box.hpp>
#include <sml/core/export.hpp>
#include <sml/core/hash.hpp>
#include <sml/core/names.hpp>

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace sml {

using int32 = std::int32_t;
using uint32 = std::uint32_t;
using int64 = std::int64_t;
using uint64 = std::uint64_t;

class StreamOArchive;
class StreamIArchive;
class StringOArchive;
class StringIArchive;

namespace core {

struct VariantAccess;

/// Sets and maps whose keys are hashed by `sml::Hash`.
template <class Key>
using HashedSet = std::unordered_set<Key, Hash<Key>>;
template <class Key, class Value>
using HashedMap = std::unordered_map<Key, Value, Hash<Key>>;

/// The order or hash of a map whose reader keeps the first key of several equal ones, and reads the
/// later values over the first one. Maps with other orders or hashes drop the later entries.
template <class Base>
struct LastWins : Base {};

template <class Key, class Value>
using LastWinsMap = std::map<Key, Value, LastWins<std::less<Key>>>;
template <class Key, class Value>
using LastWinsUnorderedMap = std::unordered_map<Key, Value, LastWins<Hash<Key>>>;

}  // namespace core
}  // namespace sml

/// Lists the fields once more for the generic algorithms. `with_fields` returns what `use` returns
/// for all fields, in wire order. `every_field_is_listed` is never called: it does not compile if a
/// field is missing from the list.
#define SML_FIELDS(Type, ...)                                                    \
    static constexpr char const* field_names() noexcept { return #__VA_ARGS__; } \
    template <class Use>                                                         \
    constexpr decltype(auto) with_fields(Use&& use) {                            \
        return use(__VA_ARGS__);                                                 \
    }                                                                            \
    template <class Use>                                                         \
    constexpr decltype(auto) with_fields(Use&& use) const {                      \
        return use(__VA_ARGS__);                                                 \
    }                                                                            \
    static void every_field_is_listed(Type& record) {                            \
        [[maybe_unused]] auto& [__VA_ARGS__] = record;                           \
    }                                                                            \
    static_assert(true)

#define SML_SERIALIZE_MEMBER \
    template <class Archive> \
    void serialize(Archive& archive, unsigned int version)

#define SML_COMPARISON_MEMBERS(Type)                  \
    SML_API bool operator==(Type const& other) const; \
    SML_API bool operator<(Type const& other) const

#define SML_RECORD(Type, ...)      \
    SML_FIELDS(Type, __VA_ARGS__); \
    SML_COMPARISON_MEMBERS(Type);  \
    SML_SERIALIZE_MEMBER

#define SML_OWN_LIFE(Type)                      \
    SML_API       Type();                       \
    SML_API       Type(Type const& other);      \
    SML_API       Type(Type&& other);           \
    SML_API Type& operator=(Type const& other); \
    SML_API Type& operator=(Type&& other);      \
    SML_API ~Type()

/// `toString` returns the name of the arm; that of arm 0 for any negative tag, so for an unset
/// variant; and null for a tag beyond the last arm.
#define SML_VARIANT(Type)         \
    SML_COMPARISON_MEMBERS(Type); \
    SML_VARIANT_WITHOUT_COMPARISON(Type)

#define SML_VARIANT_WITHOUT_COMPARISON(Type)                                                    \
    ::sml::core::Tag tag;                                                                       \
                                                                                                \
    SML_OWN_LIFE(Type);                                                                         \
    SML_API char const* toString() const;                                                       \
    SML_SERIALIZE_MEMBER;                                                                       \
    /* Sets any tag, unknown ones too, and makes a new payload if the tag has one. */           \
    SML_API void choose_tag(std::int32_t new_tag);                                              \
    /* Sets the tag of the named arm and makes a new payload; returns it, if it has one. */     \
    template <::sml::core::Name ArmName>                                                        \
    decltype(auto) choose() {                                                                   \
        return ::sml::core::ArmAccess::choose<::sml::core::tag_of<Type, ArmName>()>(*this);     \
    }                                                                                           \
    /* Whether the tag is exactly that of the named arm. */                                     \
    template <::sml::core::Name ArmName>                                                        \
    bool holds() const noexcept {                                                               \
        return tag == ::sml::core::tag_of<Type, ArmName>();                                     \
    }                                                                                           \
    /* Returns the payload of the named arm, which must be the one that there is. */            \
    template <::sml::core::Name ArmName>                                                        \
    auto& arm() noexcept {                                                                      \
        return ::sml::core::ArmAccess::payload_at<::sml::core::tag_of<Type, ArmName>()>(*this); \
    }                                                                                           \
    template <::sml::core::Name ArmName>                                                        \
    auto const& arm() const noexcept {                                                          \
        return ::sml::core::ArmAccess::payload_at<::sml::core::tag_of<Type, ArmName>()>(*this); \
    }                                                                                           \
    /* Calls `use` with the payload of the tag, if it has one. If a default-constructed variant \
       has a catch-all arm, whose payload it lacks, `use` gets a default-constructed one. */    \
    template <class Use>                                                                        \
    void visit_payload(Use&& use) const {                                                       \
        ::sml::core::ArmAccess::visit_payload(*this, use);                                      \
    }                                                                                           \
                                                                                                \
private:                                                                                        \
    friend struct ::sml::core::ArmAccess;                                                       \
    friend struct ::sml::core::VariantAccess;                                                   \
                                                                                                \
    std::int32_t alive_ = -1; /* the arm whose payload is in the storage */                     \
    alignas(arms::storage_align) std::byte storage_[arms::storage_size]

/// A tag and a word of 8 bytes, which is written for any tag. Words are compared as signed numbers
/// if the tag is 0, else as unsigned ones.
#define SML_REFERENCE(Type, IdName, PtrName)                                  \
    using arms = ::sml::core::Arms<::sml::core::Arm<IdName, std::int64_t>,    \
                                   ::sml::core::Arm<PtrName, std::uint64_t>>; \
    std::int32_t  which = -1;                                                 \
    std::uint64_t value = 0;                                                  \
                                                                              \
    SML_FIELDS(Type, which, value);                                           \
    SML_COMPARISON_MEMBERS(Type);                                             \
    SML_SERIALIZE_MEMBER;                                                     \
    SML_API char const* toString() const;                                     \
    /* Sets the tag of the named arm and the word 0; returns the word. */     \
    template <::sml::core::Name ArmName>                                      \
    std::uint64_t& choose() noexcept {                                        \
        which = ::sml::core::tag_of<Type, ArmName>();                         \
        value = 0;                                                            \
        return value;                                                         \
    }                                                                         \
    /* Whether the tag is exactly that of the named arm. */                   \
    template <::sml::core::Name ArmName>                                      \
    bool holds() const noexcept {                                             \
        return which == ::sml::core::tag_of<Type, ArmName>();                 \
    }                                                                         \
    /* Returns the word. The tag must be that of the named arm. */            \
    template <::sml::core::Name ArmName>                                      \
    std::uint64_t& arm() noexcept {                                           \
        assert(holds<ArmName>());                                             \
        return value;                                                         \
    }                                                                         \
    template <::sml::core::Name ArmName>                                      \
    std::uint64_t const& arm() const noexcept {                               \
        assert(holds<ArmName>());                                             \
        return value;                                                         \
    }                                                                         \
    static_assert(true)

/// `enumerators(Type{})` returns the names in order; `toString` returns null for a number that has
/// no name.
#define SML_ENUM(Type, ...)                           \
    enum Type : std::int32_t { __VA_ARGS__ };         \
    template <::sml::core::Name Names = #__VA_ARGS__> \
    constexpr auto enumerators(Type) {                \
        return ::sml::core::name_table<Names>();      \
    }                                                 \
    SML_API char const* toString(Type value)

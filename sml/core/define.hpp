#pragma once
// Macros for the source file of a schema module: one line for each type defines and exports the
// members that its header declares. These lines are the module's export list.

#include <sml/core/variant.hpp>

// The archives are not exported, so each instantiation is marked as exported. That for
// UnbufferedOArchive is not part of the interface.
#define SML_INSTANTIATE_SERIALIZE(Type)                                                          \
    template SML_API void Type::serialize<::sml::StreamOArchive>(::sml::StreamOArchive&,         \
                                                                 unsigned int);                  \
    template SML_API void Type::serialize<::sml::StreamIArchive>(::sml::StreamIArchive&,         \
                                                                 unsigned int);                  \
    template SML_API void Type::serialize<::sml::StringOArchive>(::sml::StringOArchive&,         \
                                                                 unsigned int);                  \
    template SML_API void Type::serialize<::sml::StringIArchive>(::sml::StringIArchive&,         \
                                                                 unsigned int);                  \
    template void         Type::serialize<::sml::UnbufferedOArchive>(::sml::UnbufferedOArchive&, \
                                                             unsigned int)

#define SML_DEFINE_RECORD(Type)                                     \
    bool Type::operator==(Type const& other) const {                \
        return ::sml::core::Comparison::equal_fields(*this, other); \
    }                                                               \
    bool Type::operator<(Type const& other) const {                 \
        return ::sml::core::Comparison::less_fields(*this, other);  \
    }                                                               \
    template <class Archive>                                        \
    void Type::serialize(Archive& archive, unsigned int) {          \
        ::sml::core::transfer_fields(archive, *this);               \
    }                                                               \
    SML_INSTANTIATE_SERIALIZE(Type)

#define SML_DEFINE_VARIANT(Type)                                \
    bool Type::operator==(Type const& other) const {            \
        return ::sml::core::VariantAccess::equal(*this, other); \
    }                                                           \
    bool Type::operator<(Type const& other) const {             \
        return ::sml::core::VariantAccess::less(*this, other);  \
    }                                                           \
    SML_DEFINE_VARIANT_WITHOUT_COMPARISON(Type)

#define SML_DEFINE_VARIANT_WITHOUT_COMPARISON(Type)                                        \
    static_assert(::sml::core::WellFormed<Type::arms>::value);                             \
    Type::Type() = default;                                                                \
    Type::Type(Type const& other) { ::sml::core::VariantAccess::copy(*this, other); }      \
    Type::Type(Type&& other) { ::sml::core::VariantAccess::move(*this, other); }           \
    Type& Type::operator=(Type const& other) {                                             \
        ::sml::core::VariantAccess::assign(*this, other);                                  \
        return *this;                                                                      \
    }                                                                                      \
    Type& Type::operator=(Type&& other) {                                                  \
        ::sml::core::VariantAccess::assign(*this, std::move(other));                       \
        return *this;                                                                      \
    }                                                                                      \
    Type::~Type() { ::sml::core::VariantAccess::destroy(*this); }                          \
    void Type::choose_tag(std::int32_t new_tag) {                                          \
        ::sml::core::VariantAccess::choose(*this, new_tag);                                \
    }                                                                                      \
    char const* Type::toString() const { return ::sml::core::VariantAccess::name(*this); } \
    template <class Archive>                                                               \
    void Type::serialize(Archive& archive, unsigned int) {                                 \
        ::sml::core::VariantAccess::transfer(archive, *this);                              \
    }                                                                                      \
    SML_INSTANTIATE_SERIALIZE(Type)

#define SML_DEFINE_REFERENCE(Type)                                                           \
    static_assert(::sml::core::WellFormed<Type::arms>::value);                               \
    bool Type::operator==(Type const& other) const {                                         \
        return ::sml::core::ReferenceAccess::equal(*this, other);                            \
    }                                                                                        \
    bool Type::operator<(Type const& other) const {                                          \
        return ::sml::core::ReferenceAccess::less(*this, other);                             \
    }                                                                                        \
    char const* Type::toString() const { return ::sml::core::ReferenceAccess::name(*this); } \
    template <class Archive>                                                                 \
    void Type::serialize(Archive& archive, unsigned int) {                                   \
        ::sml::core::transfer_fields(archive, *this);                                        \
    }                                                                                        \
    SML_INSTANTIATE_SERIALIZE(Type)

#define SML_DEFINE_ENUM(Type)                                                        \
    char const* toString(Type value) {                                               \
        static constexpr auto names = enumerators(Type{});                           \
        static_assert(names.ascends(), "enumerators stand in ascending byte order"); \
        auto const index = static_cast<std::uint32_t>(value);                        \
        return index < names.start.size() ? names[index] : nullptr;                  \
    }                                                                                \
    static_assert(true)

/// Defines special members that do what the compiler's own would do.
#define SML_DEFAULT_LIFE(Type)                          \
    Type::Type() = default;                             \
    Type::Type(Type const& other) = default;            \
    Type::Type(Type&& other) = default;                 \
    Type& Type::operator=(Type const& other) = default; \
    Type& Type::operator=(Type&& other) = default;      \
    Type::~Type() = default

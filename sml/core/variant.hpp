#pragma once
// What all variants do with their tag and payload.
//
// A variant has two numbers: its tag, and the arm whose payload is in its storage. Copying, moving
// and destroying follow the second, so a payload whose constructor throws leaves no half-built
// object. The payload of a catch-all arm is built when an unknown tag is read or chosen; a
// default-constructed variant, whose tag is -1, has none.

#include <sml/core/compare.hpp>
#include <sml/core/transfer.hpp>

namespace sml::core {

/// All operations on variants; the declared members forward here.
struct VariantAccess {
    template <class V>
    static void destroy(V& variant) noexcept {
        at(variant, variant.alive_, [](auto& payload) { std::destroy_at(&payload); });
        variant.alive_ = -1;
    }

    template <class V>
    static void choose(V& variant, std::int32_t tag) {
        destroy(variant);
        variant.tag.value_ = -1;
        build(variant, V::arms::arm_with_payload(tag));
        variant.tag.value_ = tag;
    }

    template <class V>
    static void copy(V& target, V const& source) {
        with_arm<V>(source.alive_, [&]<std::int32_t Index>() {
            std::construct_at(place<Index>(target), ArmAccess::payload_at<Index>(source));
        });
        target.alive_ = source.alive_;
        target.tag.value_ = source.tag;
    }

    template <class V>
    static void move(V& target, V& source) {
        with_arm<V>(source.alive_, [&]<std::int32_t Index>() {
            std::construct_at(place<Index>(target),
                              std::move(ArmAccess::payload_at<Index>(source)));
        });
        target.alive_ = source.alive_;
        target.tag.value_ = source.tag;
    }

    // The source may be inside the target's payload, so it is moved out before that is destroyed.
    template <class V>
    static void assign(V& target, V&& source) {
        V taken(std::move(source));
        replace(target, taken);
    }

    /// Required: the payload is assigned to a default-constructed one, not copy-constructed.
    template <class V>
    static void assign(V& target, V const& source) {
        V fresh;
        build(fresh, source.alive_);
        with_arm<V>(source.alive_, [&]<std::int32_t Index>() {
            ArmAccess::payload_at<Index>(fresh) = ArmAccess::payload_at<Index>(source);
        });
        fresh.tag.value_ = source.tag;
        replace(target, fresh);
    }

    template <class V>
    static char const* name(V const& variant) {
        std::int32_t const tag = variant.tag < 0 ? 0 : std::int32_t{variant.tag};
        return tag < V::arms::count ? V::arms::names[static_cast<std::size_t>(tag)] : nullptr;
    }

    template <class V>
    static bool equal(V const& a, V const& b) {
        if (a.tag != b.tag || a.tag < 0) return false;
        bool result = true;
        with_arm<V>(V::arms::arm_with_payload(a.tag), [&]<std::int32_t Index>() {
            result =
                Comparison::equal(ArmAccess::payload_at<Index>(a), ArmAccess::payload_at<Index>(b));
        });
        return result;
    }

    template <class V>
    static bool less(V const& a, V const& b) {
        if (a.tag != b.tag) return a.tag < b.tag;
        if (a.tag < 0) return false;
        bool result = true;  // required: an arm without payload is less than itself
        with_arm<V>(V::arms::arm_with_payload(a.tag), [&]<std::int32_t Index>() {
            result =
                Comparison::less(ArmAccess::payload_at<Index>(a), ArmAccess::payload_at<Index>(b));
        });
        return result;
    }

    template <class Archive, class V>
    static void transfer(Archive& archive, V& variant) {
        if constexpr (Archive::writes)
            write(archive, variant);
        else
            read(archive, variant);
    }

private:
    template <class Archive, class V>
    static void write(Archive& archive, V const& variant) {
        Writer<Archive> writer(archive);
        writer(std::int32_t{variant.tag});
        variant.visit_payload([&](auto const& payload) { writer(payload); });
    }

    // Required: if the variant has this tag already, the payload is read over its present one.
    template <class Archive, class V>
    static void read(Archive& archive, V& variant) {
        Reader<Archive> reader(archive);
        std::int32_t    tag{};
        reader(tag);
        std::int32_t const arm = V::arms::arm_with_payload(tag);
        if (tag != variant.tag || arm != variant.alive_) choose(variant, tag);
        at(variant, arm, reader);
    }

    template <class V>
    static void replace(V& target, V& source) {
        destroy(target);
        target.tag.value_ = -1;
        move(target, source);
    }

    template <class V>
    static void build(V& variant, std::int32_t arm) {
        with_arm<V>(arm, [&]<std::int32_t Index>() { build_at(place<Index>(variant)); });
        variant.alive_ = arm;
    }

    /// Builds a default-constructed payload. `T()` would first fill all of a record with zeros,
    /// whose members all have initialisers.
    template <class T>
    static void build_at(T* place) {
        if constexpr (Fielded<T>)
            ::new (static_cast<void*>(place)) T;
        else
            ::new (static_cast<void*>(place)) T();
    }

    /// Where the payload of an arm is to be built.
    template <std::int32_t Index, class V>
    static auto* place(V& variant) {
        return reinterpret_cast<typename V::arms::template payload<Index>*>(variant.storage_);
    }

    /// Calls `use` with the payload of an arm that is built; does nothing for -1.
    template <class V, class Use>
    static void at(V& variant, std::int32_t arm, Use&& use) {
        with_arm<V>(arm, [&]<std::int32_t Index>() { use(ArmAccess::payload_at<Index>(variant)); });
    }

    /// Calls `use` with the index of an arm that has a payload; does nothing for others and for -1.
    template <class V, class Use>
    static void with_arm(std::int32_t arm, Use&& use) {
        with_arm<V>(arm, use, std::make_integer_sequence<std::int32_t, V::arms::count>());
    }

    template <class V, class Use, std::int32_t... Index>
    static void with_arm(std::int32_t arm, Use& use,
                         std::integer_sequence<std::int32_t, Index...>) {
        static_cast<void>(((arm == Index && (use_arm<V, Index>(use), true)) || ...));
    }

    template <class V, std::int32_t Index, class Use>
    static void use_arm(Use& use) {
        if constexpr (V::arms::has_payload[Index]) use.template operator()<Index>();
    }
};

/// Order, equality and names of reference types. Only the word of arm 0 is compared as signed.
struct ReferenceAccess {
    template <class R>
    static bool equal(R const& a, R const& b) {
        return a.which == b.which && a.which >= 0 && a.value == b.value;
    }

    template <class R>
    static bool less(R const& a, R const& b) {
        if (a.which != b.which) return a.which < b.which;
        if (a.which < 0) return false;
        if (a.which > 0) return a.value < b.value;
        return static_cast<std::int64_t>(a.value) < static_cast<std::int64_t>(b.value);
    }

    template <class R>
    static char const* name(R const& reference) {
        std::int32_t const tag = reference.which < 0 ? 0 : reference.which;
        return tag < R::arms::count ? R::arms::names[static_cast<std::size_t>(tag)] : nullptr;
    }
};

}  // namespace sml::core

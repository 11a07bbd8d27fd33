#pragma once
// What the bytes of a key consist of; no other code depends on that.

#include <sml/inspect/type.hpp>

#include <cstdint>

namespace sml::inspect {

template <class Sink>
[[gnu::noinline]] bool take_other_part(Type const& type, Sink& sink);

// Inlined for the kinds that most keys consist of.
template <class Sink>
[[gnu::always_inline]] inline bool take_part(Type const& type, Sink& sink) {
    switch (type.kind) {
        case Kind::string: return sink.string();
        case Kind::int32: return sink.template word<std::int32_t>();
        default: return take_other_part(type, sink);
    }
}

template <class Sink>
[[gnu::always_inline]] inline bool take_parts(Type const& type, Sink& sink) {
    return sink.parts(type, [&](Part const& part) { return take_part(*part.type, sink); });
}

/// The kinds are those that `is_key` allows: a set or map with other keys has no descriptor.
template <class Sink>
bool take_other_part(Type const& type, Sink& sink) {
    switch (type.kind) {
        case Kind::string:
        case Kind::int32: return take_part(type, sink);
        case Kind::uint32: return sink.template word<std::uint32_t>();
        case Kind::int64: return sink.template word<std::int64_t>();
        case Kind::uint64: return sink.template word<std::uint64_t>();
        case Kind::flag: return sink.flag();
        case Kind::big_integer: return sink.big_integer();
        case Kind::text: return sink.text();
        case Kind::enumeration: return sink.enumeration(type);
        case Kind::optional: return sink.optional([&] { return take_part(*type.element, sink); });
        case Kind::variant:
            return sink.variant(type,
                                [&](Arm const& arm) { return take_part(*arm.payload, sink); });
        case Kind::tuple:
        case Kind::record:
        case Kind::group: return take_parts(type, sink);
        default: __builtin_unreachable();
    }
}

/// Takes a key apart. The sink reads each value and returns whether to go on. For an optional, a
/// variant or a type with parts, it reads the flag or the tag itself, and calls the function that
/// it is given for the element, the payload or each part.
template <class Sink>
[[gnu::always_inline]] inline bool take_key(Type const& type, Sink& sink) {
    return type.has_parts() ? take_parts(type, sink) : take_part(type, sink);
}

}  // namespace sml::inspect

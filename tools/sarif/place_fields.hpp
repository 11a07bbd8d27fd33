#pragma once
// The rows of a place. The other rows are in fields.hpp.

#include "sarif/field.hpp"
#include "sarif/records.hpp"
#include "sarif/result.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <tuple>
#include <vector>

namespace bradep::sarif::fields {

/// The record of a place: a source reference, and two texts that it has no field for.
template <class Reference, class Base, class Logical>
struct PlaceRecord {
    Reference& reference;
    Base&      base;
    Logical&   logical;
};
template <class Reference, class Base, class Logical>
PlaceRecord(Reference&, Base&, Logical&) -> PlaceRecord<Reference, Base, Logical>;

constexpr char const* reference_path = "";

template <class Member>
constexpr auto in_reference(char const* field, Member member) {
    return held(
        reference_path, field, [member](auto const& place) -> auto& {
            return std::invoke(member, place.reference);
        });
}

/// The bits of `kind` in a source reference say which properties the log gives.
constexpr auto given_in_place(std::uint32_t bits) {
    return Given{bits, in_reference("kind", &SourceRef::kind)};
}

inline constexpr auto place_is_given = given_in_place(1);

inline constexpr auto base_text = held(
    nullptr, "the field for the base", [](auto const& place) -> auto& { return place.base; });
inline constexpr auto logical_name = held(
    nullptr, "the field for the logical name",
    [](auto const& place) -> auto& { return place.logical; });
template <int shift>
constexpr auto half_of_reference(char const* what) {
    return held(nullptr, what,
                [](auto const& place) { return Half(place.reference.reference, shift); });
}
inline constexpr auto upper_half = half_of_reference<32>("upper half of `reference`");
inline constexpr auto lower_half = half_of_reference<0>("lower half of `reference`");

inline constexpr Field uri{
    "physicalLocation.artifactLocation.uri", "uri", &Place::uri,
    in_reference("localization.file", along<&SourceRef::localization, &Localization::file>),
    given_in_place(2)};
inline constexpr Field base{"physicalLocation.artifactLocation.uriBaseId", "base", &Place::base,
                            base_text, given_in_place(4)};
inline constexpr Field line{
    "physicalLocation.region.startLine", "line", &Place::line,
    in_reference("localization.first_position",
                 along<&SourceRef::localization, &Localization::first_position>),
    given_in_place(8)};
inline constexpr Field column{
    "physicalLocation.region.startColumn", "column", &Place::column,
    in_reference("localization.second_position",
                 along<&SourceRef::localization, &Localization::second_position>),
    given_in_place(16)};
inline constexpr Field end_line{"physicalLocation.region.endLine", "endLine", &Place::end_line,
                                upper_half, given_in_place(32)};
inline constexpr Field end_column{"physicalLocation.region.endColumn", "endColumn",
                                  &Place::end_column, lower_half, given_in_place(64)};
inline constexpr Field logical{
    no_property("`fullyQualifiedName`, else `name`, of `logicalLocations[0]`"), nullptr,
    &Place::logical, logical_name, given_in_place(128)};

inline constexpr Flag logical_is_short{no_property("that name is a `name`"),
                                       &Place::logical_is_short, given_in_place(256)};

inline constexpr std::tuple of_place{uri,      base,       line,    column,
                                     end_line, end_column, logical, logical_is_short};
inline constexpr std::tuple short_place{uri, line, column};

inline Place const* place_in(Place const& place) { return &place; }
inline Place const* place_in(std::optional<Place> const& place) {
    return place ? &*place : nullptr;
}
/// The first place of the list.
inline Place const* place_in(std::vector<Place> const& places) {
    return places.empty() ? nullptr : &places.front();
}

inline Place& new_place(Place& place) { return place; }
inline Place& new_place(std::optional<Place>& place) { return place.emplace(); }
inline Place& new_place(std::vector<Place>& places) { return places.emplace_back(); }

/// The place of an object. The rows of `of_place` hold and restore it; those of `place_rows` are
/// printed by `show --json` among the members of the object.
template <class Said, class Shown, class Reference, class Base, class Logical>
struct PlaceField {
    Sarif           sarif;
    Said            said;
    Shown           place_rows;
    Held<Reference> reference;
    Held<Base>      base;
    Held<Logical>   logical;

    template <class Record>
    auto parts_of(Record const& record) const {
        return PlaceRecord{reference(record), base(record), logical(record)};
    }

    template <class Part, class Record>
    void hold(Part const& part, Record const& record) const {
        auto const* const place = place_in(std::invoke(said, part));
        if (place == nullptr) return;
        place_is_given.set(parts_of(record));
        sarif::hold(of_place, *place, parts_of(record));
    }

    template <class Part, class Record>
    void restore(Part& part, Record const& record) const {
        if (!place_is_given.is_set(parts_of(record))) return;
        sarif::restore(of_place, new_place(std::invoke(said, part)), parts_of(record));
    }
};

template <class Said, class Shown, class Reference, class Base, class Logical>
PlaceField(Sarif, Said, Shown, Held<Reference>, Held<Base>, Held<Logical>)
    -> PlaceField<Said, Shown, Reference, Base, Logical>;

}  // namespace bradep::sarif::fields

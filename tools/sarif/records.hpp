#pragma once
// Records of a result set as they are filled or read, and functions that find their fields.

#include "comparisons.hpp"
#include "errors.hpp"
#include "result_set.hpp"
#include "sarif/field.hpp"
#include "sarif/late_table.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace bradep::sarif {

using Event = sml::Events::T_An_Event;
using Info = sml::Infos::T_An_Info;

using SourceRef = sml::SourceLocRef::T_SourceLocRef;
using Localization = sml::Localization::T_Localization;
using Signature = sml::PackagedPrettySignature::T;
using QualifiedSignature = sml::QualifiedPrettySignature::T;
using QualifiedName = sml::QualifiedPrettyName::T;
using SignatureAndText = std::pair<Signature, sml::Strings_T>;

/// The large tables of a set while it is filled.
struct LateTables {
    using Tables = sml::Application_Results::T_Application_Results;

    explicit LateTables(Tables& tables)
        : checks(tables.checks), events(tables.events), infos(tables.infos) {}

    void insert_all() {
        checks.insert_all();
        events.insert_all();
        infos.insert_all();
    }

    auto& of(decltype(Tables::checks) const&) { return checks; }
    auto& of(decltype(Tables::events) const&) { return events; }
    auto& of(decltype(Tables::infos) const&) { return infos; }

    LateTable<decltype(Tables::checks)> checks;
    LateTable<decltype(Tables::events)> events;
    LateTable<decltype(Tables::infos)>  infos;
};

/// The numbers of the descriptors that a set holds, by component and text.
using DescriptorNumbers = std::map<std::pair<sml::Strings_T, sml::Strings_T>, std::int32_t>;

/// A set to which results are added. The look-ups in its maps and in the string table are counted.
struct Filling {
    ResultSet&         set;
    Comparisons&       comparisons;
    DescriptorNumbers& descriptors;
    LateTables*        late = nullptr;  ///< if given, it gets the entries of its tables

    /// The value of a key that is not in one of the large tables yet.
    template <class Table>
    typename Table::mapped_type& add(Table& table, typename Table::key_type const& key) const {
        return late ? late->of(table).add(key, comparisons) : at(table, key);
    }
    template <class Table>
    std::size_t size(Table const& table) const {
        return late ? late->of(table).size() : table.size();
    }

    /// The value of a key. The entry is added if there is none.
    template <class Table>
    typename Table::mapped_type& at(Table& table, typename Table::key_type const& key) const {
        auto& value = table[key];
        comparisons.count_key(table, key);
        return value;
    }

    /// The next key for a URI. Ordinals count from 1, and `numbers` holds the last one of each URI.
    template <class Numbers>
    NumberedKey next_key(Numbers& numbers, sml::Strings_T const& uri) const {
        return {uri, ++at(numbers, uri)};
    }
};

struct FilledCheck {
    Check&             check;
    CheckForm&         form;
    NumberedKey const& key;
    Filling const&     filling;
};
struct ReadCheck {
    Check const&     check;
    CheckForm const& form;
    ResultSet const& set;
};

/// For rows that only read the check.
struct CheckAlone {
    Check const& check;
};

/// What a run or a rule has, kept as text.
using KeptEntry = std::pair<QualifiedSignature, std::optional<QualifiedSignature>>;
struct FilledEntry {
    KeptEntry& entry;
};
struct ReadEntry {
    KeptEntry const& entry;
};

struct FilledFailure {
    sml::Failure::T& failure;
};

struct FilledEvent {
    Event&       event;
    std::int32_t run;
};
struct ReadEvent {
    Event const& event;
};

struct FilledInfo {
    Info&          info;
    Filling const& filling;
};
struct ReadInfo {
    Info const& info;
};

template <class Set>
struct SetRecord {
    Set& set;
};
template <class Set>
SetRecord(Set&) -> SetRecord<Set>;

struct FilledFingerprint {
    SignatureAndText& fingerprint;
};
struct ReadFingerprint {
    SignatureAndText const& fingerprint;
};

constexpr char const* checks_path = "application_results.checks[*]";
constexpr char const* forms_path = "check_data[*].1";
constexpr char const* events_path = "application_results.events[*]";
constexpr char const* infos_path = "application_results.infos[*]";
constexpr char const* entries_path = "application_results.signatures[*]";
constexpr char const* fingerprints_path = "check_data[*].1.signature_locations[*].1";

// Functions that make a `Held` for a field of one of these records. `member` is a member pointer or
// a function that returns the field.

template <class Member>
constexpr auto in_check(char const* field, Member member) {
    return held(
        checks_path,
        field, [member](auto const& record) -> auto& { return std::invoke(member, record.check); });
}
template <class Member>
constexpr auto in_form(char const* field, Member member) {
    return held(
        forms_path,
        field, [member](auto const& record) -> auto& { return std::invoke(member, record.form); });
}
template <class Member>
constexpr auto in_event(char const* field, Member member) {
    return held(
        events_path,
        field, [member](auto const& record) -> auto& { return std::invoke(member, record.event); });
}
template <class Member>
constexpr auto in_info(char const* field, Member member) {
    return held(
        infos_path,
        field, [member](auto const& record) -> auto& { return std::invoke(member, record.info); });
}
template <class Member>
constexpr auto in_entry(char const* field, Member member) {
    return held(
        entries_path,
        field, [member](auto const& record) -> auto& { return std::invoke(member, record.entry); });
}
template <class Member>
constexpr auto in_fingerprint(char const* field, Member member) {
    return held(
        fingerprints_path, field, [member](auto const& record) -> auto& {
            return std::invoke(member, record.fingerprint);
        });
}

/// Throws DamagedInput, which says that the set was not written by an import.
[[noreturn]] inline void not_imported(std::string const& what) {
    throw DamagedInput("not an imported result set: " + what);
}

/// The value of a key that a check refers to. Throws DamagedInput, with `what` in its message, if
/// the map does not have the key.
template <class Table>
typename Table::mapped_type const& entry(Table const& table, typename Table::key_type const& key,
                                         char const* what) {
    auto const found = table.find(key);
    if (found == table.end())
        not_imported(std::string("a check has ") + what + " that is in no map");
    return found->second;
}

}  // namespace bradep::sarif

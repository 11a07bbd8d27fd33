// Prints the rows of tools/sarif/fields.hpp as the tables in docs/sarif.md.

#include "sarif/fields.hpp"
#include "sarif/kept.hpp"

#include <iostream>
#include <string>
#include <string_view>

namespace {

namespace fields = bradep::sarif::fields;
using bradep::sarif::for_each_row;
using bradep::sarif::Given;
using bradep::sarif::Held;
using bradep::sarif::NoBits;

std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string path_of(char const* table, std::string_view field) {
    if (table == nullptr) return std::string(field);
    std::string const path = table;
    return code(path.empty() ? std::string(field) : path + "." + std::string(field));
}

template <class Access>
std::string path_of(Held<Access> const& held) {
    return path_of(held.table, held.field);
}

std::string bits_of(NoBits) { return ""; }

template <class Access>
std::string bits_of(Given<Access> const& given) {
    return "bit " + std::to_string(given.bits) + " of " + code(given.word.field);
}

/// The names of the members of a place.
template <class Rows>
std::string names_of(Rows const& rows) {
    std::string names;
    for_each_row(rows, [&](auto const& row) {
        if constexpr (requires { row.shown; })
            if (row.shown) names += (names.empty() ? "" : ", ") + code(row.shown);
    });
    return names;
}

void print(std::string const& sarif, std::string const& held, std::string const& given,
           std::string const& shown) {
    std::cout << '|';
    for (auto const* cell : {&sarif, &held, &given, &shown})
        std::cout << (cell->empty() ? "" : " ") << *cell << " |";
    std::cout << '\n';
}

std::string shown_as(char const* name) { return name == nullptr ? "" : code(name); }

template <class Said, class Access, class Bits>
void print_row(bradep::sarif::Field<Said, Access, Bits> const& row) {
    print(row.sarif.text(), path_of(row.held), bits_of(row.given), shown_as(row.shown));
}

template <class Said, class Access>
void print_row(bradep::sarif::Flag<Said, Access> const& row) {
    print(row.sarif.text(), bits_of(row.given), "", "");
}

template <class Said, class Hold, class Restore>
void print_row(bradep::sarif::ByHand<Said, Hold, Restore> const& row) {
    print(row.sarif.text(), path_of(row.table, row.field), "", shown_as(row.shown));
}

template <class Make>
void print_row(bradep::sarif::Derived<Make> const& row) {
    print(row.what.text(), path_of(row.table, row.field), "", "");
}

template <class Said, class Shown, class Reference, class Base, class Logical>
void print_row(fields::PlaceField<Said, Shown, Reference, Base, Logical> const& row) {
    print(row.sarif.text() + ", a place",
          path_of(row.reference) + ", its base in " + path_of(row.base) + ", its logical name in " +
              path_of(row.logical),
          "", names_of(row.place_rows));
}

template <class Said, class Rows>
void print_row(fields::InfoList<Said, Rows> const& list) {
    print(list.sarif.text(),
          path_of(bradep::sarif::infos_path, "first_string") + " is `" + list.role + "`", "",
          shown_as(list.shown));
}

template <class Rows>
void print_section(std::string const& title, Rows const& rows) {
    std::cout << "\n**" << title << "**\n\n"
              << "| SARIF | Held in | Given | `show --json` |\n|---|---|---|---|\n";
    for_each_row(rows, [](auto const& row) { print_row(row); });
}

/// Prints a line for each property that is kept as JSON text.
void print_kept(bradep::sarif::kept::Members const& members, std::string const& before) {
    using bradep::sarif::kept::How;
    for (auto const& member : members) {
        auto const pointer = before + std::string(member.name);
        // Only lists have a plural.
        bool const is_list = pointer.ends_with('s');
        if (member.how == How::parts)
            print_kept(*member.below, pointer + (is_list ? "/i/" : "/"));
        else
            std::cout << "- " << code(pointer + (member.how == How::markdown ? "/markdown" : ""))
                      << '\n';
    }
}

}  // namespace

int main() {
    print_section("Logs", fields::of_logs);
    print_section("Results: the check", fields::of_check);
    print_section("Results: the form", fields::of_form);
    print_section("Results: the form, of `locations[0]`", fields::of_form_place);
    print_section("Fingerprints", fields::of_fingerprint);
    print_section("Places: of a location, in its source reference", fields::of_place);
    print_section("Steps: of a location of a thread flow", fields::of_step);
    print_section("Failures", fields::of_failure);
    print_section("Rules: `rules/N`", fields::of_descriptor);
    print_section("Runs: `runs/N/POINTER`", fields::of_run_fact);
    print_section("Information records: their lists", fields::info_lists);
    print_section("Information records: all", fields::of_info);
    for_each_row(fields::info_lists, [](auto const& list) {
        print_section("Information records: " + list.sarif.text(), list.rows);
    });
    std::cout << "\n**Other properties of a result, by JSON pointer**\n\n";
    print_kept(bradep::sarif::kept::of_result, "");
    std::cout << "\n**Other properties of a location of a thread flow, by JSON pointer**\n\n";
    print_kept(bradep::sarif::kept::of_step, "");
    std::cout << "\n**Properties of a run, by JSON pointer**\n\n";
    print_kept(bradep::sarif::kept::of_run, "");
    std::cout << '\n';
    return std::cout.flush() ? 0 : 1;
}

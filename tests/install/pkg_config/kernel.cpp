// Writes a result set in a project whose directories have the same names as those of the library.

#include "core/export.hpp"

#include <sml/bindings/bindings.hpp>
#include <sml/core/Strings.hpp>
#include <sml/schema/Checks.hpp>

#include <iostream>

int main() {
    sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results results;
    sml::Strings_T const                                    file(std::string("src/a.c"));
    results.application_results.checks[{file, 1}].category.choose<"OVFL">();
    std::cout << greeting() << ": "
              << sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(results).size()
              << " bytes\n";
}

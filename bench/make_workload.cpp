// Writes files for measurements:
//
//   make_workload CHECKS FILE               the workload
//   make_workload --numbers BYTES FILE      short numbers and little else
//   make_workload --strings BYTES FILE      distinct strings
//   make_workload --references BYTES FILE   references to few strings
//
// Prints the stem of the root that the file holds. Exit codes: 0 done, 1 the file could not be
// written, 2 usage.

#include "bench/special_files.hpp"
#include "bench/workload.hpp"

#include <charconv>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int done = 0;
constexpr int not_written = 1;
constexpr int bad_usage = 2;

std::optional<std::size_t> count_of(std::string_view text) {
    std::size_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number == 0) return {};
    return number;
}

// Writes the value and returns the stem of its root. An empty `kind` is the workload.
std::string_view write(std::string_view kind, std::size_t count, std::ostream& stream) {
    using namespace sml;
    if (kind == "--numbers") {
        Answers_AnswerInspectionPoint_toStream(bench::short_numbers(count, bench::default_seed),
                                               stream);
        return "Answers_AnswerInspectionPoint";
    }
    if (kind == "--strings") {
        String_To_StringSet_T_toStream(bench::distinct_strings(count, bench::default_seed), stream);
        return "String_To_StringSet_T";
    }
    if (kind == "--references") {
        Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T_toStream(
            bench::string_references(count, bench::default_seed), stream);
        return "Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T";
    }
    Application_Results_Application_Results_toStream(bench::workload(count), stream);
    return "Application_Results_Application_Results";
}

bool is_kind(std::string_view kind) {
    return kind == "--numbers" || kind == "--strings" || kind == "--references";
}

int usage() {
    std::cerr << "usage: make_workload CHECKS FILE\n"
                 "       make_workload --numbers|--strings|--references BYTES FILE\n";
    return bad_usage;
}

}  // namespace

int main(int argc, char** argv) try {
    std::vector<std::string> const arguments(argv + 1, argv + argc);
    bool const                     special = arguments.size() == 3 && is_kind(arguments[0]);
    if (arguments.size() != 2 && !special) return usage();
    auto const count = count_of(arguments[arguments.size() - 2]);
    if (!count) return usage();

    std::string const& file = arguments.back();
    std::ofstream      stream(file, std::ios::binary);
    std::string_view   stem;
    if (stream) stem = write(special ? arguments[0] : "", *count, stream);
    stream.close();
    if (!stream) {
        std::cerr << "make_workload: cannot write " << file << '\n';
        return not_written;
    }
    std::cout << stem << '\n';
    return done;
} catch (std::exception const& error) {
    std::cerr << "make_workload: " << error.what() << '\n';
    return not_written;
}

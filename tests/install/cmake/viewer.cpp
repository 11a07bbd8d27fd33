// Writes a result set, verifies its bytes and reads them again, with both libraries.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/schema_json.hpp>
#include <sml/inspect/verify.hpp>

#include <iostream>
#include <sstream>

int main() {
    std::unordered_map<sml::Strings_T, std::unordered_set<sml::Strings_T>> groups;
    groups[sml::Strings_T(std::string("a"))].insert(sml::Strings_T(std::string("b")));
    std::string const bytes = sml::String_To_StringSet_T_fromCxx(groups);

    using namespace sml::inspect;
    Root const& root = *find_root("String_To_StringSet_T");
    if (verify(root, bytes).answer != Answer::good) return 1;

    std::ostringstream json;
    dump(root, bytes, json);
    std::cout << json.view();

    std::ostringstream again;
    if (encode(json.view(), again).error || again.view() != bytes) return 1;

    std::ostringstream canonical;
    write_canonical(root, bytes, canonical);
    if (canonical.view() != bytes || digest(root, bytes).size() != 64) return 1;
    if (wire_digest(root).size() != 64) return 1;

    decltype(groups) copy;
    sml::String_To_StringSet_T_toCxx(copy, bytes.data());
    return copy == groups ? 0 : 1;
}

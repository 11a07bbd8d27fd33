// The seeds of the fuzz targets from the golden files.
//
//   fuzz_seeds GOLDENS OUT    writes OUT/bytes and OUT/json, one file a golden file

#include <sml/inspect/dump.hpp>
#include "fuzz/input.hpp"
#include "tests/golden/goldens.hpp"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

void write_file(std::filesystem::path const& path, std::string const& content) {
    std::ofstream out(path, std::ios::binary);
    out << content;
    if (!out.flush()) throw std::runtime_error("can't write " + path.string());
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 3) {
        std::cerr << "usage: fuzz_seeds GOLDENS OUT\n";
        return 2;
    }
    std::filesystem::path const out = arguments[2];
    create_directories(out / "bytes");
    create_directories(out / "json");
    for (golden::File const& file : golden::files_in(arguments[1])) {
        write_file(out / "bytes" / file.name, fuzz::input_for(*file.root, file.bytes));
        std::ostringstream json;
        dump(*file.root, file.bytes, json);
        write_file(out / "json" / file.name, json.str());
    }
    return 0;
} catch (std::exception const& failure) {
    std::cerr << "fuzz_seeds: " << failure.what() << '\n';
    return 2;
}

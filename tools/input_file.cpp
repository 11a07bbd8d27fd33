#include "input_file.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "errors.hpp"

namespace bradep {
namespace {

[[noreturn]] void cannot_read(std::string const& path, int error) {
    throw Io_Failure("cannot read " + input_name(path) + ": " + std::strerror(error ? error : EIO));
}

std::string all_of(std::istream& stream) {
    std::string           bytes;
    constexpr std::size_t piece = 1 << 20;
    while (stream) {
        auto const size = bytes.size();
        bytes.resize(size + piece);
        stream.read(bytes.data() + size, piece);
        bytes.resize(size + static_cast<std::size_t>(stream.gcount()));
    }
    return bytes;
}

}  // namespace

std::string input_name(std::string const& path) { return path == "-" ? "standard input" : path; }

std::string read_input(std::string const& path, std::istream& standard_input) {
    if (path == "-") {
        errno = 0;
        auto bytes = all_of(standard_input);
        if (standard_input.bad()) cannot_read(input_name(path), errno);
        return bytes;
    }
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) cannot_read(path, EISDIR);
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) cannot_read(path, errno);
    errno = 0;
    auto bytes = all_of(file);
    if (file.bad()) cannot_read(path, errno);
    return bytes;
}

}  // namespace bradep

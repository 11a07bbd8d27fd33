#pragma once

#include <istream>
#include <string>

namespace bradep {

// The bytes of the file at `path`, or of `standard_input` where it is "-". Throws Io_Failure.
std::string read_input(std::string const& path, std::istream& standard_input);

// How messages call that input.
std::string input_name(std::string const& path);

}  // namespace bradep

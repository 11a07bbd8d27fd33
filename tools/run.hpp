#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

/// Runs the command `bradep`. `args` are its arguments without the program's name. Returns the exit
/// code: 0 done; 1 the input is damaged or refused; 2 wrong usage, a file that cannot be read or
/// written, or no memory left. For 1 and 2 it writes the reason to `err`, one line for each file
/// with an error.
int run(std::vector<std::string> const& args, std::istream& in, std::ostream& out,
        std::ostream& err);

}  // namespace bradep

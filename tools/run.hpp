#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

/// The whole command `bradep`, its name not among `args`. Returns the exit code: 0 done, 1 the
/// input is damaged, 2 wrong usage, a file that cannot be read or written, or no memory left. On 1
/// and 2 `err` says why, in a line for each file with which something is wrong.
int run(std::vector<std::string> const& args, std::istream& in, std::ostream& out,
        std::ostream& err);

}  // namespace bradep

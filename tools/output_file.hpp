#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace bradep {

// Writes a new file beside `target` and renames it onto `target` once all of it is on the disk, so
// that a failure leaves neither a new nor a changed file. A link is followed; a target that is no
// regular file (a pipe, a device) is written to directly. Throws Io_Failure.
void write_file(std::filesystem::path const&              target,
                std::function<void(std::ostream&)> const& write);

// The same for a `write` that seeks; "-" is `standard_output`. A target that can't seek gets all of
// it at the end.
void write_seekable(std::string const& target, std::ostream& standard_output,
                    std::function<void(std::ostream&)> const& write);

}  // namespace bradep

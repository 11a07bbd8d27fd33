#pragma once

#include <filesystem>
#include <functional>
#include <ostream>

namespace bradep {

// Writes a new file beside `target` and renames it onto `target` once all of it is on the disk, so
// that a failure leaves neither a new nor a changed file. A link is followed; a target that is no
// regular file (a pipe, a device) is written to directly. Throws Io_Failure.
void write_file(std::filesystem::path const&              target,
                std::function<void(std::ostream&)> const& write);

}  // namespace bradep

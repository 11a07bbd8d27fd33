#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace bradep {

/// What a file is until all of it is written. Named: also where the file system could do without.
enum class Temporary { unnamed_where_possible, named };

/// Writes a new file beside `target` that takes the place of `target` once all of it is on the
/// disk, so that a failure leaves neither a new nor a changed file. A link is followed; a target
/// that is no regular file (a pipe, a device) is written to directly. Throws IoFailure.
void write_file(std::filesystem::path const&              target,
                std::function<void(std::ostream&)> const& write,
                Temporary                                 kind = Temporary::unnamed_where_possible);

/// The same for a `write` that seeks; "-" is `standard_output`. A target that can't seek gets all
/// of it at the end. `check` is given all the bytes before anybody else sees one; what it throws is
/// passed on, and then nothing has been written.
void write_seekable(std::string const& target, std::ostream& standard_output,
                    std::function<void(std::ostream&)> const&    write,
                    std::function<void(std::string_view)> const& check = nullptr);

/// Removes what has a name and is being written, for a process that is going to end at once.
void remove_temporary_file() noexcept;

}  // namespace bradep

#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

/// The temporary file during writing. `named`: it has a name even if the file system supports files
/// without one.
enum class Temporary { unnamed_where_possible, named };

/// Where a path leads whose last part may be a symbolic link, also to what does not exist. Throws
/// IoFailure.
std::filesystem::path without_links(std::filesystem::path target);

/// Writes a new file in the directory of `target`, which replaces `target` once all of it is on the
/// disk: after a failure there is no new file, and an old one is unchanged. A symbolic link is
/// followed. A target that is not a regular file (a pipe, a device) is written to directly. Throws
/// IoFailure.
void write_file(std::filesystem::path const&              target,
                std::function<void(std::ostream&)> const& write,
                Temporary                                 kind = Temporary::unnamed_where_possible);

/// Makes a new file. `fill` is called with the path of an empty file in the directory of `target`;
/// once `fill` has returned and all of it is on the disk, it becomes the target. If `fill` throws,
/// no file is left, and the exception is passed on. Throws IoFailure, also if the target has come
/// into being meanwhile.
void create_file(std::filesystem::path const&                             target,
                 std::function<void(std::filesystem::path const&)> const& fill);

/// The same as `write_file` for a `write` that seeks; "-" is `standard_output`. A target that can't
/// seek gets all bytes at the end. `check` is called with all the bytes before they are visible at
/// the target; if it throws, nothing is written and the exception is passed on.
void write_seekable(std::string const& target, std::ostream& standard_output,
                    std::function<void(std::ostream&)> const&    write,
                    std::function<void(std::string_view)> const& check = nullptr);

/// Throws IoFailure if the target is one of the files `inputs`.
void refuse_overwriting_an_input(std::string const& target, std::vector<std::string> const& inputs);

/// Removes the named temporary file that is being written, if there is one, for a process that is
/// about to end without unwinding.
void remove_temporary_file() noexcept;

}  // namespace bradep

#pragma once
// A temporary file for the output of a benchmark.

#include <unistd.h>

#include <filesystem>
#include <string>

namespace bench {

/// The path of a temporary file of this process. The destructor removes the file.
class Scratch_File {
public:
    Scratch_File()
        : path_(std::filesystem::temp_directory_path() /
                ("bradep-bench-" + std::to_string(::getpid()))) {}
    ~Scratch_File() { std::filesystem::remove(path_); }
    Scratch_File(Scratch_File const&) = delete;
    Scratch_File& operator=(Scratch_File const&) = delete;

    std::filesystem::path const& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace bench

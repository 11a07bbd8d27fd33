#pragma once

#include <istream>
#include <string>
#include <string_view>

namespace bradep {

// The bytes of the file at `path`, or of `standard_input` where it is "-". A regular file is mapped
// into memory, anything else is read. Throws Io_Failure.
class Input_Bytes {
public:
    Input_Bytes(std::string const& path, std::istream& standard_input);
    ~Input_Bytes();
    Input_Bytes(Input_Bytes const&) = delete;
    Input_Bytes& operator=(Input_Bytes const&) = delete;

    std::string_view view() const { return bytes_; }

private:
    bool map(std::string const& path);

    std::string      read_;
    void*            mapped_ = nullptr;
    std::string_view bytes_;
};

}  // namespace bradep

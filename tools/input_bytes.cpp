#include "input_bytes.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "input_file.hpp"

namespace bradep {

Input_Bytes::Input_Bytes(std::string const& path, std::istream& standard_input) {
    if (path != "-" && map(path)) return;
    read_ = read_input(path, standard_input);
    bytes_ = read_;
}

Input_Bytes::~Input_Bytes() {
    if (mapped_ != nullptr) ::munmap(mapped_, bytes_.size());
}

// Whatever fails here is tried again by reading, which tells why.
bool Input_Bytes::map(std::string const& path) {
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return false;
    struct stat status {};
    bool const  is_regular = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    if (is_regular && status.st_size > 0) {
        auto const  size = static_cast<std::size_t>(status.st_size);
        void* const start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        if (start != MAP_FAILED) {
            mapped_ = start;
            bytes_ = {static_cast<char const*>(start), size};
            ::madvise(start, size, MADV_SEQUENTIAL);
        }
    }
    ::close(file);
    return mapped_ != nullptr;
}

}  // namespace bradep

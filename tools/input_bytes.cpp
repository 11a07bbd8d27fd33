#include "input_bytes.hpp"

#include "errors.hpp"
#include "gzip.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace bradep {

namespace {

constexpr std::size_t first_capacity = 1 << 16;

[[noreturn]] void cannot_read(std::string const& name, int error) {
    throw IoFailure("cannot read " + name + ": " + std::strerror(error ? error : EIO));
}

void refuse_larger(std::string const& name, std::uint64_t size, std::uint64_t max_size) {
    if (size > max_size)
        throw IoFailure("cannot read " + name + ": larger than --max-size " +
                        std::to_string(max_size));
}

class OpenedFile {
public:
    // Opening a named pipe blocks until another process opens it for writing.
    OpenedFile(std::string const& path, std::string const& name) {
        do descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
        while (descriptor_ < 0 && errno == EINTR);
        if (descriptor_ < 0) cannot_read(name, errno);
    }
    ~OpenedFile() { ::close(descriptor_); }
    OpenedFile(OpenedFile const&) = delete;
    OpenedFile& operator=(OpenedFile const&) = delete;

    int descriptor() const { return descriptor_; }

private:
    int descriptor_ = -1;
};

// Returns -1 and sets errno on failure; returns 0 at the end.
ssize_t read_some(int descriptor, char* to, std::size_t most) {
    ssize_t got;
    do got = ::read(descriptor, to, most);
    while (got < 0 && errno == EINTR);
    return got;
}

}  // namespace

std::string input_name(std::string const& path) { return path == "-" ? "standard input" : path; }

InputBytes::InputBytes(std::string const& path, std::uint64_t max_size,
                       std::istream& standard_input)
    : name_(input_name(path)), max_size_(max_size) {
    if (path == "-")
        read_stream(standard_input);
    else
        read_file(path);
}

void InputBytes::read_file(std::string const& path) {
    OpenedFile const file(path, name_);
    struct stat      status {};
    if (::fstat(file.descriptor(), &status) != 0) cannot_read(name_, errno);
    if (S_ISREG(status.st_mode) && status.st_size > 0) {
        auto const size = static_cast<std::uint64_t>(status.st_size);
        refuse_beyond_limit(size);
        grow_to(size + 1);  // room for a read that finds the end
    }
    read_all([&](char* to, std::size_t most) {
        auto const got = read_some(file.descriptor(), to, most);
        if (got < 0) cannot_read(name_, errno);
        return static_cast<std::size_t>(got);
    });
}

void InputBytes::read_stream(std::istream& stream) {
    errno = 0;
    read_all([&](char* to, std::size_t most) {
        stream.read(to, static_cast<std::streamsize>(most));
        if (stream.bad()) cannot_read(name_, errno);
        return static_cast<std::size_t>(stream.gcount());
    });
}

void InputBytes::unpack() {
    if (!is_gzip(view())) return;
    auto const packed = std::exchange(start_, nullptr);
    GzipReader reader({packed.get(), size_}, name_);
    capacity_ = size_ = 0;
    name_ += ", unpacked";
    read_all([&](char* to, std::size_t most) { return reader.read(to, most); });
}

// `read(to, most)` writes up to `most` bytes to `to` and returns how many, 0 at the end.
template <class Read>
void InputBytes::read_all(Read const& read) {
    // Less than one read of the kernel or of a stream can transfer.
    constexpr std::size_t most_at_once = std::size_t{1} << 30;
    for (;;) {
        if (size_ == capacity_) grow_to(next_capacity());
        auto const got = read(start_.get() + size_, std::min(capacity_ - size_, most_at_once));
        if (got == 0) return;
        size_ += got;
        refuse_beyond_limit(size_);
    }
}

// At most one byte more than `max_size_`, which is enough to find that the input is too large.
std::size_t InputBytes::next_capacity() const {
    auto const doubled = std::max(first_capacity, 2 * capacity_);
    return max_size_ < doubled ? static_cast<std::size_t>(max_size_) + 1 : doubled;
}

// realloc moves a large block by remapping its pages instead of copying, and pages that have not
// been read into take no memory.
void InputBytes::grow_to(std::size_t capacity) {
    void* const grown = std::realloc(start_.get(), capacity);
    if (grown == nullptr) throw std::bad_alloc();
    (void)start_.release();
    start_.reset(static_cast<char*>(grown));
    capacity_ = capacity;
}

void InputBytes::refuse_beyond_limit(std::uint64_t size) const {
    refuse_larger(name_, size, max_size_);
}

MappedFile::MappedFile(std::string const& path, std::uint64_t max_size) {
    OpenedFile const file(path, path);
    struct stat      status {};
    if (::fstat(file.descriptor(), &status) != 0) cannot_read(path, errno);
    if (S_ISDIR(status.st_mode)) cannot_read(path, EISDIR);
    if (!S_ISREG(status.st_mode))
        throw IoFailure("cannot read " + path + ": only a regular file can be mapped");
    size_ = static_cast<std::size_t>(status.st_size);
    refuse_larger(path, size_, max_size);
    if (size_ == 0) return;
    void* const start = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file.descriptor(), 0);
    if (start == MAP_FAILED) cannot_read(path, errno);
    start_ = start;
}

MappedFile::~MappedFile() {
    if (start_ != nullptr) ::munmap(start_, size_);
}

}  // namespace bradep

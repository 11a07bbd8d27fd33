#pragma once
// The bytes of an input: read into memory, or mapped.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace bradep {

/// The default of --max-size: the most bytes that a command reads of one input.
constexpr std::uint64_t default_max_size = std::uint64_t{4} << 30;

/// The name of the input at `path` in messages.
std::string input_name(std::string const& path);

/// Reads the file at `path`, or `standard_input` if `path` is "-", into memory of its own. Later
/// changes of the file do not change these bytes. The file is opened once. Throws IoFailure if the
/// input cannot be read or has more than `max_size` bytes.
class InputBytes {
public:
    InputBytes(std::string const& path, std::uint64_t max_size, std::istream& standard_input);

    std::string_view view() const { return {start_.get(), size_}; }

    /// If the bytes are compressed by gzip, takes what they stand for in their place. Throws
    /// DamagedInput if they are damaged, and IoFailure if they stand for more than `max_size`
    /// bytes.
    void unpack();

private:
    struct Free {
        void operator()(char* start) const { std::free(start); }
    };

    void read_file(std::string const& path);
    void read_stream(std::istream& stream);
    template <class Read>
    void        read_all(Read const& read);
    std::size_t next_capacity() const;
    void        grow_to(std::size_t capacity);
    void        refuse_beyond_limit(std::uint64_t size) const;

    std::string                 name_;
    std::uint64_t               max_size_;
    std::unique_ptr<char, Free> start_;
    std::size_t                 capacity_ = 0;
    std::size_t                 size_ = 0;
};

/// The bytes of a regular file, mapped: they take no memory of their own. As long as this object
/// lives, the file must not be made shorter: reading bytes that are gone ends the process.
class MappedFile {
public:
    /// Throws IoFailure if the file cannot be read, is no regular file, or has more than `max_size`
    /// bytes.
    MappedFile(std::string const& path, std::uint64_t max_size);
    ~MappedFile();
    MappedFile(MappedFile const&) = delete;
    MappedFile& operator=(MappedFile const&) = delete;

    std::string_view view() const { return {static_cast<char const*>(start_), size_}; }

private:
    void*       start_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace bradep

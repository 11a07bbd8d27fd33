#include "noting_output.hpp"

#include <cerrno>

namespace bradep {

template <class Put>
bool NotingOutput::Buffer::noting(Put const& put) {
    errno = 0;
    bool const is_done{put()};
    if (!is_done && error == 0) error = errno;
    return is_done;
}

std::streamsize NotingOutput::Buffer::xsputn(char const* bytes, std::streamsize count) {
    return noting([&] { return !out_.write(bytes, count).fail(); }) ? count : 0;
}

NotingOutput::Buffer::int_type NotingOutput::Buffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    char const one = traits_type::to_char_type(byte);
    return xsputn(&one, 1) == 1 ? byte : traits_type::eof();
}

int NotingOutput::Buffer::sync() {
    return noting([&] { return !out_.flush().fail(); }) ? 0 : -1;
}

}  // namespace bradep

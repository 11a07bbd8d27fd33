#include "limited_output.hpp"

#include "errors.hpp"

namespace bradep {

void LimitedOutput::refuse_if_cut(std::string const& name) const {
    if (buffer_.is_cut())
        throw DamagedInput(name + ": what is to be printed is larger than --max-output " +
                           std::to_string(buffer_.most()));
}

std::streamsize LimitedOutput::Buffer::xsputn(char const* bytes, std::streamsize count) {
    if (is_cut_ || static_cast<std::uint64_t>(count) > left_) {
        is_cut_ = true;
        return 0;
    }
    left_ -= static_cast<std::uint64_t>(count);
    return out_.write(bytes, count) ? count : 0;
}

LimitedOutput::Buffer::int_type LimitedOutput::Buffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    char const one = traits_type::to_char_type(byte);
    return xsputn(&one, 1) == 1 ? byte : traits_type::eof();
}

int LimitedOutput::Buffer::sync() { return out_.flush() ? 0 : -1; }

}  // namespace bradep

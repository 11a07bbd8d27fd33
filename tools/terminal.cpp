#include "terminal.hpp"

#include <sml/inspect/text/utf8.hpp>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace bradep {

namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

// Approximate: a line that is cut a column too early or too late does no harm.
constexpr Range without_width[] = {
    {0x0300, 0x036F}, {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFEFF, 0xFEFF}};
constexpr Range wide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                          {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                          {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

template <std::size_t Count>
bool is_in(Range const (&ranges)[Count], std::uint32_t code) {
    return std::ranges::any_of(
        ranges, [&](Range const& range) { return range.first <= code && code <= range.last; });
}

std::size_t columns_of(std::uint32_t code) {
    if (is_in(without_width, code)) return 0;
    return is_in(wide, code) ? 2 : 1;
}

bool is_terminal(std::string const& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) return false;
    int const descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) return false;
    bool const is_one = ::isatty(descriptor) != 0;
    ::close(descriptor);
    return is_one;
}

}  // namespace

bool prints_on_terminal(Streams const& streams) {
    return streams.prints_on_standard_output && ::isatty(STDOUT_FILENO) != 0;
}

std::size_t terminal_columns(Streams const& streams) {
    struct winsize size {};
    if (!prints_on_terminal(streams) || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

std::size_t display_columns(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        auto const character = sml::inspect::first_character(text);
        columns += columns_of(character.code);
        text.remove_prefix(character.length);
    }
    return columns;
}

std::string cut_to_columns(std::string_view line, std::size_t columns) {
    constexpr std::string_view mark = "\u2026";
    std::size_t                kept = 0;  // bytes that fit together with the mark
    std::size_t                taken = 0;
    for (std::size_t at = 0; at < line.size();) {
        auto const character = sml::inspect::first_character(line.substr(at));
        taken += columns_of(character.code);
        if (taken > columns) return std::string(line.substr(0, kept)).append(mark);
        at += character.length;
        if (taken < columns) kept = at;
    }
    return std::string(line);
}

void print_lines(Streams& streams, std::string_view text) {
    auto const columns = terminal_columns(streams);
    if (columns == 0) {
        streams.out << text;
        return;
    }
    while (!text.empty()) {
        auto const end = std::min(text.find('\n'), text.size());
        streams.out << cut_to_columns(text.substr(0, end), columns) << '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

void declare_output(CLI::App& app, Output& output, std::string const& what) {
    app.add_option("-o,--output", output.target,
                   what + "; the file appears when it is complete. - is standard output")
        ->required()
        ->type_name("FILE");
    app.add_flag("--force", output.force, "Also where the output is a terminal");
}

void refuse_terminal(Output const& output, Streams const& streams) {
    bool const is_standard_output = output.target == "-";
    if (output.force ||
        !(is_standard_output ? prints_on_terminal(streams) : is_terminal(output.target)))
        return;
    throw IoFailure((is_standard_output ? "standard output" : output.target) +
                    " is a terminal: bytes are written to it with --force only");
}

}  // namespace bradep

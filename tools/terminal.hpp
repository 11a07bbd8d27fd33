#pragma once
// What is different where a person looks on.

#include "command.hpp"

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace bradep {

bool prints_on_terminal(Streams const& streams);

/// How many columns the terminal has that the streams print on; 0 where there is none.
std::size_t terminal_columns(Streams const& streams);

/// The line, or as much of it as fits into so many columns with a mark that it was longer. No
/// control character is in it.
std::string cut_to_columns(std::string_view line, std::size_t columns);

/// Prints the text, its lines cut where they go to a terminal.
void print_lines(Streams& streams, std::string_view text);

/// The file that a command writes bytes to.
struct Output {
    std::string target;
    bool        force = false;
};

/// Declares -o and --force.
void declare_output(CLI::App& app, Output& output, std::string const& what);

/// Throws IoFailure where the target is a terminal, which would obey the bytes.
void refuse_terminal(Output const& output, Streams const& streams);

}  // namespace bradep

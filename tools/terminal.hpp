#pragma once
// Output to a terminal: lines are cut, and bytes are refused.

#include "command.hpp"

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace bradep {

bool prints_on_terminal(Streams const& streams);

/// The number of columns of the terminal that standard output goes to; 0 if it goes elsewhere.
std::size_t terminal_columns(Streams const& streams);

/// How many columns of a terminal a text takes, approximately. It must not contain control
/// characters.
std::size_t display_columns(std::string_view text);

/// Returns the line, or its start with an ellipsis, so that it fits into `columns`. `line` must not
/// contain control characters.
std::string cut_to_columns(std::string_view line, std::size_t columns);

/// Prints the text. On a terminal, each line is cut to its width.
void print_lines(Streams& streams, std::string_view text);

/// The file that a command writes bytes to.
struct Output {
    std::string target;
    bool        force = false;
};

/// Declares -o and --force.
void declare_output(CLI::App& app, Output& output, std::string const& what);

/// Throws IoFailure if the target is a terminal, which could obey control characters in the bytes,
/// unless --force was given.
void refuse_terminal(Output const& output, Streams const& streams);

}  // namespace bradep

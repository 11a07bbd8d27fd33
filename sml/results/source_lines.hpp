#pragma once
// The lines of sources that findings flag.

#include <sml/results/hash.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sml::results {

/// What stands at a place: the text of its line, and the lines around. Blanks do not matter.
struct Flagged {
    Hash text;          ///< none if there is no such line, or nothing in it
    Hash surroundings;  ///< of the two lines before and behind that are not blank
};

/// A text cut into lines.
class SourceLines {
public:
    explicit SourceLines(std::string text);

    /// Lines count from 1.
    Flagged at(std::int64_t line) const;

private:
    Hash surroundings(std::size_t index) const;

    std::string                   text_;
    std::vector<std::string_view> lines_;
};

/// The text without any blanks, as they are when it is formatted anew.
std::string without_blanks(std::string_view text);

/// The text of a source below a directory: the file with the longest end of this path. None if
/// there is no such file. Files of more than 64 MiB are not read.
std::optional<std::string> source_text(std::filesystem::path const& directory,
                                       std::string const&           path);

}  // namespace sml::results

#include <sml/results/source_lines.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace sml::results {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view blanks = " \t\r\n\f\v";

bool is_blank(std::string_view line) {
    return line.find_first_not_of(blanks) == std::string_view::npos;
}

}  // namespace

std::string without_blanks(std::string_view text) {
    std::string clean(text);
    std::erase_if(clean, [](char c) { return blanks.find(c) != std::string_view::npos; });
    return clean;
}

SourceLines::SourceLines(std::string text) : text_(std::move(text)) {
    std::string_view rest = text_;
    while (!rest.empty()) {
        auto const end = std::min(rest.find('\n'), rest.size());
        lines_.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

Flagged SourceLines::at(std::int64_t line) const {
    if (line < 1 || line > static_cast<std::int64_t>(lines_.size())) return {};
    auto const index = static_cast<std::size_t>(line) - 1;
    if (is_blank(lines_[index])) return {};
    return {hash_of(without_blanks(lines_[index])), surroundings(index)};
}

Hash SourceLines::surroundings(std::size_t index) const {
    constexpr int wanted = 2;
    std::string   around;
    int           found = 0;
    for (std::size_t i = index; i > 0 && found < wanted; --i) {
        if (is_blank(lines_[i - 1])) continue;
        around += without_blanks(lines_[i - 1]) + '\n';
        ++found;
    }
    around += '\f';
    found = 0;
    for (std::size_t i = index + 1; i < lines_.size() && found < wanted; ++i) {
        if (is_blank(lines_[i])) continue;
        around += without_blanks(lines_[i]) + '\n';
        ++found;
    }
    return hash_of(around);
}

std::optional<std::string> source_text(fs::path const& directory, std::string const& path) {
    constexpr std::uintmax_t largest = std::uintmax_t{64} << 20;
    std::string_view         rest = path;
    while (!rest.empty()) {
        std::error_code error;
        bool const      leaves = rest.starts_with("../");
        auto const      file = directory / fs::path(rest.substr(rest.starts_with('/') ? 1 : 0));
        if (!leaves && fs::is_regular_file(file, error) && fs::file_size(file, error) <= largest) {
            std::ifstream stream(file, std::ios::binary);
            if (stream) return std::string(std::istreambuf_iterator<char>(stream), {});
        }
        auto const slash = rest.find('/');
        if (slash == std::string_view::npos) break;
        rest.remove_prefix(slash + 1);
    }
    return std::nullopt;
}

}  // namespace sml::results

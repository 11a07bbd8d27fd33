#pragma once
// Rules and files of two sides under common numbers, and texts that both sides know.

#include <sml/results/paths.hpp>
#include <sml/results/read_side.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace sml::results {

/// Gives the rules and files of two sides numbers that both share. Rules of different tools differ,
/// unless one side does not have the tool: it may have got another name.
class JoinedNames {
public:
    /// `given` are roots that are known to have moved. `olds` and `news` must outlive this object.
    JoinedNames(SideData const& olds, SideData const& news, std::vector<MovedRoot> const& given);

    /// Numbers the rules and files of the findings, which have the numbers of their side. Besides
    /// the two sides, this may be done for other findings that belong to one of them; their files
    /// have no part in finding out which roots have moved.
    void apply(SideData& side);

    /// The numbers that the rules of the findings get if the old side has had these tools. Must
    /// precede `apply`.
    std::vector<std::uint32_t> rules_of(SideData const&                 side,
                                        std::vector<std::string> const& old_tools);

    /// The name of a file: the same for both sides if its path differs in the root alone.
    std::string name_of(Side side, std::string const& path) const;

    /// The names by number. Those of the two sides are sorted.
    std::vector<std::string> const& files() const { return files_; }

    /// Which paths stand for one file.
    Files const& paths() const { return paths_; }

private:
    std::uint32_t file_number(std::string const& name);

    SideData const&          olds_;
    SideData const&          news_;
    Files                    paths_;
    Names                    rules_;
    std::vector<std::string> files_;
    std::size_t              sorted_;  // so many of them are those of the two sides

    std::unordered_map<std::string, std::uint32_t> others_;  // the numbers of the other files
};

/// What is known of flagged lines: nothing, the texts of regions, or whole lines.
enum class Texts : std::uint8_t { none, of_regions, of_lines };

Texts texts_of(Finding const& one);
/// The most that is known of any finding.
Texts texts_of(SideData const& side);

/// Forgets the texts of both sides if they can't be compared: texts that only one side has, or
/// regions and whole lines, would make all findings differ.
void forget_texts_of_one_side(SideData& olds, SideData& news);

/// Forgets the texts of findings of which other things are known.
void forget_other_texts(SideData& side, Texts known);

}  // namespace sml::results

#pragma once
// The files of the page, which this program holds.

#include <string>
#include <string_view>

namespace bradep::report {

/// The files beside `index.html`.
struct PageFiles {
    std::string_view script;    ///< report.js
    std::string_view style;     ///< report.css
    std::string_view licences;  ///< licences.txt, of the libraries in the script
};
PageFiles page_files();

/// The text of `index.html`. `title` is UTF-8.
std::string page_of_directory(std::string_view title);

/// The same for a report of one file: with script and style, which the page's own policy allows by
/// their hashes, and with the elements that hold the chunks in between.
struct SinglePage {
    std::string before;  ///< the chunks
    std::string behind;
};
SinglePage single_page(std::string_view title);

}  // namespace bradep::report

#include <report/writer/page.hpp>

#include <report/writer/packed.hpp>
#include <sml/inspect/sha256.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <stdexcept>

// What `page.S` includes.
extern "C" {
extern char const bradep_page_index[], bradep_page_index_end[];
extern char const bradep_page_script[], bradep_page_script_end[];
extern char const bradep_page_style[], bradep_page_style_end[];
extern char const bradep_page_licences[], bradep_page_licences_end[];
}

namespace bradep::report {

namespace {

using Values = std::map<std::string_view, std::string>;

constexpr std::string_view mark_of_chunks = "@CHUNKS@";

std::string escaped(std::string_view text) {
    static std::map<char, std::string_view> const entities = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    std::string markup;
    for (char const c : text) {
        auto const entity = entities.find(c);
        if (entity == entities.end())
            markup += c;
        else
            markup += entity->second;
    }
    return markup;
}

// Replaces each mark, as in @TITLE@, once. What stands for one is not looked at again.
std::string filled(std::string_view text, Values const& values) {
    std::string whole;
    while (!text.empty()) {
        auto const start = std::min(text.find('@'), text.size());
        whole += text.substr(0, start);
        text.remove_prefix(start);
        auto const end = text.find('@', 1);
        auto const value =
            end == std::string_view::npos ? values.end() : values.find(text.substr(0, end + 1));
        if (value == values.end()) {
            whole += text.substr(0, 1);
            text.remove_prefix(std::min<std::size_t>(1, text.size()));
        } else {
            whole += value->second;
            text.remove_prefix(end + 1);
        }
    }
    return whole;
}

std::string source_by_hash(std::string_view text) {
    sml::inspect::Sha256 hash;
    hash.add(text);
    return "'sha256-" + base64_of(hash.bytes()) + "'";
}

std::string_view page_template() { return {bradep_page_index, bradep_page_index_end}; }

}  // namespace

PageFiles page_files() {
    return {{bradep_page_script, bradep_page_script_end},
            {bradep_page_style, bradep_page_style_end},
            {bradep_page_licences, bradep_page_licences_end}};
}

std::string page_of_directory(std::string_view title) {
    return filled(page_template(), {{"@TITLE@", escaped(title)},
                                    {"@SCRIPT_SOURCE@", "'self'"},
                                    {"@STYLE_SOURCE@", "'self'"},
                                    {"@STYLE@", R"(<link rel="stylesheet" href="report.css">)"},
                                    {"@SCRIPT@", R"(<script src="report.js"></script>)"},
                                    {mark_of_chunks, ""}});
}

SinglePage single_page(std::string_view title) {
    auto const files = page_files();
    Values     values = {{"@TITLE@", escaped(title)},
                         {"@SCRIPT_SOURCE@", source_by_hash(files.script)},
                         {"@STYLE_SOURCE@", source_by_hash(files.style)},
                         {"@STYLE@", "<style>" + std::string(files.style) + "</style>"},
                         {"@SCRIPT@", "<script>" + std::string(files.script) + "</script>"}};
    auto const all = page_template();
    auto const middle = all.find(mark_of_chunks);
    return {filled(all.substr(0, middle), values),
            filled(all.substr(middle + mark_of_chunks.size()), values)};
}

}  // namespace bradep::report

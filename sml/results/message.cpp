#include <sml/results/message.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace sml::results {

namespace {

using namespace std::string_view_literals;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_hexadecimal(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_of_name(char c) { return is_letter(c) || is_digit(c) || c == '_'; }
bool is_slash(char c) { return c == '/' || c == '\\'; }
// Of paths: bytes beyond ASCII, too.
bool is_of_path(char c) {
    return is_of_name(c) || is_slash(c) || static_cast<unsigned char>(c) >= 0x80 ||
           "$%+-.@~"sv.find(c) != std::string_view::npos;
}

std::string in_lower_case(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

bool is_word_of_place(std::string_view word) {
    static constexpr std::array words = {"line"sv, "lines"sv,   "ln"sv,     "column"sv,
                                         "col"sv,  "columns"sv, "linecol"sv};
    if (word.size() > 7) return false;
    auto const lower = in_lower_case(word);
    return std::ranges::find(words, lower) != words.end();
}

// As in 123e4567-e89b-12d3-a456-426614174000.
std::size_t length_of_guid(std::string_view text) {
    constexpr std::size_t length = 36;
    if (text.size() < length) return 0;
    for (std::size_t i = 0; i < length; ++i) {
        bool const is_dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (is_dash ? text[i] != '-' : !is_hexadecimal(text[i])) return 0;
    }
    return text.size() > length && is_of_name(text[length]) ? 0 : length;
}

/// Goes through a message once. A word is a run of characters that paths can have.
class Cleaner {
public:
    explicit Cleaner(std::string_view message) : text_(message) { clean_.reserve(text_.size()); }

    std::string run() {
        while (at_ < text_.size()) {
            if (is_of_path(text_[at_]))
                take_word();
            else
                take_other();
        }
        return std::move(clean_);
    }

private:
    static constexpr char place = '#';
    static constexpr char temporary = '~';

    void take_word() {
        if (auto const length = length_of_guid(text_.substr(at_)); length > 0) {
            at_ += length;
            return put_temporary();
        }
        std::size_t end = at_;
        while (end < text_.size() && is_of_path(text_[end])) ++end;
        auto const word = text_.substr(at_, end - at_);
        at_ = end;
        if (expects_place_ && put_places(word)) return;
        expects_place_ = is_word_of_place(word);
        bool const is_before_path =
            at_ + 1 < text_.size() && text_[at_] == ':' && is_slash(text_[at_ + 1]);
        bool const is_drive = word.size() == 1 && is_letter(word[0]);
        if (is_before_path && (is_drive || word == "file")) {  // the path follows behind the colon
            ++at_;
            return;
        }
        put_word(word);
    }

    // Numbers behind "line": also 3-7. Returns whether there were any.
    bool put_places(std::string_view word) {
        if (!is_digit(word.front())) return false;
        for (std::size_t i = 0; i < word.size(); ++i) {
            if (!is_digit(word[i]))
                clean_ += word[i];
            else if (i == 0 || !is_digit(word[i - 1]))
                clean_ += place;
        }
        return true;
    }

    void put_word(std::string_view word) {
        // A file is known by its name alone: it can be below another root.
        std::string_view name = word;
        auto const       stop = name.find_last_not_of('.');  // a full stop ends a sentence
        std::string_view tail = stop == std::string_view::npos ? ""sv : name.substr(stop + 1);
        name.remove_suffix(tail.size());
        auto const slash = name.find_last_of("/\\");
        bool const is_path = slash != std::string_view::npos && slash + 1 < name.size();
        if (is_path) {
            bool const is_temporary = is_temporary_directory(name.substr(0, slash));
            name.remove_prefix(slash + 1);
            if (is_temporary) {
                put_temporary();
                clean_ += tail;
                return;
            }
        }
        names_source_ = is_path || has_suffix_of_sources(name);
        names_file_ = names_source_ || can_be_file(name);
        start_of_name_ = clean_.size();
        put_name(name);
        clean_ += tail;
        if (!tail.empty()) forget_file();
    }

    void forget_file() { names_file_ = names_source_ = false; }

    static std::string suffix_of(std::string_view name) {
        auto const dot = name.rfind('.');
        return dot == std::string_view::npos ? std::string() : in_lower_case(name.substr(dot + 1));
    }

    // Before a number in brackets: "list.get(0)" is no place.
    static bool has_suffix_of_sources(std::string_view name) {
        static constexpr std::array suffixes = {
            "adb"sv,   "ads"sv, "asm"sv,    "bas"sv,    "c"sv,    "cc"sv,   "cmake"sv, "cpp"sv,
            "cs"sv,    "css"sv, "cu"sv,     "cxx"sv,    "dart"sv, "erl"sv,  "f"sv,     "f90"sv,
            "fs"sv,    "go"sv,  "gradle"sv, "groovy"sv, "h"sv,    "hh"sv,   "hpp"sv,   "hs"sv,
            "html"sv,  "hxx"sv, "inc"sv,    "java"sv,   "js"sv,   "json"sv, "jsx"sv,   "kt"sv,
            "kts"sv,   "lua"sv, "m"sv,      "md"sv,     "mjs"sv,  "ml"sv,   "mm"sv,    "pas"sv,
            "php"sv,   "pl"sv,  "pm"sv,     "proto"sv,  "ps1"sv,  "py"sv,   "rb"sv,    "rs"sv,
            "scala"sv, "sh"sv,  "sql"sv,    "swift"sv,  "tf"sv,   "toml"sv, "ts"sv,    "tsx"sv,
            "txt"sv,   "vb"sv,  "vue"sv,    "xaml"sv,   "xml"sv,  "yaml"sv, "yml"sv};
        static_assert(std::ranges::is_sorted(suffixes));
        return std::ranges::binary_search(suffixes, std::string_view(suffix_of(name)));
    }

    // Before a colon and a number: "example.com:8443" and "10.0.0.1:80" are no places.
    static bool can_be_file(std::string_view name) {
        static constexpr std::array domains = {"com"sv, "edu"sv,   "gov"sv, "internal"sv,
                                               "io"sv,  "local"sv, "net"sv, "org"sv};
        auto const                  suffix = suffix_of(name);
        return !suffix.empty() && is_letter(suffix.front()) &&
               !std::ranges::binary_search(domains, std::string_view(suffix));
    }

    static bool is_temporary_directory(std::string_view directory) {
        auto lower = in_lower_case(directory);
        std::ranges::replace(lower, '\\', '/');
        return lower.ends_with("/tmp") || lower.ends_with("/temp");
    }

    void put_name(std::string_view name) {
        if (is_address(name)) return put_temporary();
        auto const        letters = name.find_first_not_of("_%$.");
        auto const        bare = letters == std::string_view::npos ? ""sv : name.substr(letters);
        auto const        lower = in_lower_case(bare.substr(0, 4));
        std::size_t const prefix = lower == "temp" ? 4 : lower.starts_with("tmp") ? 3 : 0;
        auto const        rest = bare.substr(prefix);
        bool const is_number = rest.find_first_of("0123456789") == rest.find_first_not_of("._-");
        // Made-up names start with "tmp" and have any characters behind; many words, with "temp".
        bool const is_temporary = std::ranges::any_of(rest, is_digit) && (prefix == 3 || is_number);
        if (prefix == 0 || !is_temporary) {
            clean_ += name;
            return;
        }
        clean_ += name.substr(0, letters + prefix);
        put_temporary();
        auto const dot = bare.find('.', prefix);  // the kind of a file stays
        if (dot != std::string_view::npos) clean_ += bare.substr(dot);
    }

    // An address, or a long number in hexadecimal that looks made up.
    static bool is_address(std::string_view name) {
        constexpr std::size_t least_address = 8;
        constexpr std::size_t least_hash = 16;
        bool const            has_prefix = name.starts_with("0x") || name.starts_with("0X");
        if (has_prefix) name.remove_prefix(2);
        if (name.size() < (has_prefix ? least_address : least_hash)) return false;
        if (!std::ranges::all_of(name, is_hexadecimal)) return false;
        return has_prefix ||
               (std::ranges::any_of(name, is_digit) && std::ranges::any_of(name, is_letter));
    }

    void put_temporary() {
        clean_ += temporary;
        forget_file();
        expects_place_ = false;
    }

    // A file with ":12:3", "(12)" or "(12,3)" is a place, and so is "](1)", which refers to a
    // related location.
    void take_other() {
        char const c = text_[at_++];
        clean_ += c;
        bool const is_link = c == '(' && clean_.size() > 1 && clean_[clean_.size() - 2] == ']';
        bool const opens = (c == ':' && names_file_) || (c == '(' && names_source_);
        if (opens || is_link) return take_numbers(opens);
        forget_file();
        if ("\t :#="sv.find(c) == std::string_view::npos) expects_place_ = false;
    }

    void take_numbers(bool are_of_file) {
        bool const has_number = at_ < text_.size() && is_digit(text_[at_]);
        if (has_number && are_of_file) clean_.resize(start_of_name_);
        while (at_ < text_.size() && is_digit(text_[at_])) {
            clean_ += place;
            while (at_ < text_.size() && is_digit(text_[at_])) ++at_;
            bool const goes_on = at_ + 1 < text_.size() && are_of_file &&
                                 ":,-"sv.find(text_[at_]) != std::string_view::npos &&
                                 is_digit(text_[at_ + 1]);
            if (goes_on) clean_ += text_[at_++];
        }
        forget_file();
        expects_place_ = false;
    }

    std::string_view text_;
    std::size_t      at_ = 0;
    std::string      clean_;
    bool             expects_place_ = false;  // the word before said that a number is a line
    bool             names_file_ = false;     // the word before can be the name of a file
    bool             names_source_ = false;   // it is a path, or has a suffix of sources
    std::size_t      start_of_name_ = 0;      // where that starts in `clean_`
};

// Takes a string of JSON. Of escapes only those of slashes and quotes are replaced: no other
// character takes part in a place.
std::string take_string(std::string_view& json) {
    std::string text;
    std::size_t at = 1;
    for (; at < json.size() && json[at] != '"'; ++at) {
        bool const is_escape = json[at] == '\\' && at + 1 < json.size();
        if (is_escape && !is_slash(json[++at]) && json[at] != '"') text += ' ';
        text += json[at];
    }
    json.remove_prefix(std::min(at + 1, json.size()));
    return text;
}

}  // namespace

std::string without_places(std::string_view message) { return Cleaner(message).run(); }

std::string payload_without_places(std::string_view json) {
    static constexpr std::array names = {"\"first_position\":"sv, "\"second_position\":"sv,
                                         "\"reference\":"sv};
    std::string                 clean;
    clean.reserve(json.size());
    while (!json.empty()) {
        auto const* const name = std::ranges::find_if(
            names, [&](std::string_view start) { return json.starts_with(start); });
        if (name != names.end()) {
            clean += *name;
            json.remove_prefix(name->size());
            json.remove_prefix(std::min(json.find_first_of(",}"), json.size()));
        } else if (json.front() == '"') {
            clean += '"' + without_places(take_string(json)) + '"';
        } else {
            clean += json.front();
            json.remove_prefix(1);
        }
    }
    return clean;
}

std::string without_numbers(std::string_view message) {
    std::string clean;
    clean.reserve(message.size());
    for (char const c : message) {
        if (!is_digit(c))
            clean += c;
        else if (clean.empty() || clean.back() != '#')
            clean += '#';
    }
    return clean;
}

}  // namespace sml::results

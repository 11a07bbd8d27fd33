#include <sml/inspect/text/json_reader.hpp>

#include <sml/inspect/text/quote.hpp>
#include <sml/inspect/text/utf8.hpp>

#include <algorithm>
#include <charconv>

namespace sml::inspect {

namespace {

constexpr std::string_view digits = "0123456789";

bool is_high(std::uint32_t code) { return code >= 0xD800 && code <= 0xDBFF; }
bool is_low(std::uint32_t code) { return code >= 0xDC00 && code <= 0xDFFF; }
/// Whether a lone surrogate stands for a byte that is not UTF-8.
bool is_byte(std::uint32_t code) { return code >= 0xDC80 && code <= 0xDCFF; }

/// The length in bytes of the JSON number that `text` starts with; 0 if it starts with none.
std::size_t number_length(std::string_view text) {
    std::size_t at = 0;
    auto const  take = [&](char c) { return at < text.size() && text[at] == c && ++at > 0; };
    auto const  take_digits = [&] {
        std::size_t const start = at;
        at = std::min(text.find_first_not_of(digits, at), text.size());
        return at > start;
    };
    take('-');
    if (!take('0') && !take_digits()) return 0;
    if (take('.') && !take_digits()) return 0;
    if (!take('e') && !take('E')) return at;
    if (!take('-')) take('+');
    return take_digits() ? at : 0;
}

}  // namespace

std::size_t JsonReader::offset() {
    peek();
    return at_;
}

char JsonReader::peek() {
    at_ = std::min(text_.find_first_not_of(" \t\n\r", at_), text_.size());
    return at_ < text_.size() ? text_[at_] : '\0';
}

std::string JsonReader::description() {
    if (offset() == text_.size()) return "the end of the text";
    std::string_view const rest = text_.substr(at_);
    switch (rest.front()) {
        case '{': return "an object";
        case '[': return "an array";
        case '"': return "a string";
        default: break;
    }
    if (std::size_t const length = number_length(rest); length > 0)
        return "the number " + std::string(rest.substr(0, std::min<std::size_t>(length, 40)));
    for (std::string_view const word : {"true", "false", "null"})
        if (rest.starts_with(word)) return std::string(word);
    return quoted(rest.substr(0, first_character(rest).length));
}

void JsonReader::open(char bracket, std::string_view expected) {
    if (peek() != bracket) fail(at_, expected, description());
    before_ = bracket;
    ++at_;
}

bool JsonReader::next(char closing) {
    bool const is_first = before_ == '{' || before_ == '[';
    char const c = peek();
    if (c == closing) {
        before_ = closing;
        ++at_;
        return false;
    }
    if (is_first) return true;
    if (c != ',') fail(at_, std::string("',' or '") + closing + '\'', description());
    before_ = ',';
    ++at_;
    if (peek() == closing) fail(at_, "an element behind the comma", description());
    return true;
}

void JsonReader::close(char closing, std::string_view expected) {
    if (!next(closing)) return;
    std::size_t const at = at_;
    bool const        is_member = closing == '}' && peek() == '"';
    fail(at, expected, is_member ? quoted(string("the name of a member")) : description());
}

std::pmr::string JsonReader::name() {
    std::pmr::string name = string("the name of a member");
    if (peek() != ':') fail(at_, "':'", description());
    before_ = ':';
    ++at_;
    return name;
}

bool JsonReader::take_word(std::string_view word) {
    peek();
    if (!text_.substr(at_).starts_with(word)) return false;
    before_ = word.front();
    at_ += word.size();
    return true;
}

bool JsonReader::take_null() { return take_word("null"); }

bool JsonReader::boolean() {
    if (take_word("true")) return true;
    if (!take_word("false")) fail(at_, "true or false", description());
    return false;
}

std::pmr::string JsonReader::string(std::string_view expected) {
    if (peek() != '"') fail(at_, expected, description());
    std::size_t const start = at_++;
    std::pmr::string  bytes(memory_);
    while (at_ < text_.size() && text_[at_] != '"') string_piece(bytes);
    if (at_ == text_.size()) fail(start, "the end of the string that starts here", description());
    before_ = '"';
    ++at_;
    return bytes;
}

void JsonReader::string_piece(std::pmr::string& bytes) {
    std::size_t const plain = at_;
    while (at_ < text_.size()) {
        auto const c = static_cast<unsigned char>(text_[at_]);
        if (c < 0x20 || c >= 0x80 || c == '"' || c == '\\') break;
        ++at_;
    }
    bytes += text_.substr(plain, at_ - plain);
    if (at_ == text_.size() || text_[at_] == '"') return;
    if (text_[at_] == '\\') return escape(bytes);
    auto const [code, length, valid] = first_character(text_.substr(at_));
    if (!valid) fail(at_, "UTF-8", byte_text(text_[at_]));
    if (code < 0x20) fail(at_, "an escape for a control character", byte_text(text_[at_]));
    bytes += text_.substr(at_, length);
    at_ += length;
}

void JsonReader::escape(std::pmr::string& bytes) {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    std::size_t const          start = at_++;
    char const                 letter = at_ < text_.size() ? text_[at_] : '\0';
    if (std::size_t const i = letters.find(letter); letter != '\0' && i < letters.size()) {
        bytes += meanings[i];
        ++at_;
        return;
    }
    if (letter != 'u') fail(start, "an escape that JSON has", quoted(text_.substr(start, 2)));
    ++at_;
    std::uint32_t code = four_digits();
    if (is_high(code) && text_.substr(at_).starts_with("\\u")) {
        at_ += 2;
        std::uint32_t const low = four_digits();
        if (!is_low(low)) fail(start, "two surrogates that fit", "another pair");
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    } else if (is_byte(code)) {
        bytes += static_cast<char>(code - 0xDC80 + 0x80);
        return;
    } else if (is_high(code) || is_low(code)) {
        fail(start, "a pair of surrogates, or one from U+DC80 to U+DCFF for a byte", "one alone");
    }
    std::string character;
    append_character(character, code);
    bytes += character;
}

std::uint32_t JsonReader::four_digits() {
    std::uint32_t     code = 0;
    auto const        text = text_.substr(at_, 4);
    char const* const end = text.data() + text.size();
    bool const        is_hexadecimal =
        text.size() == 4 && text.find_first_not_of("0123456789abcdefABCDEF") == text.npos;
    if (!is_hexadecimal) fail(at_, "four hexadecimal digits", quoted(text));
    std::from_chars(text.data(), end, code, 16);
    at_ += 4;
    return code;
}

std::string_view JsonReader::number(std::string_view expected) {
    peek();
    std::size_t const length = number_length(text_.substr(at_));
    if (length == 0) fail(at_, expected, description());
    before_ = '0';
    at_ += length;
    return text_.substr(at_ - length, length);
}

void JsonReader::end() {
    if (peek() != '\0' || at_ < text_.size()) fail(at_, "the end of the text", description());
}

void JsonReader::fail(std::size_t offset, std::string_view expected, std::string found) const {
    throw JsonMisfit{offset, std::string(expected), std::move(found)};
}

std::optional<std::int64_t> integer_of_json(std::string_view number) {
    bool const is_negative = number.starts_with('-');
    if (is_negative) number.remove_prefix(1);
    std::size_t const mark = std::min(number.find_first_of("eE"), number.size());
    std::string       all(number.substr(0, mark));
    std::int64_t      exponent = 0;
    if (mark < number.size()) {
        std::string_view text = number.substr(mark + 1);
        if (text.starts_with('+')) text.remove_prefix(1);
        auto const parsed = std::from_chars(text.data(), text.data() + text.size(), exponent);
        bool const is_zero = all.find_first_not_of("0.") == all.npos;
        if (is_zero) return 0;
        // No text has enough digits to make up for such an exponent.
        constexpr std::int64_t most = std::int64_t{1} << 50;
        if (parsed.ec != std::errc() || exponent > most || exponent < -most) return std::nullopt;
    }
    if (std::size_t const point = all.find('.'); point != all.npos) {
        exponent -= static_cast<std::int64_t>(all.size() - point - 1);
        all.erase(point, 1);
    }
    for (; exponent < 0 && all.size() > 1 && all.back() == '0'; ++exponent) all.pop_back();
    if (all.find_first_not_of('0') == all.npos) return 0;
    constexpr std::int64_t most_digits = 19;
    if (exponent < 0 || exponent > most_digits) return std::nullopt;
    all.append(static_cast<std::size_t>(exponent), '0');
    if (is_negative) all.insert(0, 1, '-');
    std::int64_t value = 0;
    if (std::from_chars(all.data(), all.data() + all.size(), value).ec != std::errc())
        return std::nullopt;
    return value;
}

Position position_of(std::string_view text, std::size_t offset) {
    std::string_view const before = text.substr(0, offset);
    std::size_t const      line_start = before.rfind('\n') + 1;  // npos + 1 is 0
    auto const             is_start = [](char c) { return (c & 0xC0) != 0x80; };
    return {
        1 + static_cast<std::size_t>(std::ranges::count(before, '\n')),
        1 + static_cast<std::size_t>(std::ranges::count_if(before.substr(line_start), is_start))};
}

}  // namespace sml::inspect

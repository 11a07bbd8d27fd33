#include "json_cursor.hpp"

#include "json_input.hpp"
#include "json_parsing.hpp"

#include <boost/json/basic_parser_impl.hpp>

#include <array>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>
#include <vector>

namespace bradep::json_input {

namespace {

constexpr std::size_t first_memory = std::size_t{1} << 20;

// To step over such a value once more takes longer than to look up where it ends.
constexpr std::size_t long_value = std::size_t{1} << 16;

constexpr auto marks_of(std::string_view characters) {
    std::array<bool, 256> marks{};
    for (char const c : characters) marks[static_cast<unsigned char>(c)] = true;
    return marks;
}
constexpr auto is_blank = marks_of(" \t\r\n");
constexpr auto ends_word = marks_of(" \t\r\n,]}");
constexpr auto is_structure = marks_of("\"[]{}");

std::size_t find(std::string_view text, std::size_t at, std::array<bool, 256> const& marks,
                 bool wanted) {
    while (at < text.size() && marks[static_cast<unsigned char>(text[at])] != wanted) ++at;
    return at;
}

// Whether the character at `at` is escaped: an odd number of backslashes stands before it.
bool is_escaped(std::string_view text, std::size_t at) {
    std::size_t start = at;
    while (start > 0 && text[start - 1] == '\\') --start;
    return (at - start) % 2 == 1;
}

// Accepts all values and keeps none. The limits are those of a parser that makes values.
struct NoValues {
    using Error = json::error_code;
    using View = json::string_view;

    static constexpr std::size_t max_object_size = json::object::max_size();
    static constexpr std::size_t max_array_size = json::array::max_size();
    static constexpr std::size_t max_key_size = json::string::max_size();
    static constexpr std::size_t max_string_size = json::string::max_size();

    bool on_document_begin(Error&) { return true; }
    bool on_document_end(Error&) { return true; }
    bool on_object_begin(Error&) { return true; }
    bool on_object_end(std::size_t, Error&) { return true; }
    bool on_array_begin(Error&) { return true; }
    bool on_array_end(std::size_t, Error&) { return true; }
    bool on_key_part(View, std::size_t, Error&) { return true; }
    bool on_key(View, std::size_t, Error&) { return true; }
    bool on_string_part(View, std::size_t, Error&) { return true; }
    bool on_string(View, std::size_t, Error&) { return true; }
    bool on_number_part(View, Error&) { return true; }
    bool on_int64(std::int64_t, View, Error&) { return true; }
    bool on_uint64(std::uint64_t, View, Error&) { return true; }
    bool on_double(double, View, Error&) { return true; }
    bool on_bool(bool, Error&) { return true; }
    bool on_null(Error&) { return true; }
    bool on_comment_part(View, Error&) { return true; }
    bool on_comment(View, Error&) { return true; }
};

// A json::stream_parser that makes no values.
class Checker {
public:
    std::size_t write_some(char const* bytes, std::size_t size, json::error_code& error) {
        return parser_.write_some(true, bytes, size, error);
    }
    void finish(json::error_code& error) { parser_.write_some(false, nullptr, 0, error); }

private:
    json::basic_parser<NoValues> parser_{parse_options()};
};

// The stack of a parser that makes values. The library reads about one double of ten that has many
// digits as one beside the nearest.
struct ExactNumbers : NoValues {
    bool on_object_end(std::size_t count, Error&) { return stack.push_object(count), true; }
    bool on_array_end(std::size_t count, Error&) { return stack.push_array(count), true; }
    bool on_key_part(View part, std::size_t, Error&) { return stack.push_chars(part), true; }
    bool on_key(View rest, std::size_t, Error&) { return stack.push_key(rest), true; }
    bool on_string_part(View part, std::size_t, Error&) { return stack.push_chars(part), true; }
    bool on_string(View rest, std::size_t, Error&) { return stack.push_string(rest), true; }
    bool on_number_part(View part, Error&) { return digits.append(part), true; }
    bool on_int64(std::int64_t number, View, Error&) {
        digits.clear();
        return stack.push_int64(number), true;
    }
    bool on_uint64(std::uint64_t number, View, Error&) {
        digits.clear();
        return stack.push_uint64(number), true;
    }
    bool on_double(double number, View rest, Error&) {
        digits.append(rest);
        double     exact = 0;
        auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), exact);
        stack.push_double(read.ec == std::errc() ? exact : number);
        digits.clear();
        return true;
    }
    bool on_bool(bool value, Error&) { return stack.push_bool(value), true; }
    bool on_null(Error&) { return stack.push_null(), true; }

    json::value_stack stack;
    std::string       digits;  // of a number that stands in several pieces of the text
};

}  // namespace

class ValueParser::Parser {
public:
    // Returns how many bytes the value takes.
    std::size_t parse(std::string_view text, json::storage_ptr storage, json::error_code& error) {
        parser_.reset();
        parser_.handler().digits.clear();
        parser_.handler().stack.reset(std::move(storage));
        return parser_.write_some(false, text.data(), text.size(), error);
    }
    json::value release() { return parser_.handler().stack.release(); }

private:
    json::basic_parser<ExactNumbers> parser_{parse_options()};
};

JsonText::JsonText(std::string_view text, std::string const& name, std::atomic<std::uint64_t>* done)
    : text_(without_byte_order_mark(text)) {
    Checker checker;
    parse_all(checker, text_, name, done);
}

char Cursor::peek() {
    at_ = find(text_, at_, is_blank, false);
    return at_ < text_.size() ? text_[at_] : '\0';
}

std::size_t Cursor::offset() {
    peek();
    return at_;
}

void Cursor::enter() {
    peek();
    ++at_;
}

bool Cursor::next() {
    char const c = peek();
    bool const is_over = c == ']' || c == '}';
    if (is_over || c == ',') ++at_;
    return !is_over;
}

std::string Cursor::name() {
    std::size_t const start = offset();
    skip_string();
    auto const quoted = text_.substr(start, at_ - start);
    peek();
    ++at_;  // the colon
    if (quoted.find('\\') == quoted.npos) return std::string(quoted.substr(1, quoted.size() - 2));
    return std::string(json::parse(quoted).get_string());
}

// The cursor stands before the opening quote.
void Cursor::skip_string() {
    do at_ = text_.find('"', at_ + 1);
    while (is_escaped(text_, at_));
    ++at_;
}

void Cursor::skip() {
    char const first = peek();
    if (first == '"') return skip_string();
    if (first != '[' && first != '{') {
        at_ = find(text_, at_, ends_word, true);
        return;
    }
    auto const known = ends_->find(at_);
    if (known != ends_->end())
        at_ = known->second;
    else
        skip_container();
}

void Cursor::skip_container() {
    std::vector<std::size_t> starts;
    do {
        at_ = find(text_, at_, is_structure, true);
        char const c = text_[at_];
        if (c == '"') {
            skip_string();
        } else if (c == '[' || c == '{') {
            starts.push_back(at_++);
        } else {
            ++at_;
            if (at_ - starts.back() >= long_value) ends_->emplace(starts.back(), at_);
            starts.pop_back();
        }
    } while (!starts.empty());
}

ValueParser::ValueParser()
    : buffer_(new unsigned char[first_memory]), parser_(std::make_unique<Parser>()) {}

ValueParser::~ValueParser() = default;

json::value const& ValueParser::parse(Cursor& cursor) {
    value_.reset();
    // A new one: each block of a resource is twice as large as the one before, also after a
    // release.
    arena_.emplace(buffer_.get(), first_memory);
    value_.emplace(parse(cursor, &*arena_));
    return *value_;
}

json::value ValueParser::parse(Cursor& cursor, json::storage_ptr storage) {
    auto const       rest = cursor.text_.substr(cursor.at_);
    json::error_code error;
    cursor.at_ += parser_->parse(rest, std::move(storage), error);
    if (error) throw json::system_error(error);
    return parser_->release();
}

std::optional<json::value> ValueParser::parse(std::string_view text) {
    json::error_code error;
    auto const       used = parser_->parse(text, {}, error);
    if (error || find(text, used, is_blank, false) < text.size()) return std::nullopt;
    return parser_->release();
}

json::value ValueParser::kind_of(Cursor& cursor) {
    char const first = cursor.peek();
    if (first != '{' && first != '[') return parse(cursor, {});
    cursor.skip();
    if (first == '{') return json::object();
    return json::array();
}

}  // namespace bradep::json_input

#include <sml/tables/sqlite/functions.hpp>

#include <fnmatch.h>
#include <re2/re2.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace sml::tables {

namespace {

std::string_view text_of(sqlite3_value* value) {
    auto const* const text = sqlite3_value_text(value);
    if (text == nullptr) throw std::bad_alloc();
    return {reinterpret_cast<char const*>(text),
            static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// Gives the result of a function of two texts, which is null if one of them is.
template <class Function>
void give(sqlite3_context* context, sqlite3_value** values, Function const& function) noexcept {
    for (int i = 0; i < 2; ++i)
        if (sqlite3_value_type(values[i]) == SQLITE_NULL) return;
    try {
        sqlite3_result_int(context, function(text_of(values[0]), text_of(values[1])) ? 1 : 0);
    } catch (std::bad_alloc const&) {
        sqlite3_result_error_nomem(context);
    } catch (std::exception const& error) {
        sqlite3_result_error(context, error.what(), -1);
    }
}

// A pattern that is the same for all rows is compiled once.
re2::RE2 const& compiled(sqlite3_context* context, std::string_view pattern,
                         std::unique_ptr<re2::RE2>& own) {
    if (auto const* const kept = static_cast<re2::RE2*>(sqlite3_get_auxdata(context, 0)))
        return *kept;
    re2::RE2::Options options;
    options.set_log_errors(false);
    own = std::make_unique<re2::RE2>(re2::StringPiece(pattern.data(), pattern.size()), options);
    if (!own->ok()) throw std::runtime_error("REGEXP: " + own->error());
    return *own;
}

void regexp(sqlite3_context* context, int, sqlite3_value** values) noexcept {
    std::unique_ptr<re2::RE2> own;
    give(context, values, [&](std::string_view pattern, std::string_view text) {
        return re2::RE2::PartialMatch(re2::StringPiece(text.data(), text.size()),
                                      compiled(context, pattern, own));
    });
    if (own != nullptr)
        sqlite3_set_auxdata(context, 0, own.release(),
                            [](void* kept) { delete static_cast<re2::RE2*>(kept); });
}

void match_file_name(sqlite3_context* context, int, sqlite3_value** values) noexcept {
    give(context, values, [](std::string_view pattern, std::string_view text) {
        return ::fnmatch(std::string(pattern).c_str(), std::string(text).c_str(), 0) == 0;
    });
}

}  // namespace

void add_functions(Connection& connection) {
    constexpr int two = 2;
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    auto const    add = [&](char const* name, auto function) {
        if (sqlite3_create_function_v2(connection.get(), name, two, flags, nullptr, function,
                                          nullptr, nullptr, nullptr) != SQLITE_OK)
            throw_error(connection.get());
    };
    add("regexp", regexp);
    add("fnmatch", match_file_name);
}

}  // namespace sml::tables

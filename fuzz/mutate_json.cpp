// New inputs for the target that takes JSON: dumps of random values, tokens replaced by others, and
// libFuzzer's own mutations.

#include <sml/inspect/dump.hpp>
#include "fuzz/mutate.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <random>
#include <sstream>
#include <string>

namespace {

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

/// The dump of the bytes that a writer makes of a random value of a random root.
std::string random_dump(Random& random) {
    auto const         all = sml::inspect::roots();
    auto const&        root = all[below(random, all.size())];
    RandomValues       values(random(), {.elements = static_cast<int>(below(random, 3)),
                                         .depth = static_cast<int>(below(random, 5))});
    std::ostringstream json;
    dump(root, real_root(root).random_bytes(values), json);
    return json.str();
}

/// The begin and end of the first token that begins at `at` or after it.
struct Token {
    std::size_t begin;
    std::size_t end;

    static Token of(std::string const& json, std::size_t at) {
        std::size_t begin = json.find_first_of("\"0123456789-tfn", at);
        if (begin == std::string::npos) return {at, at};
        std::size_t end = begin + 1;
        if (json[begin] == '"')
            end = std::min(json.find('"', end), json.size() - 1) + 1;
        else
            end = std::min(json.find_first_of(",:]}", end), json.size());
        return {begin, end};
    }
};

/// Replaces a token by another one: of the list, or of the text.
void edit_token(std::string& json, Random& random) {
    static std::string const tokens[] = {"null",
                                         "true",
                                         "false",
                                         "0",
                                         "-0",
                                         "-1",
                                         "1e2",
                                         "99",
                                         "\"\"",
                                         "\"0\"",
                                         "\"-1\"",
                                         "\"inf\"",
                                         "\"-nan\"",
                                         "\"NAN\"",
                                         "\"-INF\"",
                                         "1e400",
                                         "1e-400",
                                         "0.1",
                                         "-0.0",
                                         "{}",
                                         "[]",
                                         "\"\\u0000\"",
                                         "\"\\udcff\"",
                                         "\"\\ud83d\\ude00\"",
                                         "\"-0X0P+0\"",
                                         "2147483648",
                                         "\"18446744073709551616\"",
                                         "{\"arm\":null,\"tag\":-1}",
                                         "{\"arm\":null,\"tag\":99}"};
    Token const              old = Token::of(json, below(random, json.size()));
    std::string              made = tokens[below(random, std::size(tokens))];
    if (below(random, 2) == 0) {
        Token const other = Token::of(json, below(random, json.size()));
        made = json.substr(other.begin, other.end - other.begin);
    }
    json.replace(old.begin, old.end - old.begin, made);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned int seed) {
    Random            random(seed);
    std::size_t const choice = below(random, 64);
    if (size == 0 || choice >= 40) return LLVMFuzzerMutate(data, size, max_size);
    std::string json(reinterpret_cast<char const*>(data), size);
    if (choice == 0)
        json = random_dump(random);
    else
        edit_token(json, random);
    if (json.size() > max_size) return LLVMFuzzerMutate(data, size, max_size);
    std::ranges::copy(json, data);
    return json.size();
}

#include "tests/inspect/real_roots.hpp"

#include <sml/bindings/bindings.hpp>
#include <sml/core/compare.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/core/comma_locale.hpp"

#include <cstring>
#include <exception>
#include <memory>
#include <sstream>
#include <utility>

namespace {

using sml::inspect::Answer;
using sml::inspect::find_root;

template <class T>
struct Entries {
    char const* stem;
    void (*to_cxx)(T&, char const*);
    void (*from_stream)(T&, std::istream&);
    std::string const& (*from_cxx)(T const&);
};

/// Some classes have no comparison, so containers of them have none either.
template <class T>
constexpr bool is_comparable = !sml::core::Serialized<T> || requires(T const& a) {
    a == a;
    a < a;
};
template <class T>
constexpr bool is_comparable<std::list<T>> = is_comparable<T>;

template <class T>
void read_block(T& value, Entries<T> const& entries, std::string_view bytes) {
    auto const block = std::make_unique<char[]>(bytes.size());
    if (!bytes.empty()) std::memcpy(block.get(), bytes.data(), bytes.size());
    entries.to_cxx(value, block.get());
}

/// The number of bytes that the stream reader reads. The stream does not skip white space here.
template <class T>
std::streamoff bytes_taken(Entries<T> const& entries, std::string_view bytes) {
    std::istringstream stream(std::string(bytes) + "behind");
    stream >> std::noskipws;
    T value{};
    entries.from_stream(value, stream);
    return stream.tellg();
}

/// Returns a fault unless a copy, and a value that the value was assigned to, are written as the
/// same bytes as the value.
template <class T>
std::string fault_of_copying(T const& value, Entries<T> const& entries) {
    std::string const written = entries.from_cxx(value);
    T                 copy(value);
    if (entries.from_cxx(copy) != written) return "a copy is written in another way";
    T assigned{};
    assigned = value;
    if (entries.from_cxx(assigned) != written) return "an assigned value is written otherwise";
    T const moved(std::move(copy));
    if (entries.from_cxx(moved) != written) return "a moved value is written in another way";
    if constexpr (is_comparable<T>) {
        using sml::core::Comparison;
        if (Comparison::equal(value, assigned) != Comparison::equal(assigned, value))
            return "a value and its copy disagree on being equal";
        if (Comparison::less(value, assigned) != Comparison::less(assigned, value))
            return "a value and its copy disagree on which is less";
    }
    return {};
}

/// Returns a fault unless the written bytes are safe to read, can be encoded and, if the bytes read
/// were good, are good and have the same digest.
std::string fault_of_writing(char const* stem, std::string_view read, std::string const& written,
                             bool are_good) {
    auto const& root = *find_root(stem);
    auto const  verdict = verify(root, written);
    if (verdict.answer == Answer::unsafe) return "what is written again is unsafe";
    if (verdict.reason_against_encoding) return "what is written again can't be encoded";
    if (!are_good) return {};
    if (verdict.answer != Answer::good) return "what is written of good bytes is not good";
    if (digest(root, read) != digest(root, written)) return "the digest is another one";
    return {};
}

/// Reads the bytes from a block into the value, and from a stream into another value.
template <class T>
std::string fault_of_taking(T& value, Entries<T> const& entries, std::string_view bytes) {
    read_block(value, entries, bytes);
    std::streamoff const taken = bytes_taken(entries, bytes);
    if (taken == static_cast<std::streamoff>(bytes.size())) return {};
    return std::to_string(taken) + " bytes were taken of " + std::to_string(bytes.size());
}

template <class T>
std::string fault_of_only_reading(Entries<T> const& entries, std::string_view bytes) try {
    T value{};
    if (std::string fault = fault_of_taking(value, entries, bytes); !fault.empty()) return fault;
    entries.from_cxx(value);
    return {};
} catch (std::exception const& thrown) {
    return std::string("thrown: ") + thrown.what();
}

template <class T>
std::string read_and_write_with_comma(Entries<T> const& entries, std::string_view bytes) {
    T value{};
    read_block(value, entries, bytes);
    CommaLocale const locale;
    return entries.from_cxx(value);
}

template <class T>
std::string fault_of_reading(Entries<T> const& entries, std::string_view bytes, bool are_good) try {
    T value{};
    if (std::string fault = fault_of_taking(value, entries, bytes); !fault.empty()) return fault;
    if (std::string fault = fault_of_copying(value, entries); !fault.empty()) return fault;
    return fault_of_writing(entries.stem, bytes, std::string(entries.from_cxx(value)), are_good);
} catch (std::exception const& thrown) {
    return std::string("thrown: ") + thrown.what();
}

#define SML_ROOT(Stem, ...)                           \
    constexpr Entries<__VA_ARGS__> entries_of_##Stem{ \
        #Stem, &sml::Stem##_toCxx, &sml::Stem##_fromStream, &sml::Stem##_fromCxx};
#include <sml/bindings/roots.def>

#define SML_ROOT(Stem, ...)                                                                  \
    {#Stem,                                                                                  \
     [](RandomValues& random) {                                                              \
         return std::string(sml::Stem##_fromCxx(random.make<__VA_ARGS__>()));                \
     },                                                                                      \
     [](std::string_view bytes, bool are_good) {                                             \
         return fault_of_reading(entries_of_##Stem, bytes, are_good);                        \
     },                                                                                      \
     [](std::string_view bytes) { return fault_of_only_reading(entries_of_##Stem, bytes); }, \
     [](std::string_view bytes) {                                                            \
         __VA_ARGS__ value{};                                                                \
         sml::Stem##_toCxx(value, bytes.data());                                             \
         return std::string(sml::Stem##_fromCxx(value));                                     \
     },                                                                                      \
     [](std::string_view bytes) { return read_and_write_with_comma(entries_of_##Stem, bytes); }},
constexpr RealRoot all_roots[] = {
#include <sml/bindings/roots.def>
};

}  // namespace

std::span<RealRoot const> real_roots() { return all_roots; }

RealRoot const& real_root(sml::inspect::Root const& root) {
    return all_roots[&root - sml::inspect::roots().data()];
}

std::string fault_of_dumping(sml::inspect::Root const& root, std::string_view bytes) {
    std::ostringstream json;
    if (dump(root, bytes, json).answer == Answer::unsafe) return "dump finds the bytes unsafe";
    std::ostringstream encoded;
    if (auto const error = sml::inspect::encode(json.view(), encoded).error)
        return "encode refuses " + error->path + ": " + error->found;
    std::string const read = real_root(root).read_and_write(bytes);
    if (digest(root, encoded.view()) == digest(root, read)) return {};
    std::ostringstream expected;
    dump(root, read, expected);
    return "the reader has another value: " + expected.str() + "dumped was " + json.str();
}

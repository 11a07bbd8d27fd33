// Uses the entry points in all ways of a caller: by address, by flat name, and for reading and
// writing.

#include <sml/bindings/bindings.hpp>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

template <class T>
struct Signatures {
    using ToCxx = void (*)(T&, char const*);
    using FromCxx = std::string const& (*)(T const&);
    using ToStream = void (*)(T const&, std::ostream&);
    using FromStream = void (*)(T&, std::istream&);
    using FlatToCxx = void (*)(T*, char const*);
    using FlatFromCxx = char const* (*)(T const*);
};

// Each name is a single function, so its address needs no cast.
#define SML_ROOT(Stem, ...)                                                                       \
    static_assert(std::is_same_v<decltype(&sml::Stem##_toCxx), Signatures<__VA_ARGS__>::ToCxx>);  \
    static_assert(                                                                                \
        std::is_same_v<decltype(&sml::Stem##_fromCxx), Signatures<__VA_ARGS__>::FromCxx>);        \
    static_assert(                                                                                \
        std::is_same_v<decltype(&sml::Stem##_toStream), Signatures<__VA_ARGS__>::ToStream>);      \
    static_assert(                                                                                \
        std::is_same_v<decltype(&sml::Stem##_fromStream), Signatures<__VA_ARGS__>::FromStream>);  \
    static_assert(std::is_same_v<decltype(&::Stem##_toCxx), Signatures<__VA_ARGS__>::FlatToCxx>); \
    static_assert(                                                                                \
        std::is_same_v<decltype(&::Stem##_fromCxx), Signatures<__VA_ARGS__>::FlatFromCxx>);
#include <sml/bindings/roots.def>

template <class Function>
void expect_plain_symbol(char const* name, Function* function) {
    void* const symbol = dlsym(RTLD_DEFAULT, name);
    EXPECT_NE(symbol, nullptr) << name;
    EXPECT_EQ(symbol, reinterpret_cast<void*>(function)) << name;
}

TEST(EntryPoints, FlatOnesAreFoundByTheirPlainNames) {
#define SML_ROOT(Stem, ...)                               \
    expect_plain_symbol(#Stem "_toCxx", &::Stem##_toCxx); \
    expect_plain_symbol(#Stem "_fromCxx", &::Stem##_fromCxx);
#include <sml/bindings/roots.def>
}

TEST(EntryPoints, NamespacedOnesHaveNoPlainNames) {
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "Answers_Answer_toStream"), nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "Answers_Answer_fromStream"), nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "deserializeSmlData"), nullptr);
}

// The bytes written must be the bytes that were read.
template <class T>
void expect_all_seven_agree(typename Signatures<T>::ToCxx       to_cxx,
                            typename Signatures<T>::ToCxx       deserialize,
                            typename Signatures<T>::FromCxx     from_cxx,
                            typename Signatures<T>::ToStream    to_stream,
                            typename Signatures<T>::FromStream  from_stream,
                            typename Signatures<T>::FlatToCxx   flat_to_cxx,
                            typename Signatures<T>::FlatFromCxx flat_from_cxx) {
    T const           value{};
    std::string const bytes = from_cxx(value);
    EXPECT_FALSE(bytes.empty());
    std::ostringstream out;
    to_stream(value, out);
    EXPECT_EQ(out.str(), bytes);
    std::string const& shared = from_cxx(value);
    char const* const  flat_bytes = flat_from_cxx(&value);
    EXPECT_EQ(flat_bytes, shared.data()) << "all share one result string";
    EXPECT_EQ(shared, bytes);

    T read{};
    to_cxx(read, bytes.data());
    EXPECT_EQ(std::string(from_cxx(read)), bytes);
    T deserialized{};
    deserialize(deserialized, bytes.data());
    EXPECT_EQ(std::string(from_cxx(deserialized)), bytes);
    T flat{};
    flat_to_cxx(&flat, bytes.data());
    EXPECT_EQ(std::string(from_cxx(flat)), bytes);
    T                  streamed{};
    std::istringstream in(bytes + "more");
    from_stream(streamed, in);
    EXPECT_EQ(in.tellg(), static_cast<std::streamoff>(bytes.size()));
    EXPECT_EQ(std::string(from_cxx(streamed)), bytes);
}

TEST(EntryPoints, AllSevenOfEveryRootAgree){
#define SML_ROOT(Stem, ...)                                                                      \
    {                                                                                            \
        SCOPED_TRACE(#Stem);                                                                     \
        expect_all_seven_agree<__VA_ARGS__>(                                                     \
            &sml::Stem##_toCxx, &sml::deserializeSmlData, &sml::Stem##_fromCxx,                  \
            &sml::Stem##_toStream, &sml::Stem##_fromStream, &::Stem##_toCxx, &::Stem##_fromCxx); \
    }
#include <sml/bindings/roots.def>
}

TEST(EntryPoints, OneResultStringIsUsedByAllRoots) {
    std::string const& words = sml::Integers64_T_fromCxx(0x0102030405060708);
    EXPECT_EQ(words.size(), 8u);
    std::string const& key = sml::Interrogators_ClassKey_fromCxx(7);
    EXPECT_EQ(&words, &key);
    EXPECT_EQ(words, std::string("\7\0\0\0", 4));
}

}  // namespace

// A program whose static objects use the library before main() does.

#include <sml/bindings/bindings.hpp>

#include <cstddef>
#include <cstdio>
#include <string>

namespace {

/// The results of the library's use by one static object. They are never freed: no handle may
/// outlive the string table, and the order of destruction at exit is not defined.
class EarlyUse {
public:
    explicit EarlyUse(char const* text)
        : handle_(new sml::Strings_T(std::string(text))),
          result_(&sml::Interrogators_Function_fromCxx(function(*handle_))),
          bytes_(new std::string(*result_)),
          entries_(sml::Strings_T::fAllStrings.size()) {
        static_cast<void>(zelvanite::IEEE754Float());
    }

    sml::Strings_T const& handle() const { return *handle_; }
    std::string const&    result() const { return *result_; }
    std::string const&    bytes() const { return *bytes_; }
    std::size_t           entries() const { return entries_; }

private:
    static sml::Interrogators::T_Function function(sml::Strings_T const& key) {
        sml::Interrogators::T_Function result;
        result.key = key;
        return result;
    }

    sml::Strings_T const* handle_;
    std::string const*    result_;
    std::string const*    bytes_;
    std::size_t           entries_;
};

// 103 is the first priority after those of the library.
__attribute__((init_priority(103))) EarlyUse const with_priority("used with a priority");
EarlyUse const                                     by_default("used by default");

int failures = 0;

void expect(bool fact, char const* what) {
    if (fact) return;
    std::fprintf(stderr, "failed: %s\n", what);
    ++failures;
}

void expect_interned(EarlyUse const& use, std::string const& text) {
    expect(use.handle().str() == text, "the text is there");
    sml::Strings_T const again(text);
    expect(&again.str() == &use.handle().str(), "the text is still interned");
    for (auto const& entry : sml::Strings_T::fAllStrings)
        if (entry.str == text) expect(entry.count == 2, "its count is right");
}

}  // namespace

int main() {
    expect(with_priority.entries() == 1, "the table was empty at first");
    expect(by_default.entries() == 2, "the table kept what came before");
    expect(sml::Strings_T::fAllStrings.size() == 2, "the table still has both");
    expect_interned(with_priority, "used with a priority");
    expect_interned(by_default, "used by default");

    expect(&with_priority.result() == &by_default.result(), "there is one result string");
    expect(by_default.result() == by_default.bytes(), "the result string kept its bytes");
    expect(with_priority.bytes().find("used with a priority") != std::string::npos,
           "the first bytes were right");
    expect(&sml::Integers64_T_fromCxx(1) == &by_default.result(), "it is the one of main() too");
    expect(by_default.result().size() == 8, "it took the bytes of main()");
    return failures == 0 ? 0 : 1;
}

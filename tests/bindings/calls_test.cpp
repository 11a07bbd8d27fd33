#include <sml/bindings/bindings.hpp>
#include "tests/core/string_table.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <istream>
#include <iterator>
#include <list>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using sml::Strings_T;
using sml::Interrogators::T_Function;
using string_table::count_of;

namespace {

using CheckData = std::list<std::pair<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data>>;
using StringSets = std::unordered_map<Strings_T, std::unordered_set<Strings_T>>;

/// A function's key followed by a text whose length is negative.
std::string unreadable_function() {
    return hex::bytes("FF FF FF FF  04 00 00 00 'seen'  FE FF FF FF  FF FF FF FF");
}

T_Function function(std::string const& key) {
    T_Function result;
    result.key = key;
    return result;
}

/// A buffer that takes bytes and counts all other calls.
class CountingSink : public std::streambuf {
public:
    std::string bytes;
    int         other_calls = 0;

protected:
    int_type overflow(int_type c) override {
        bytes += traits_type::to_char_type(c);
        return c;
    }
    int sync() override {
        ++other_calls;
        return 0;
    }
    pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override {
        ++other_calls;
        return pos_type(off_type(-1));
    }
};

TEST(SharedResult, ShowsTheBytesOfTheLatestCallOfAnyRoot) {
    std::string const& first = sml::Integers64_T_fromCxx(1);
    EXPECT_EQ(first.size(), 8u);
    std::string const& second = sml::Interrogators_ClassKey_fromCxx(7);
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(hex::shown(first), "07 00 00 00 ");

    std::int64_t const number = 2;
    char const* const  flat_result = Integers64_T_fromCxx(&number);
    EXPECT_EQ(flat_result, first.data());
    EXPECT_EQ(hex::shown(first), "02 00 00 00 00 00 00 00 ");
}

TEST(SharedResult, StaysUntilTheNextCall) {
    std::string const& result = sml::Interrogators_ClassKey_fromCxx(7);

    std::int64_t number = 0;
    sml::Integers64_T_toCxx(number, hex::bytes("01 00 00 00 00 00 00 00").data());
    std::stringstream stream;
    sml::Integers64_T_toStream(5, stream);
    sml::Integers64_T_fromStream(number, stream);
    T_Function unreadable;
    EXPECT_THROW(sml::Interrogators_Function_toCxx(unreadable, unreadable_function().data()),
                 std::length_error);

    EXPECT_EQ(hex::shown(result), "07 00 00 00 ");
}

/// Writes a result of more than `size` bytes, and expects that its memory is not held after it.
void expect_memory_given_back(std::size_t size) {
    StringSets sets;
    sets[Strings_T(std::string(size, 'x'))];
    EXPECT_GT(sml::String_To_StringSet_T_fromCxx(sets).size(), size);
    for (int i = 0; i < 3; ++i) EXPECT_LT(sml::Integers64_T_fromCxx(7).capacity(), size);
}

TEST(SharedResult, GivesBackTheMemoryOfALargeOne) { expect_memory_given_back(140'000'000); }

TEST(SharedResult, OfFewBytesKeepsNoMemoryOfALargerOne) { expect_memory_given_back(8'000'000); }

TEST(SharedResult, MayBeReadWhereItStands) {
    T_Function read;
    Interrogators_Function_toCxx(
        &read, sml::Interrogators_Function_fromCxx(function("calls: read in place")).data());
    EXPECT_EQ(read.key.str(), "calls: read in place");
}

TEST(Calls, CountIdsFromOneEachTime) {
    std::string const first = sml::Interrogators_Function_fromCxx(function("calls: again"));
    std::string const second = sml::Interrogators_Function_fromCxx(function("calls: again"));
    EXPECT_EQ(first, second);
    EXPECT_EQ(first.substr(0, 4), hex::bytes("FF FF FF FF"));
}

TEST(Calls, TwoObjectsInOneStreamHaveIdsOfTheirOwn) {
    std::stringstream stream;
    sml::Interrogators_Function_toStream(function("same"), stream);
    std::size_t const size = stream.str().size();
    sml::Interrogators_Function_toStream(function("same"), stream);
    EXPECT_EQ(stream.str().size(), 2 * size);
    EXPECT_EQ(stream.str().substr(0, 12), hex::bytes("FF FF FF FF  04 00 00 00 'same'"));
    EXPECT_EQ(stream.str().substr(size, 12), hex::bytes("FF FF FF FF  04 00 00 00 'same'"));

    for (int i = 0; i < 2; ++i) {
        T_Function read;
        sml::Interrogators_Function_fromStream(read, stream);
        EXPECT_EQ(read.key.str(), "same");
    }
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(2 * size));
}

// A back-reference in the second object does not find a string of the first.
TEST(Calls, SecondObjectOfAStreamSeesNoStringOfTheFirst) {
    std::stringstream stream;
    sml::Interrogators_Function_toStream(function("calls: first"), stream);
    stream << hex::bytes("01 00 00 00") << sml::Interrogators_Function_fromCxx({}).substr(8);

    T_Function read;
    sml::Interrogators_Function_fromStream(read, stream);
    T_Function second;
    sml::Interrogators_Function_fromStream(second, stream);
    EXPECT_TRUE(second.key == Strings_T());
}

TEST(Calls, WriteNothingAroundTheObject) {
    CountingSink sink;
    std::ostream stream(&sink);
    sml::Integers64_T_toStream(1, stream);
    sml::Interrogators_ClassKey_toStream(2, stream);
    EXPECT_EQ(hex::shown(sink.bytes), "01 00 00 00 00 00 00 00 02 00 00 00 ");
    EXPECT_EQ(sink.other_calls, 0);
}

TEST(Calls, ReadFromWhereTheStreamStands) {
    std::istringstream stream(hex::bytes("AA BB  07 00 00 00  CC"));
    stream.ignore(2);
    std::int32_t key = 0;
    sml::Interrogators_ClassKey_fromStream(key, stream);
    EXPECT_EQ(key, 7);
    EXPECT_EQ(stream.get(), 0xcc);
}

TEST(Calls, AddToAFilledObject) {
    CheckData list;
    list.emplace_back(1, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data());
    CheckData more;
    more.emplace_back(2, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data());
    std::string const bytes = sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_fromCxx(more);
    sml::deserializeSmlData(list, bytes.data());
    Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_toCxx(&list, bytes.data());
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list.front().first, 1);
    EXPECT_EQ(std::next(list.begin())->first, 2);
    EXPECT_EQ(list.back().first, 2);
}

TEST(Calls, AddToAFilledTableAndKeepItsEntries) {
    StringSets        table{{Strings_T("held"), {Strings_T("old")}}};
    std::string const bytes = sml::String_To_StringSet_T_fromCxx(
        {{Strings_T("held"), {Strings_T("new")}}, {Strings_T("added"), {Strings_T("new")}}});
    sml::String_To_StringSet_T_toCxx(table, bytes.data());
    EXPECT_EQ(table.size(), 2u);
    EXPECT_EQ(table.at(Strings_T("held")), (std::unordered_set<Strings_T>{Strings_T("old")}));
    EXPECT_EQ(table.at(Strings_T("added")), (std::unordered_set<Strings_T>{Strings_T("new")}));
}

TEST(Calls, TakeAPlainNumberAsItComes) {
    std::int64_t number = 5;
    sml::deserializeSmlData(number, hex::bytes("01 00 00 00 00 00 00 80").data());
    EXPECT_EQ(number, INT64_MIN + 1);
}

TEST(Calls, KeepNoStringBeyondTheObject) {
    std::size_t const before = string_table::size();
    {
        T_Function const  value = function("calls: kept");
        std::string const bytes = sml::Interrogators_Function_fromCxx(value);
        EXPECT_EQ(count_of("calls: kept"), 1u);
        T_Function read;
        sml::Interrogators_Function_toCxx(read, bytes.data());
        EXPECT_EQ(count_of("calls: kept"), 2u);
    }
    EXPECT_EQ(string_table::size(), before);
}

/// The text of the std::length_error that a call throws.
template <class Call>
std::string length_error_of(Call&& call) {
    try {
        call();
    } catch (std::length_error const& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(Exceptions, PassThroughAllReadingFunctions) {
    std::string const bytes = unreadable_function();
    std::string const expected = "basic_string::_M_replace_aux";
    std::size_t const before = string_table::size();
    T_Function        value;

    EXPECT_EQ(length_error_of([&] { sml::Interrogators_Function_toCxx(value, bytes.data()); }),
              expected);
    EXPECT_EQ(length_error_of([&] { sml::deserializeSmlData(value, bytes.data()); }), expected);
    EXPECT_EQ(length_error_of([&] { Interrogators_Function_toCxx(&value, bytes.data()); }),
              expected);
    EXPECT_EQ(length_error_of([&] {
                  std::istringstream stream(bytes);
                  sml::Interrogators_Function_fromStream(value, stream);
              }),
              expected);

    // The strings that were read remain, and the archive has no handles to them.
    EXPECT_EQ(value.key.str(), "seen");
    EXPECT_EQ(count_of("seen"), 1u);
    value = T_Function();
    EXPECT_EQ(string_table::size(), before);
}

TEST(Exceptions, OfAPlainTextAreThoseOfAString) {
    sml::Answers::T_AnswerInspectionPoint answer;
    std::string const                     bytes = hex::bytes("54  00 00 00 80");
    EXPECT_EQ(length_error_of([&] { Answers_AnswerInspectionPoint_toCxx(&answer, bytes.data()); }),
              "basic_string::_M_replace_aux");
    EXPECT_TRUE(answer.answer.flag);
}

TEST(Exceptions, OfADecimalTextNameItsConversion) {
    sml::Application_Results::T_Application_Results results;
    auto& info = results.infos[{Strings_T("calls: info"), 1}];
    auto& type = info.category.choose<"VAI">().value.type;
    type.choose<"Inf_Type_Ada_Float">().first_double = 1.5;
    std::string       bytes = sml::Application_Results_Application_Results_fromCxx(results);
    std::size_t const digits = bytes.find("1.500000");
    ASSERT_NE(digits, std::string::npos);
    bytes[digits] = 'x';

    sml::Application_Results::T_Application_Results read;
    try {
        Application_Results_Application_Results_toCxx(&read, bytes.data());
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::invalid_argument const& error) {
        EXPECT_STREQ(error.what(), "stod");
    }
    EXPECT_TRUE(read.infos.empty());
    EXPECT_EQ(count_of("calls: info"), 1u);
}

TEST(Exceptions, OfTheCallersStreamPassThrough) {
    std::istringstream input(hex::bytes("01 00 00"));
    input.exceptions(std::ios::failbit);
    std::int64_t number = 5;
    EXPECT_THROW(sml::Integers64_T_fromStream(number, input), std::ios_base::failure);
    EXPECT_EQ(number, 5);

    std::ostream output(nullptr);
    output.clear();
    EXPECT_THROW(
        {
            output.exceptions(std::ios::badbit);
            sml::Integers64_T_toStream(1, output);
        },
        std::ios_base::failure);
}

TEST(Exceptions, LeaveTheNextCallAsIfNothingHadBeen) {
    T_Function        value;
    std::string const bad = unreadable_function();
    EXPECT_THROW(Interrogators_Function_toCxx(&value, bad.data()), std::length_error);
    T_Function        fresh;
    std::string const good = sml::Interrogators_Function_fromCxx(function("calls: afterwards"));
    Interrogators_Function_toCxx(&fresh, good.data());
    EXPECT_TRUE(fresh == function("calls: afterwards"));
}

// The pointer is not checked.
TEST(CallsDeathTest, NullBytesAreDereferenced) {
    std::int64_t number = 0;
    EXPECT_DEATH(Integers64_T_toCxx(&number, nullptr), "");
    EXPECT_DEATH(sml::Integers64_T_toCxx(number, nullptr), "");
    EXPECT_DEATH(sml::deserializeSmlData(number, nullptr), "");
}

/// Each call swaps the result that is returned and the previous one.
TEST(FromCxx, SmallResultsGiveBackTheMemoryOfLargeOnes) {
    constexpr std::size_t large = std::size_t{16} << 20;
    for (int i = 0; i < 2; ++i)
        EXPECT_GT(sml::Interrogators_Function_fromCxx(function(std::string(large, 'a'))).size(),
                  large);
    for (int i = 0; i < 2; ++i)
        EXPECT_LT(sml::Interrogators_Function_fromCxx(function("small")).capacity(), 1000u);
}

TEST(FromCxx, ResultsOfOneSizeAreWrittenOverOneAnother) {
    T_Function const  value = function(std::string(std::size_t{16} << 20, 'a'));
    char const* const first = sml::Interrogators_Function_fromCxx(value).data();
    char const* const second = sml::Interrogators_Function_fromCxx(value).data();
    EXPECT_EQ(sml::Interrogators_Function_fromCxx(value).data(), first);
    EXPECT_EQ(sml::Interrogators_Function_fromCxx(value).data(), second);
}

}  // namespace

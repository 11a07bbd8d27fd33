#include <sml/inspect/encode.hpp>

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/dump.hpp>
#include "tests/core/comma_locale.hpp"
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <sstream>
#include <string>

namespace {

using hex::bytes;
using sml::Strings_T;
using sml::inspect::Answer;
using sml::inspect::dump;
using sml::inspect::DumpOptions;
using sml::inspect::encode;
using sml::inspect::Encoded;
using sml::inspect::EncodeOptions;
using sml::inspect::find_root;
using sml::inspect::Limits;
using sml::inspect::Root;
using sml::inspect::verify;
using Form = DumpOptions::Form;
using namespace std::string_literals;
using wire_bytes::in_full;
using wire_bytes::word;

struct Outcome {
    Encoded     encoded;
    std::string bytes;
};

Outcome encoded(std::string_view json, EncodeOptions const& options = {}) {
    std::ostringstream out;
    Encoded            encoded = encode(json, out, options);
    return {std::move(encoded), out.str()};
}

std::string json_of(Root const& root, std::string const& bytes, Form form = Form::compact) {
    std::ostringstream out;
    dump(root, bytes, out, {.walk = {}, .form = form});
    return out.str();
}

/// The error as the command prints it.
std::string text_of(Encoded const& encoded) {
    if (!encoded.error) return "no error";
    auto const& error = *encoded.error;
    return std::to_string(error.position.line) + ":" + std::to_string(error.position.column) + " " +
           error.path + ": expected " + error.expected + ", found " + error.found;
}

/// JSON of a root. The value starts in line 2.
std::string value_of(char const* stem, std::string const& value) {
    return "{\"root\":\"" + std::string(stem) + "\",\"value\":\n" + value + "}";
}

std::string error_of(char const* stem, std::string const& value) {
    return text_of(encoded(value_of(stem, value)).encoded);
}

/// The bytes of a value, which must be valid.
std::string bytes_of(char const* stem, std::string const& value) {
    Outcome const outcome = encoded(value_of(stem, value));
    EXPECT_FALSE(outcome.encoded.error) << value << ": " << text_of(outcome.encoded);
    return outcome.bytes;
}

constexpr char const* number = "Interrogators_ClassKey";
constexpr char const* long_number = "Integers64_T";
constexpr char const* context = "Answers_Context";
constexpr char const* region = "Answers_ContextRegion";
constexpr char const* sets = "String_To_StringSet_T";
constexpr char const* data = "IL_Extras_ZelvaniteResultData";
constexpr char const* parameters = "IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList";
constexpr char const* inspection = "Answers_AnswerInspectionPoint";

/// An answer with this text and an empty range.
std::string with_text(std::string const& text) {
    return R"({"answer":{"flag":true},"text":)" + text +
           R"(,"range":{"arm":"Int_Full_Range","args":{"lower":null,"upper":null}}})";
}

/// An answer whose range starts at this big integer.
std::string with_lower(std::string const& lower) {
    return R"({"answer":{"flag":true},"text":"","range":{"arm":"Int_Full_Range","args":{"lower":)" +
           lower + R"(,"upper":null}}})";
}

/// An expression that is a float.
std::string with_float(std::string const& text) {
    return R"({"arm":"Annotated_Command","args":[{"arm":"Valued_Event_Annote",)"
           R"("args":["",0,{"arm":"Info_Const_Float","args":)" +
           text + "}]}]}";
}

TEST(Encode, GivesBackTheBytesOfGoodValuesOfEveryRoot) {
    for (RealRoot const& one : real_roots()) {
        Root const& root = *find_root(one.stem);
        for (std::uint64_t seed = 1; seed <= 20; ++seed) {
            SCOPED_TRACE(one.stem + std::string(", seed ") + std::to_string(seed));
            RandomValues      random(seed);
            std::string const whole = one.random_bytes(random);
            for (Form const form : {Form::compact, Form::pretty}) {
                Outcome const outcome = encoded(json_of(root, whole, form));
                ASSERT_FALSE(outcome.encoded.error) << text_of(outcome.encoded);
                EXPECT_EQ(outcome.encoded.root, &root);
                ASSERT_TRUE(outcome.bytes == whole) << hex::shown(whole);
            }
        }
    }
}

TEST(Encode, GivesBackUnsetAndUnknownTagsAndEnumerators) {
    constexpr std::int32_t tried[] = {-1, 99, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()};
    Limits const           limits{.memory = std::uint64_t{1} << 24};
    int                    kept = 0;
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        Root const&       root = *find_root(one.stem);
        RandomValues      random(21, {.elements = 1, .depth = 3});
        std::string const whole = one.random_bytes(random);
        for (std::size_t i = 0; i < whole.size() * std::size(tried); ++i) {
            std::string       changed = whole;
            std::size_t const at = i / std::size(tried);
            if (at + 4 > whole.size()) break;
            std::memcpy(changed.data() + at, &tried[i % std::size(tried)], 4);
            auto const verdict = verify(root, changed, {.limits = limits});
            if (verdict.answer != Answer::odd || verdict.reason_against_encoding) continue;
            ++kept;
            Outcome const outcome = encoded(json_of(root, changed));
            ASSERT_FALSE(outcome.encoded.error) << text_of(outcome.encoded);
            ASSERT_TRUE(outcome.bytes == changed) << hex::shown(changed);
        }
    }
    EXPECT_GT(kept, 100);
}

TEST(Encode, KeepsUnsetVariantsThatAreElementsOfASet) {
    sml::Application_Results::T_Application_Results results;
    auto& classes = results.checks[{Strings_T("k"), 1}].classifications;
    classes.emplace();
    classes.emplace();
    ASSERT_EQ(classes.size(), 2u);
    std::string const whole = sml::Application_Results_Application_Results_fromCxx(results);
    Root const&       root = *find_root("Application_Results_Application_Results");
    EXPECT_EQ(hex::shown(encoded(json_of(root, whole)).bytes), hex::shown(whole));
}

TEST(Encode, CountsAreRightBeyondTheOutputsBuffer) {
    std::string whole = hex::bytes("E0 93 04 00");  // 300000
    for (int i = 0; i < 300000; ++i) whole += hex::bytes("01 00 00 00  07 00 00 00");
    Outcome const outcome = encoded(json_of(*find_root(parameters), whole));
    EXPECT_TRUE(outcome.bytes == whole) << text_of(outcome.encoded);
}

TEST(Encode, StartsWhereTheStreamStands) {
    std::ostringstream out;
    out << "head";
    EXPECT_FALSE(encode(value_of(sets, R"([["a",[]]])"), out).error);
    EXPECT_EQ(hex::shown(out.str()),
              hex::shown(bytes("'head' 01 00 00 00  FF FF FF FF 01 00 00 00 'a'  00 00 00 00")));
}

TEST(Encode, GoesOnBehindACountBeyondTheOutputsBuffer) {
    constexpr std::int32_t count = 100'000;
    std::string            whole = word(2) + in_full(1, "a") + word(count);
    for (std::int32_t i = 0; i < count; ++i) whole += in_full(i + 2, "text " + std::to_string(i));
    whole += in_full(count + 2, "b") + word(1) + word(1);
    std::ostringstream out;
    out << "head";
    EXPECT_FALSE(encode(json_of(*find_root(sets), whole), out).error);
    EXPECT_TRUE(out.str() == "head" + whole);
}

TEST(EncodeSpelling, NumbersInAnyForm) {
    for (char const* const hundred : {"100", "1e2", "1E2", "1e+2", "1E+02", "100.0", "100.000e0",
                                      "10.0e1", "1000e-1", "0.1e3", "0.00100e5", "100e-0"})
        EXPECT_EQ(bytes_of(number, hundred), bytes("64 00 00 00")) << hundred;
    for (char const* const zero :
         {"0", "-0", "-0.0", "0.000", "0e5", "0e-5", "0E+99999999999999999999"})
        EXPECT_EQ(bytes_of(number, zero), bytes("00 00 00 00")) << zero;
    for (char const* const least : {"-2147483648", "-2.147483648e9", "-21474836480e-1"})
        EXPECT_EQ(bytes_of(number, least), bytes("00 00 00 80")) << least;
}

TEST(EncodeSpelling, WhiteSpaceAnywhere) {
    std::string const spaced =
        " \r\n\t{ \"root\" :\t\"Answers_Context\"\n,\r\"value\" : { \"flag\"\n:\n true\t} }\n \r";
    Outcome const outcome = encoded(spaced);
    EXPECT_EQ(outcome.bytes, "T") << text_of(outcome.encoded);
}

TEST(EncodeSpelling, EscapesInNamesToo) {
    Outcome const outcome =
        encoded(R"({"\u0072oot":"Answers\u005FContext","value":{"fl\u0061g":false}})");
    EXPECT_EQ(outcome.bytes, "F") << text_of(outcome.encoded);
}

/// The text that is encoded from this JSON string.
std::string text_of(std::string const& json) {
    std::string const whole = bytes_of(inspection, with_text(json));
    std::string const head = whole.substr(0, 5);
    std::int32_t      length = 0;
    if (whole.size() >= 5) std::memcpy(&length, whole.data() + 1, sizeof length);
    return whole.substr(std::min<std::size_t>(5, whole.size()), static_cast<std::size_t>(length));
}

TEST(EncodeSpelling, EveryEscapeOfJson) {
    EXPECT_EQ(text_of(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
    EXPECT_EQ(text_of(R"("\u0041\u00e9\u20AC\u0000")"), "A\xC3\xA9\xE2\x82\xAC\0"s);
    EXPECT_EQ(text_of(R"("\ud83d\ude00\uDBFF\uDFFF\uD800\uDC00")"),
              "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF\xF0\x90\x80\x80");
    EXPECT_EQ(text_of("\"\xC3\xA9\x7F\xF0\x9F\x98\x80\""), "\xC3\xA9\x7F\xF0\x9F\x98\x80");
}

TEST(EncodeSpelling, LoneSurrogatesAreBytes) {
    EXPECT_EQ(text_of(R"("\udc80\uDCFF\udcff")"), "\x80\xFF\xFF");
    EXPECT_EQ(text_of(R"("a\udcc3b")"), "a\xC3\x62");
    EXPECT_EQ(text_of(R"("\ud83d\udc80")"), "\xF0\x9F\x92\x80");  // a surrogate pair as usual
    EXPECT_EQ(bytes_of(sets, R"([["\udcff",[]]])"),
              bytes("01 00 00 00  FF FF FF FF 01 00 00 00 FF  00 00 00 00"));
}

TEST(EncodeSpelling, LargeIntegersInAnyForm) {
    EXPECT_EQ(bytes_of(long_number, R"("-1")"), std::string(8, '\xFF'));
    EXPECT_EQ(bytes_of(long_number, R"("007")"), bytes("07 00 00 00 00 00 00 00"));
    EXPECT_EQ(bytes_of(long_number, R"("-9223372036854775808")"), bytes("00 00 00 00 00 00 00 80"));
    auto const lower = [](std::string const& text) {
        return bytes_of(inspection, with_lower('"' + text + '"')).substr(10);
    };
    EXPECT_EQ(lower("0"), bytes("03 00 00 00 '0' 00 00 'F'"));
    EXPECT_EQ(lower("-0"), bytes("03 00 00 00 '0' 00 00 'F'"));
    EXPECT_EQ(lower("-0031"), bytes("04 00 00 00 '-1f' 00 'F'"));
    EXPECT_EQ(lower("340282366920938463463374607431768211456"),
              bytes("23 00 00 00 '100000000000000000000000000000000' 00 00 'F'"));
}

/// A record with a double, as JSON; the double is spelled `0.5` there.
std::string json_with_a_half() {
    sml::Application_Results::T_Application_Results results;
    auto& fields = results.infos[{Strings_T("k"), 1}].category.choose<"VORS">().fields;
    auto& value = fields[Strings_T("f")].second.choose<"Field_Scalar">();
    value.type.choose<"Inf_Type_Ada_Float">().first_double = 0.5;
    value.range.choose<"Int_Full_Range">();
    return json_of(*find_root("Application_Results_Application_Results"),
                   sml::Application_Results_Application_Results_fromCxx(results));
}

/// The text of the double on the wire if JSON spells it this way; a message if it can't be encoded.
std::string double_as(std::string const& spelling) {
    std::string       json = json_with_a_half();
    std::size_t const at = json.find("0.5");
    if (at == std::string::npos) return "no double in " + json;
    Outcome const outcome = encoded(json.replace(at, 3, spelling));
    if (outcome.encoded.error) return text_of(outcome.encoded);
    sml::Application_Results::T_Application_Results results;
    sml::Application_Results_Application_Results_toCxx(results, outcome.bytes.data());
    auto& fields = results.infos[{Strings_T("k"), 1}].category.arm<"VORS">().fields;
    auto& value = fields[Strings_T("f")].second.arm<"Field_Scalar">();
    return std::to_string(value.type.arm<"Inf_Type_Ada_Float">().first_double);
}

TEST(EncodeSpelling, DoublesInAnyForm) {
    for (char const* const half : {"0.5", "5e-1", "5E-1", "0.50", "50e-2", "0.05e+1"})
        EXPECT_EQ(double_as(half), "0.500000") << half;
    EXPECT_EQ(double_as("-0"), "-0.000000");
    EXPECT_EQ(double_as("-0.0"), "-0.000000");
    EXPECT_EQ(double_as("0"), "0.000000");
    EXPECT_EQ(double_as("1e308"), std::to_string(1e308));
    for (char const* const name : {"inf", "-inf", "nan", "-nan"})
        EXPECT_EQ(double_as('"' + std::string(name) + '"'), name);
}

TEST(EncodeSpelling, DoublesAndFloatsUnderACommaLocale) {
    std::string const json = json_with_a_half();
    CommaLocale const comma;
    ASSERT_COMMA_LOCALE(comma);
    Outcome const outcome = encoded(json);
    ASSERT_FALSE(outcome.encoded.error) << text_of(outcome.encoded);
    EXPECT_NE(outcome.bytes.find(bytes("08 00 00 00 '0.500000'")), std::string::npos);
    EXPECT_EQ(json_of(*outcome.encoded.root, outcome.bytes), json);
    EXPECT_NE(bytes_of(data, with_float(R"({"width":32,"hex":"0X1.8P+0"})"))
                  .find(bytes("08 00 00 00 '0X1.8P+0' 20 00 00 00")),
              std::string::npos);
}

TEST(EncodeError, DoubleThatIsNone) {
    EXPECT_EQ(double_as("0.5x").substr(0, 2), "1:");
    auto const error = [](std::string const& spelling) {
        std::string const text = double_as(spelling);
        return text.substr(std::min(text.find("expected"), text.size()));
    };
    EXPECT_EQ(error("1e400"), "expected a number that a double holds, found 1e400");
    EXPECT_EQ(error("\"Inf\""),
              R"(expected a number, "inf", "-inf", "nan" or "-nan", found "Inf")");
    EXPECT_EQ(error("\"0.5\""),
              R"(expected a number, "inf", "-inf", "nan" or "-nan", found "0.5")");
    EXPECT_EQ(error("null"), "expected a number, found null");
    EXPECT_EQ(error(".5"), "expected a number, found \".\"");
    EXPECT_EQ(error("NaN"), "expected a number, found \"N\"");
    EXPECT_EQ(error("0,5"), "expected the name of a member, found the number 5");
}

TEST(EncodeError, RootIsMissingOrUnknown) {
    EXPECT_EQ(text_of(encoded("").encoded),
              "1:1 : expected an object with \"root\" and \"value\", found the end of the text");
    EXPECT_EQ(text_of(encoded("[]").encoded),
              "1:1 : expected an object with \"root\" and \"value\", found an array");
    EXPECT_EQ(text_of(encoded("{}").encoded), "1:2 : expected the member \"root\", found the end");
    EXPECT_EQ(text_of(encoded("{\"value\":1}").encoded),
              "1:2 : expected the member \"root\", found \"value\"");
    EXPECT_EQ(text_of(encoded("{\"root\": 1}").encoded),
              "1:10 : expected the stem of a root, found the number 1");
    EXPECT_EQ(text_of(encoded("{\"root\":\"Answers_Contex\",\"value\":1}").encoded),
              "1:9 : expected a root such as \"Answers_Context\", found \"Answers_Contex\"");
    EXPECT_EQ(text_of(encoded("{\"root\":\"Answers_Context\"}").encoded),
              "1:26 : expected the member \"value\", found the end");
    EXPECT_EQ(text_of(encoded("{\"root\":\"Answers_Context\",\"path\":\"flag\"}").encoded),
              "1:27 : expected the member \"value\", found \"path\"");
}

TEST(EncodeError, FieldUnknownMissingOrOutOfPlace) {
    EXPECT_EQ(error_of(context, R"({"flog":true})"),
              R"(2:2 : expected the field "flag", found "flog", which is no field here)");
    EXPECT_EQ(error_of(context, "{}"), R"(2:2 : expected the field "flag", found the end)");
    EXPECT_EQ(error_of(context, R"({"flag":true,"flag":true})"),
              "2:14 : expected no more fields, found \"flag\"");
    EXPECT_EQ(error_of(region, R"({"label":"x"})"),
              R"(2:2 : expected the field "context", found "label", which has another place)");
    EXPECT_EQ(error_of(region, R"({"context":{"flag":true}})"),
              R"(2:25 : expected the field "label", found the end)");
}

TEST(EncodeError, PathLeadsToTheValue) {
    EXPECT_EQ(error_of(region, R"({"context":{"flag":null}})"),
              "2:20 context.flag: expected true or false, found null");
    EXPECT_EQ(error_of(sets, "[[\"a\",[\"b\",\n  7]]]"),
              "3:3 [\"a\"][1]: expected a string, found the number 7");
    EXPECT_EQ(error_of(sets, R"([["a",[]],[7,[]]])"),
              "2:12 [#1].key: expected a string, found the number 7");
    EXPECT_EQ(error_of(data, R"({"arm":"Assert","args":["x","2"]})"),
              "2:29 Assert.1: expected an integer, found a string");
    EXPECT_EQ(error_of(parameters,
                       R"([{"arm":"BOOL_PRAGMA_PARAMETER","args":true},)"
                       R"({"arm":"SOURCE_LOC_PRAGMA_PARAMETER","args":{"first_number":-1}}])"),
              "2:106 [1].SOURCE_LOC_PRAGMA_PARAMETER.first_number: "
              "expected an integer from 0 to 4294967295, found -1");
}

TEST(EncodeError, ColumnsCountCharacters) {
    EXPECT_EQ(error_of(sets, "[[\"\xC3\xA4\xF0\x9F\x98\x80\",7]]"),
              "2:8 [\"\xC3\xA4\xF0\x9F\x98\x80\"]: expected an array, found the number 7");
}

TEST(EncodeError, WrongType) {
    EXPECT_EQ(error_of(context, "[]"), "2:1 : expected an object, found an array");
    EXPECT_EQ(error_of(context, R"({"flag":1})"),
              "2:9 flag: expected true or false, found the number 1");
    EXPECT_EQ(error_of(number, "true"), "2:1 : expected an integer, found true");
    EXPECT_EQ(error_of(number, R"("5")"), "2:1 : expected an integer, found a string");
    EXPECT_EQ(error_of(long_number, "5"),
              "2:1 : expected an integer in a string, found the number 5");
    EXPECT_EQ(error_of(sets, "{}"), "2:1 : expected an array of [key, value], found an object");
    EXPECT_EQ(error_of(sets, R"([{"a":1}])"),
              "2:2 [#0].key: expected an array of a key and a value, found an object");
    EXPECT_EQ(error_of(parameters, "null"), "2:1 : expected an array, found null");
    EXPECT_EQ(error_of(data, R"("No_Data")"),
              "2:1 : expected an object with \"arm\", found a string");
    EXPECT_EQ(error_of(data, R"({"arm":5})"),
              "2:8 : expected the name of an arm, or null, found the number 5");
    EXPECT_EQ(error_of(data, R"({"arm":"MEMORY_BUILTIN","args":null})"),
              "2:32 MEMORY_BUILTIN: expected the name of an enumerator, or a number, found null");
    EXPECT_EQ(error_of(inspection, with_text("null")), "2:32 text: expected a string, found null");
    EXPECT_EQ(error_of(data, with_float("1.5")).substr(6),
              "Annotated_Command[0].Valued_Event_Annote.2.Info_Const_Float: "
              "expected an object with \"width\" and \"hex\", found the number 1.5");
}

TEST(EncodeError, PairsFlagsAndEntriesOfAnotherLength) {
    EXPECT_EQ(error_of(data, R"({"arm":"Assert","args":["x"]})"),
              "2:28 Assert: expected 2 elements, found the end");
    EXPECT_EQ(error_of(data, R"({"arm":"Assert","args":["x",1,2]})"),
              "2:31 Assert: expected at most 2 elements, found the number 2");
    std::string const flags = R"({"arm":"Procedure_Declaration","args":{"text":null,"flags":)";
    EXPECT_EQ(error_of(data, flags + "[true,true,true]}}"),
              "2:75 Procedure_Declaration.flags: expected 4 elements, found the end");
    EXPECT_EQ(error_of(data, flags + "[true,true,true,true,1]}}"),
              "2:81 Procedure_Declaration.flags: expected at most 4 elements, "
              "found the number 1");
    EXPECT_EQ(error_of(sets, R"([["a"]])"), "2:6 [\"a\"]: expected 2 elements, found the end");
    EXPECT_EQ(error_of(sets, R"([["a",[],1]])"),
              "2:10 [\"a\"]: expected at most a key and a value, found the number 1");
}

TEST(EncodeError, ArmEnumeratorOrRootIsNearestToWhatIsGiven) {
    EXPECT_EQ(error_of(parameters, R"([{"arm":"INT_PRAGMA_PARAMETR","args":1}])"),
              "2:9 [0]: expected an arm such as \"INT_PRAGMA_PARAMETER\", "
              "found \"INT_PRAGMA_PARAMETR\"");
    EXPECT_EQ(error_of(data, R"({"arm":"MEMORY_BUILTIN","args":"Memcopy"})"),
              "2:32 MEMORY_BUILTIN: expected an enumerator such as \"Memcpy\", "
              "found \"Memcopy\"");
    EXPECT_EQ(error_of("Interrogators_QuestionRef", R"({"arm":"QuestionID","args":"1"})"),
              "2:8 : expected an arm such as \"QuestionId\", found \"QuestionID\"");
}

TEST(EncodeError, KnownTagOrEnumeratorIsReportedByName) {
    EXPECT_EQ(error_of(parameters, R"([{"arm":null,"tag":0,"args":true}])"),
              "2:20 [0]: expected the arm \"BOOL_PRAGMA_PARAMETER\", found its tag 0");
    EXPECT_EQ(error_of(data, R"({"arm":"MEMORY_BUILTIN","args":1})"),
              "2:32 MEMORY_BUILTIN: expected \"Meminit\", found its number 1");
}

TEST(EncodeError, ArgsMissingOrTooMany) {
    EXPECT_EQ(error_of(data, R"({"arm":"Assert"})"),
              "2:16 : expected the member \"args\", found the end");
    EXPECT_EQ(error_of(data, R"({"arm":"No_Data","args":null})"),
              "2:18 : expected the end of the object, found \"args\"");
    EXPECT_EQ(error_of(data, R"({"arm":null,"args":"Memcpy"})"),
              "2:13 : expected the member \"tag\", found \"args\"");
    EXPECT_EQ(error_of("Interrogators_QuestionRef", R"({"arm":null,"tag":-1})"),
              "2:21 : expected the member \"args\", found the end");
}

TEST(EncodeError, NumberOutOfRange) {
    constexpr char const* small =
        "2:1 : expected an integer from -2147483648 to 2147483647, found ";
    for (std::string const text :
         {"2147483648", "-2147483649", "1.5", "1e10", "1e-1", "0.1", "1e99999999999999999999",
          "9223372036854775808", "1.5e-9223372036854775808", "1e9223372036854775807"})
        EXPECT_EQ(error_of(number, text), small + text);
    constexpr char const* large =
        "2:1 : expected an integer from -9223372036854775808 to 9223372036854775807, found ";
    for (std::string const text :
         {R"("9223372036854775808")", R"("-9223372036854775809")", R"("")", R"("-")", R"("1x")",
          R"(" 1")", R"("+1")", R"("1.0")", R"("0x1")"})
        EXPECT_EQ(error_of(long_number, text), large + text);
    constexpr char const* word =
        "2:40 [0].OBJ_PRAGMA_PARAMETER: "
        "expected an integer from 0 to 18446744073709551615, found ";
    for (std::string const text : {R"("18446744073709551616")", R"("-1")", R"("")"})
        EXPECT_EQ(error_of(parameters, R"([{"arm":"OBJ_PRAGMA_PARAMETER","args": )" + text + "}]"),
                  word + text);
    for (std::string const text : {"4294967296", "-1"})
        EXPECT_EQ(error_of("Interrogators_Question", R"({"location":{"kind":)" + text + "}}"),
                  "2:21 location.kind: expected an integer from 0 to 4294967295, found " + text);
    EXPECT_EQ(error_of(data, R"({"arm":null,"tag":2147483648,"args":1})"),
              "2:19 : expected an integer from -2147483648 to 2147483647, found 2147483648");
    EXPECT_EQ(error_of(data, R"({"arm":"MEMORY_BUILTIN","args":1e10})"),
              "2:32 MEMORY_BUILTIN: "
              "expected an integer from -2147483648 to 2147483647, found 1e10");
}

TEST(EncodeError, NumberThatIsNoJson) {
    for (char const* const text : {"+1", ".5", "-", "x", "1.", "1e", "1e+", "-x", "Infinity"})
        EXPECT_EQ(error_of(number, text).substr(0, 32), "2:1 : expected an integer, found") << text;
    EXPECT_EQ(error_of(number, "01"), "2:2 : expected ',' or '}', found the number 1");
    EXPECT_EQ(error_of(number, "0x1"), "2:2 : expected ',' or '}', found \"x\"");
}

TEST(EncodeError, BigIntegerThatIsNone) {
    for (std::string const text : {"", "-", "1f", "+1", " 1", "1 ", "1.0", "--1", "\xD9\xA1"})
        EXPECT_EQ(error_of(inspection, with_lower('"' + text + '"')),
                  "2:83 range.Int_Full_Range.lower: expected an integer, found \"" + text + '"');
    EXPECT_EQ(error_of(inspection, with_lower("1")),
              "2:83 range.Int_Full_Range.lower: expected an integer in a string, "
              "found the number 1");
}

TEST(EncodeError, FloatThatIsNotAsItIsWritten) {
    auto const error = [](std::string const& text) {
        std::string const all = error_of(data, with_float(text));
        return all.substr(std::min(all.find("expected"), all.size()));
    };
    EXPECT_EQ(error(R"({"width":33,"hex":"0X1P+0"})"),
              "expected 16, 32, 40, 48, 64, 80 or 128, found 33");
    EXPECT_EQ(error(R"({"hex":"0X1P+0","width":32})"),
              "expected the member \"width\", found \"hex\"");
    EXPECT_EQ(error(R"({"width":32,"hex":1})"), "expected a float in a string, found the number 1");
    std::string const such = "expected a float of this width as a writer spells it, such as ";
    EXPECT_EQ(error(R"({"width":32,"hex":"1.8"})"), such + R"("0X1.8P+0", found "1.8")");
    EXPECT_EQ(error(R"({"width":32,"hex":"0x1.8p+0"})"), such + R"("0X1.8P+0", found "0x1.8p+0")");
    EXPECT_EQ(error(R"({"width":32,"hex":"0X1.80P+0"})"),
              such + R"("0X1.8P+0", found "0X1.80P+0")");
    EXPECT_EQ(error(R"({"width":32,"hex":"inf"})"), such + R"("INF", found "inf")");
    // 25 bits of mantissa, but there is room for 24
    EXPECT_EQ(error(R"({"width":32,"hex":"0X1.000001P+0"})"),
              such + R"("0X1P+0", found "0X1.000001P+0")");
    EXPECT_EQ(error(R"({"width":16,"hex":"0X1P+20"})"), such + R"("INF", found "0X1P+20")");
}

TEST(EncodeError, KeyOrElementThatIsThereAlready) {
    EXPECT_EQ(error_of(sets, R"([["a",[]],["a",[]]])"),
              "2:12 [#1].key: expected a new key or element, found \"a\" again");
    EXPECT_EQ(error_of(sets, R"([["a",[]],["\u0061",[]]])"),
              "2:12 [#1].key: expected a new key or element, found \"a\" again");
    EXPECT_EQ(error_of(sets, R"([["a",["","b",""]]])"),
              "2:15 [\"a\"][2]: expected a new key or element, found \"\" again");
    EXPECT_EQ(error_of("Base_Gui_Internal_Form_Datas_Kernel_To_GUI_InfoId_T",
                       R"([[["a",1],0],[["a",2],0],[["a",1],0]])"),
              "2:27 [#2].key: expected a new key or element, "
              "found (\"a\",1) again");
    EXPECT_EQ(error_of(data, R"({"arm":"Attribute_Pred","args":{"name":"","values":[1,1e0]}})"),
              "2:55 Attribute_Pred.values[1]: expected a new key or element, "
              "found 1 again");
}

TEST(Encode, KeysThatDifferOnlyInTheirBytesAreTwo) {
    EXPECT_NE(bytes_of(sets, R"([["\udcff",[]],["\\xFF",[]],["\u00ff",[]]])"), "");
    std::string const start(200, 'k');
    EXPECT_NE(bytes_of(sets, "[[\"" + start + "1\",[]],[\"" + start + "2\",[]]]"), "");
}

TEST(EncodeError, TextBehindTheEnd) {
    std::string const good = value_of(context, R"({"flag":true})");
    EXPECT_EQ(text_of(encoded(good + " x").encoded),
              "2:16 : expected the end of the text, found \"x\"");
    EXPECT_EQ(text_of(encoded(good + good).encoded).substr(0, 45),
              "2:15 : expected the end of the text, found an");
    EXPECT_EQ(text_of(encoded(good + '\0').encoded),
              "2:15 : expected the end of the text, found \"\\x00\"");
    EXPECT_FALSE(encoded(good + "\n").encoded.error);
}

TEST(EncodeError, PunctuationOfJson) {
    EXPECT_EQ(error_of(context, R"({"flag":true,})"),
              "2:14 : expected an element behind the comma, found \"}\"");
    EXPECT_EQ(error_of(context, R"({"flag" true})"), "2:9 : expected ':', found true");
    EXPECT_EQ(error_of(context, R"({flag:true})"),
              "2:2 : expected the name of a member, found \"f\"");
    EXPECT_EQ(error_of(sets, R"([["a" []]])"), "2:7 [\"a\"]: expected ',' or ']', found an array");
    EXPECT_EQ(error_of(sets, R"([["a",[]],])"),
              "2:11 : expected an element behind the comma, found \"]\"");
    EXPECT_EQ(error_of(context, R"({"flag":truex})"), "2:13 : expected ',' or '}', found \"x\"");
    EXPECT_EQ(error_of(context, R"({"flag":True})"),
              "2:9 flag: expected true or false, found \"T\"");
}

TEST(EncodeError, BadEscapesAndBytes) {
    auto const error = [](std::string const& text) {
        return error_of(inspection, with_text('"' + text + '"'));
    };
    EXPECT_EQ(error(R"(a\x)"), R"(2:34 text: expected an escape that JSON has, found "\\x")");
    EXPECT_EQ(error(R"(\u12G4)"), "2:35 text: expected four hexadecimal digits, found \"12G4\"");
    EXPECT_EQ(error(R"(\u+123)"), "2:35 text: expected four hexadecimal digits, found \"+123\"");
    std::string const lone =
        "2:33 text: expected a pair of surrogates, or one from U+DC80 to "
        "U+DCFF for a byte, found one alone";
    for (char const* const text : {R"(\ud800)", R"(\udbff)", R"(\udc00)", R"(\udc7f)", R"(\udd00)",
                                   R"(\udfff)", R"(\ud83dx)", R"(\ud83d\n)"})
        EXPECT_EQ(error(text), lone) << text;
    EXPECT_EQ(error(R"(\ud83d\u0041)"),
              "2:33 text: expected two surrogates that fit, found another pair");
    EXPECT_EQ(error("a\nb"), "2:34 text: expected an escape for a control character, found 0x0A");
    EXPECT_EQ(error("a\0b"s), "2:34 text: expected an escape for a control character, found 0x00");
    EXPECT_EQ(error("\xFF"), "2:33 text: expected UTF-8, found 0xFF");
    EXPECT_EQ(error("\xED\xA0\x80"), "2:33 text: expected UTF-8, found 0xED");
    EXPECT_EQ(error("\xC0\xAF"), "2:33 text: expected UTF-8, found 0xC0");
    EXPECT_EQ(text_of(encoded("{\"root").encoded),
              "1:2 : expected the end of the string that starts here, found the end of the text");
}

TEST(EncodeError, Depth) {
    std::string const value = R"([["a",["b"]]])";
    EXPECT_FALSE(encoded(value_of(sets, value), {.limits = {.depth = 2}}).encoded.error);
    EXPECT_EQ(text_of(encoded(value_of(sets, value), {.limits = {.depth = 1}}).encoded),
              "2:7 [\"a\"]: expected at most 1 levels of variants and containers, "
              "found one more");
}

TEST(EncodeError, DepthOfAChainIsBounded) {
    auto const chain = [](int length) {
        std::string const link = R"({"arm":"Info_Field","args":[)";
        std::string       json = R"({"arm":"Annotated_Command","args":[)"
                                 R"({"arm":"Valued_Event_Annote","args":["",0,)";
        for (int i = 0; i < length; ++i) json += link;
        json += R"({"arm":"Info_Var","args":"x"})";
        for (int i = 0; i < length; ++i) json += ",\"f\"]}";
        return value_of(data, json + "]}]}");
    };
    EXPECT_FALSE(encoded(chain(150)).encoded.error);
    EXPECT_TRUE(encoded(chain(500)).encoded.error);
    // Deeper than any setting allows. The stack must not overflow.
    Outcome const outcome = encoded(chain(100000), {.limits = {.depth = 1000000}});
    ASSERT_TRUE(outcome.encoded.error);
    EXPECT_EQ(outcome.encoded.error->found, "one more");
    EXPECT_EQ(outcome.encoded.error->expected, "at most 1000 levels of variants and containers");
}

TEST(EncodeError, EveryCutIsAnError) {
    for (char const* const stem :
         {"Application_Results_Application_Results", data, inspection, "Answers_AnswerAssert"}) {
        for (RealRoot const& one : real_roots()) {
            if (one.stem != std::string(stem)) continue;
            RandomValues      random(22, {.elements = 1, .depth = 2});
            std::string const json = json_of(*find_root(stem), one.random_bytes(random));
            ASSERT_TRUE(json.ends_with("}\n"));
            std::size_t const step = 1 + json.size() / 3000;
            for (std::size_t size = 0; size < json.size() - 1; size += step)
                ASSERT_TRUE(encoded(json.substr(0, size)).encoded.error) << json.substr(0, size);
        }
    }
}

TEST(Encode, WhateverItTakesIsGoodOrUnknown) {
    std::string const tried = "\"0-1{}[],:e.\\n x\xFF\0"s;
    int               taken = 0;
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        RandomValues      random(23, {.elements = 1, .depth = 2});
        Root const&       root = *find_root(one.stem);
        std::string const json = json_of(root, one.random_bytes(random));
        std::size_t const step = 1 + json.size() / 2000;
        for (std::size_t at = 0; at < json.size(); at += step) {
            std::string changed = json;
            changed[at] = tried[at % tried.size()];
            Outcome const outcome = encoded(changed);
            if (outcome.encoded.error) continue;
            ++taken;
            auto const verdict = verify(*outcome.encoded.root, outcome.bytes);
            ASSERT_FALSE(verdict.reason_against_encoding)
                << changed << verdict.reason_against_encoding->found;
        }
    }
    EXPECT_GT(taken, 100);
}

}  // namespace

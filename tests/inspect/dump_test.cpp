#include <sml/inspect/dump.hpp>

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/inspect/encode.hpp>
#include "tests/core/comma_locale.hpp"
#include "tests/hex.hpp"
#include "tests/inspect/json_support.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>

namespace {

using hex::bytes;
using json_support::is_json;
using sml::BigInteger;
using sml::Strings_T;
using sml::inspect::Answer;
using sml::inspect::describe;
using sml::inspect::dump;
using sml::inspect::Dumped;
using sml::inspect::DumpOptions;
using sml::inspect::encode;
using sml::inspect::find_root;
using sml::inspect::Limits;
using sml::inspect::Root;
using sml::inspect::verify;
using Form = DumpOptions::Form;
using Data = sml::IL_Extras::T_ZelvaniteResultData;
using Parameter = sml::IL_Extras::VVIRZelvanitePragmasTag::T_PragmaParameter;
using Numbers = std::unordered_map<Strings_T, std::int32_t>;
using namespace std::string_literals;
using wire_bytes::block;
using wire_bytes::in_full;
using wire_bytes::word;

struct Shown {
    Dumped      dumped;
    std::string json;
};

Shown show(Root const& root, std::string const& bytes, DumpOptions const& options = {}) {
    std::ostringstream out;
    Dumped             dumped = dump(root, bytes, out, options);
    return {std::move(dumped), out.str()};
}

/// Dumps a value of any type, as if it were a root.
template <class T>
Shown show(std::string const& bytes, DumpOptions const& options = {}) {
    return show(Root{"R", describe<T>()}, bytes, options);
}

/// The JSON of the value alone.
template <class T>
std::string value_of(std::string const& bytes) {
    constexpr std::string_view before = R"({"root":"R","value":)";
    constexpr std::string_view behind = "}\n";
    Shown const                shown = show<T>(bytes);
    EXPECT_NE(shown.dumped.answer, Answer::unsafe) << shown.json;
    if (!shown.json.starts_with(before) || !shown.json.ends_with(behind)) return shown.json;
    return shown.json.substr(before.size(), shown.json.size() - before.size() - behind.size());
}

TEST(Dump, RecordIsAnObjectWithItsFieldsInWireOrder) {
    EXPECT_EQ(value_of<sml::SourceLocRef::T_SourceLocRef>(
                  bytes("07 00 00 00  FE FF FF FF  FF FF FF FF 03 00 00 00 'a.c'  05 00 00 00"
                        "FB FF FF FF FF FF FF FF")),
              R"({"kind":7,"localization":{"first_position":-2,"file":"a.c",)"
              R"("second_position":5},"reference":"-5"})");
}

TEST(Dump, RootIsNamed) {
    EXPECT_EQ(show(*find_root("Interrogators_ClassKey"), word(7)).json,
              "{\"root\":\"Interrogators_ClassKey\",\"value\":7}\n");
}

TEST(Dump, ArmWithARecordTakesTheRecordsObject) {
    EXPECT_EQ(value_of<Data>(word(19) + in_full(1, "a") + word(1)),
              R"({"arm":"Marker","args":{"first_name":"a","second_name":"a"}})");
}

TEST(Dump, ArmWithARecordOfOneFieldTakesTheRecordsObject) {
    EXPECT_EQ(value_of<Data>(word(10) + "F"), R"({"arm":"Event","args":{"event":null}})");
}

TEST(Dump, ArmWithARecordOfAnotherNameTakesTheRecordsObject) {
    EXPECT_EQ(value_of<Data>(word(11) + word(55) + word(9)),
              R"({"arm":"ExtraExprData","args":{"category":{"arm":"NULL"},"first_int":9}})");
}

TEST(Dump, ArmWithOneUnnamedValueTakesThatValue) {
    EXPECT_EQ(value_of<Data>(word(17) + word(0)), R"({"arm":"MEMORY_BUILTIN","args":"Memcpy"})");
    EXPECT_EQ(value_of<Data>(word(0) + word(0)), R"({"arm":"ATTRIBUTE_COPY","args":[]})");
    EXPECT_EQ(value_of<Parameter>(word(0) + "T"), R"({"arm":"BOOL_PRAGMA_PARAMETER","args":true})");
    EXPECT_EQ(value_of<sml::Infos::Multiplicity::T>(word(1) + "F"),
              R"({"arm":"FloatMultipleOfTwoPow","args":null})");
}

TEST(Dump, ArmWithNamedValuesTakesAnObject) {
    EXPECT_EQ(value_of<sml::Infos::T_Range>(word(0) + "FT" + block("0\0\0"s)),
              R"({"arm":"Int_Interval","args":{"lower":null,"upper":"0"}})");
}

TEST(Dump, ArmWithUnnamedValuesTakesAnArray) {
    EXPECT_EQ(value_of<Data>(word(5) + in_full(1, "x") + word(2)),
              R"({"arm":"Assert","args":["x",2]})");
}

TEST(Dump, ArmWithoutPayloadHasNoArgs) {
    EXPECT_EQ(value_of<Data>(word(20)), R"({"arm":"No_Data"})");
}

TEST(Dump, TagWithoutPayloadHasNoArgs) {
    using Category = sml::Checks::T_Check_Category;
    EXPECT_EQ(value_of<Category>(word(99)), R"({"arm":null,"tag":99})");
    EXPECT_EQ(value_of<Category>(word(77)), R"({"arm":null,"tag":77})");
    EXPECT_EQ(value_of<Category>(word(-1)), R"({"arm":null,"tag":-1})");
}

TEST(Dump, TagOfTheCatchAllArmHasItsArgs) {
    EXPECT_EQ(value_of<Data>(word(26) + word(1)),
              R"({"arm":null,"tag":26,"args":"MODE_DRS_RANDOM"})");
    EXPECT_EQ(value_of<Data>(word(-1) + word(1)),
              R"({"arm":null,"tag":-1,"args":"MODE_DRS_RANDOM"})");
}

TEST(Dump, ReferenceAlwaysHasArgs) {
    using Reference = sml::Interrogators::T_QuestionRef;
    EXPECT_EQ(value_of<Reference>(bytes("00 00 00 00  05 00 00 00 00 00 00 00")),
              R"({"arm":"QuestionId","args":"5"})");
    EXPECT_EQ(value_of<Reference>(bytes("01 00 00 00  FF FF FF FF FF FF FF FF")),
              R"({"arm":"QuestionPtr","args":"18446744073709551615"})");
    EXPECT_EQ(value_of<Reference>(bytes("FF FF FF FF  00 00 00 00 00 00 00 00")),
              R"({"arm":null,"tag":-1,"args":"0"})");
    EXPECT_EQ(value_of<Reference>(bytes("02 00 00 00  01 00 00 00 00 00 00 00")),
              R"({"arm":null,"tag":2,"args":"1"})");
    EXPECT_EQ(value_of<Data>(bytes("18 00 00 00  00 00 00 00  05 00 00 00 00 00 00 00")),
              R"({"arm":"QuestionRef","args":{"arm":"QuestionId","args":"5"}})");
}

TEST(Dump, EnumeratorIsItsNameAnUnknownOneANumber) {
    using Mode = sml::Variable_Value::T_Init_Mode;
    EXPECT_EQ(value_of<Mode>(word(3)), R"("MODE_USER_INIT")");
    EXPECT_EQ(value_of<Mode>(word(4)), "4");
    EXPECT_EQ(value_of<Mode>(word(-1)), "-1");
}

TEST(Dump, ListAndSetAreArrays) {
    EXPECT_EQ(value_of<std::list<std::int32_t>>(word(2) + word(3) + word(3)), "[3,3]");
    EXPECT_EQ(value_of<std::list<std::int32_t>>(word(0)), "[]");
    EXPECT_EQ(value_of<std::set<std::int32_t>>(word(2) + word(3) + word(-4)), "[3,-4]");
    EXPECT_EQ(value_of<std::unordered_set<std::int32_t>>(word(2) + word(3) + word(-4)), "[3,-4]");
}

TEST(Dump, MapIsAnArrayOfPairsInWireOrder) {
    std::string const two = word(2) + in_full(1, "b") + word(1) + in_full(2, "a") + word(2);
    EXPECT_EQ((value_of<std::map<Strings_T, std::int32_t>>(two)), R"([["b",1],["a",2]])");
    EXPECT_EQ(value_of<Numbers>(two), R"([["b",1],["a",2]])");
    EXPECT_EQ((value_of<sml::core::LastWinsMap<Strings_T, std::int32_t>>(two)),
              R"([["b",1],["a",2]])");
    EXPECT_EQ(value_of<Numbers>(word(0)), "[]");
}

TEST(Dump, PairAndTupleAreArrays) {
    EXPECT_EQ((value_of<std::pair<Strings_T, std::int32_t>>(in_full(1, "x") + word(1))),
              R"(["x",1])");
    EXPECT_EQ(
        (value_of<std::tuple<Strings_T, std::int32_t, bool>>(in_full(1, "x") + word(1) + "F")),
        R"(["x",1,false])");
}

TEST(Dump, FlagsAreAnArray) {
    EXPECT_EQ((value_of<std::array<bool, 4>>("TFTF")), "[true,false,true,false]");
}

TEST(Dump, OptionalIsNullOrTheValue) {
    EXPECT_EQ(value_of<std::optional<std::int32_t>>("F"), "null");
    EXPECT_EQ(value_of<std::optional<std::int32_t>>("T" + word(1)), "1");
    EXPECT_EQ((value_of<std::optional<std::pair<bool, bool>>>("TTF")), "[true,false]");
}

TEST(Dump, BoxedValueIsTheValue) {
    EXPECT_EQ(
        value_of<sml::IL::T_Annotation>(word(3) + in_full(1, "x") + word(2) + word(5) + word(1)),
        R"({"arm":"Valued_Event_Annote","args":["x",2,{"arm":"Info_Var","args":"x"}]})");
}

TEST(Dump, SmallIntegersAreNumbersLargeOnesText) {
    EXPECT_EQ(value_of<std::int32_t>(word(-1)), "-1");
    EXPECT_EQ(value_of<std::uint32_t>(word(-1)), "4294967295");
    EXPECT_EQ(value_of<std::int64_t>(std::string(8, '\xFF')), R"("-1")");
    EXPECT_EQ(value_of<std::int64_t>(bytes("00 00 00 00 00 00 00 80")),
              R"("-9223372036854775808")");
    EXPECT_EQ(value_of<std::uint64_t>(std::string(8, '\xFF')), R"("18446744073709551615")");
}

TEST(Dump, OpaqueWordsAreText) {
    EXPECT_EQ(value_of<Parameter>(bytes("02 00 00 00  00 00 00 00 00 00 00 80")),
              R"({"arm":"OBJ_PRAGMA_PARAMETER","args":"9223372036854775808"})");
    EXPECT_EQ(value_of<Parameter>(bytes("05 00 00 00  01 00 00 00 00 00 00 00")),
              R"({"arm":"STRING_PRAGMA_PARAMETER","args":"1"})");
}

TEST(Dump, BigIntegerIsDecimalText) {
    auto const value = [](std::string const& hexadecimal) {
        std::size_t const zeros = hexadecimal.starts_with('-') ? 1 : 2;
        return value_of<BigInteger>(block(hexadecimal + std::string(zeros, '\0')));
    };
    EXPECT_EQ(value("0"), R"("0")");
    EXPECT_EQ(value("-1f"), R"("-31")");
    EXPECT_EQ(value("7fffffffffffffff"), R"("9223372036854775807")");
    EXPECT_EQ(value("8000000000000000"), R"("9223372036854775808")");
    EXPECT_EQ(value("-8000000000000000"), R"("-9223372036854775808")");
    EXPECT_EQ(value("-8000000000000001"), R"("-9223372036854775809")");
    EXPECT_EQ(value("10000000000000000"), R"("18446744073709551616")");
    EXPECT_EQ(value("-100000000000000000000000000000000"),
              R"("-340282366920938463463374607431768211456")");
}

TEST(Dump, FloatIsItsWidthAndTheTextOfTheWire) {
    using Float = zelvanite::IEEE754Float;
    for (std::int32_t const width : {16, 32, 40, 48, 64, 80, 128})
        for (char const* const text :
             {"0X1.8P+0", "-0XFP-4", "INF", "-INF", "NAN", "0X0P+0", "-0X0P+0"}) {
            std::string const expected =
                "{\"width\":" + std::to_string(width) + ",\"hex\":\"" + text + "\"}";
            Shown const shown = show<Float>(block(text) + word(width));
            EXPECT_EQ(shown.json, "{\"root\":\"R\",\"value\":" + expected + "}\n");
            EXPECT_EQ(shown.dumped.answer, Answer::good) << text << ' ' << width;
        }
}

TEST(Dump, FloatOfAnotherSpellingIsShownAsItIsRead) {
    EXPECT_EQ(value_of<zelvanite::IEEE754Float>(block("1.8") + word(32)),
              R"({"width":32,"hex":"0X1.8P+0"})");
}

TEST(Dump, DoubleIsANumberThatReadsBackAsTheSame) {
    for (double const value : {0.0, -0.0, 0.1, -0.1, 1e308, -1e308, 1.0, 123456.789, 5e-7, 1e22,
                               std::numeric_limits<double>::max(), 4503599627370497.5}) {
        std::string const text = std::to_string(value);
        std::string const json = value_of<double>(block(text));
        ASSERT_TRUE(json_support::is_json(json)) << json;
        double read = 1;
        std::from_chars(json.data(), json.data() + json.size(), read);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(std::stod(text)))
            << text << " as " << json;
    }
}

TEST(Dump, DoubleIsAsShortAsItCan) {
    EXPECT_EQ(value_of<double>(block("0.100000")), "0.1");
    EXPECT_EQ(value_of<double>(block("-0.000000")), "-0.0");
    EXPECT_EQ(value_of<double>(block("0.000000")), "0");
}

TEST(Dump, DoubleThatIsNoNumberIsText) {
    for (char const* const text : {"inf", "-inf", "nan", "-nan"})
        EXPECT_EQ(value_of<double>(block(text)), '"' + std::string(text) + '"');
    EXPECT_EQ(value_of<double>(block("-INFINITY")), R"("-inf")");
}

TEST(Dump, NumbersHaveAPointUnderACommaLocale) {
    CommaLocale const comma;
    ASSERT_COMMA_LOCALE(comma);
    EXPECT_EQ(value_of<double>(block("0.500000")), "0.5");
    EXPECT_EQ(value_of<double>(block("0,500000")), "0");
    EXPECT_EQ(value_of<zelvanite::IEEE754Float>(block("1.8") + word(32)),
              R"({"width":32,"hex":"0X1.8P+0"})");
}

struct Text {
    std::string bytes;
    std::string json;
};

TEST(Dump, TextIsUtf8AndOtherBytesAreLoneSurrogates) {
    Text const texts[] = {
        {"", ""},
        {"plain /'<>", "plain /'<>"},
        {"\"\\", R"(\"\\)"},
        {"\xC2\xA0\xC3\xA9\xEF\xBB\xBF\xEF\xBF\xBD", "\xC2\xA0\xC3\xA9\xEF\xBB\xBF\xEF\xBF\xBD"},
        {"\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
        {"\x80", R"(\udc80)"},
        {"a\xBF\x62", R"(a\udcbfb)"},
        {"\xFF\xFE", R"(\udcff\udcfe)"},
        // overlong
        {"\xC0\xAF", R"(\udcc0\udcaf)"},
        {"\xC1\xBF", R"(\udcc1\udcbf)"},
        {"\xE0\x9F\xBF", R"(\udce0\udc9f\udcbf)"},
        {"\xF0\x8F\xBF\xBF", R"(\udcf0\udc8f\udcbf\udcbf)"},
        // surrogates, and characters beyond the last one
        {"\xED\xA0\x80", R"(\udced\udca0\udc80)"},
        {"\xED\xBF\xBF", R"(\udced\udcbf\udcbf)"},
        {"\xF4\x90\x80\x80", R"(\udcf4\udc90\udc80\udc80)"},
        {"\xF5\x80\x80\x80", R"(\udcf5\udc80\udc80\udc80)"},
        {"\xF8\x88\x80\x80\x80", R"(\udcf8\udc88\udc80\udc80\udc80)"},
        // truncated at the end, and before another character
        {"\xC3", R"(\udcc3)"},
        {"\xE2\x82", R"(\udce2\udc82)"},
        {"\xF0\x9F\x98", R"(\udcf0\udc9f\udc98)"},
        {"\xE2\xC3\xA9", "\\udce2\xC3\xA9"},
        {"\xE2\x82\x61", R"(\udce2\udc82a)"},
        {"\xF0\x9F\x98\xC3\xA9", "\\udcf0\\udc9f\\udc98\xC3\xA9"},
        // control characters of a terminal
        {"\0\x01\n\t\r\x1B\x1F\x7F"s, R"(\u0000\u0001\n\t\r\u001b\u001f\u007f)"},
        {"\xC2\x85\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAE", R"(\u0085\u2028\u2029\u202e)"},
    };
    for (Text const& text : texts) {
        EXPECT_EQ(value_of<std::string>(block(text.bytes)), '"' + text.json + '"');
        EXPECT_EQ(value_of<Strings_T>(in_full(1, text.bytes)), '"' + text.json + '"');
    }
}

TEST(Dump, EveryStringIsWrittenInFull) {
    EXPECT_EQ(value_of<std::list<Strings_T>>(word(3) + in_full(1, "a") + in_full(2, "") + word(1)),
              R"(["a","","a"])");
}

TEST(Dump, PrettyHasALineForEachMember) {
    std::string const bytes = word(5) + in_full(1, "x") + word(2);
    EXPECT_EQ(show<Data>(bytes, {.form = Form::pretty}).json, R"({
  "root": "R",
  "value": {
    "arm": "Assert",
    "args": [
      "x",
      2
    ]
  }
}
)");
    EXPECT_EQ(show<Numbers>(word(0), {.form = Form::pretty}).json,
              "{\n  \"root\": \"R\",\n  \"value\": []\n}\n");
}

template <class T>
Shown selected(std::string const& bytes, std::string const& path, Form form = Form::compact) {
    return show<T>(bytes, {.form = form, .path = path});
}

/// Expects that the selected value is this one, and that the rest of the JSON has the required
/// form.
template <class T>
void expect_selected(std::string const& bytes, std::string const& path, std::string const& value) {
    Shown const       shown = selected<T>(bytes, path);
    std::string const path_text = boost::json::serialize(boost::json::value(path));
    EXPECT_TRUE(shown.dumped.found) << path;
    EXPECT_EQ(shown.json, R"({"root":"R","path":)" + path_text + R"(,"value":)" + value + "}\n");
}

using Tables = std::unordered_map<std::pair<Strings_T, std::int32_t>, std::list<Data>,
                                  sml::Hash<std::pair<Strings_T, std::int32_t>>>;

std::string tables() {
    return word(2) + (in_full(1, "a.c") + word(3)) + word(2) +
           (word(19) + in_full(2, "m") + in_full(3, "n")) + word(20) +  //
           (word(1) + word(4)) + word(1) + (word(5) + word(2) + word(9));
}

TEST(Select, ListElementByIndex) {
    expect_selected<std::list<std::int32_t>>(word(3) + word(7) + word(8) + word(9), "[0]", "7");
    expect_selected<std::list<std::int32_t>>(word(3) + word(7) + word(8) + word(9), "[2]", "9");
}

TEST(Select, ValueByKeyAndByPart) {
    expect_selected<Tables>(tables(), R"([("a.c",3)])",
                            R"([{"arm":"Marker","args":{"first_name":"m","second_name":"n"}},)"
                            R"({"arm":"No_Data"}])");
    expect_selected<Tables>(tables(), R"([("a.c",3)][1])", R"({"arm":"No_Data"})");
    expect_selected<Tables>(tables(), R"([("a.c",3)][0].Marker)",
                            R"({"first_name":"m","second_name":"n"})");
    expect_selected<Tables>(tables(), R"([("a.c",3)][0].Marker.second_name)", R"("n")");
    expect_selected<Tables>(tables(), R"([("a.c",4)][0].Assert.1)", "9");
}

TEST(Select, KeyAndPartOfAKey) {
    expect_selected<Tables>(tables(), "[#1].key", R"(["a.c",4])");
    expect_selected<Tables>(tables(), "[#1].key.0", R"("a.c")");
    expect_selected<Tables>(tables(), "[#0].key.1", "3");
}

TEST(Select, ValueByTheNumberOfItsEntry) {
    expect_selected<Tables>(tables(), "[#1][0].Assert.1", "9");
    expect_selected<Numbers>(word(1) + in_full(1, "a") + word(7), "[#0]", "7");
    EXPECT_FALSE(selected<Tables>(tables(), "[#2]").dumped.found);
    EXPECT_FALSE(selected<Tables>(tables(), "[#]").dumped.found);
}

TEST(Select, HowFarThePathLedIsReported) {
    auto const reached = [](std::string const& path) {
        return path.substr(0, selected<Tables>(tables(), path).dumped.reached);
    };
    EXPECT_EQ(reached("x"), "");
    EXPECT_EQ(reached(R"([("a.c",5)])"), "");
    EXPECT_EQ(reached(R"([("a.c",3)][7].Marker)"), R"([("a.c",3)])");
    EXPECT_EQ(reached(R"([("a.c",3)][0].Assert)"), R"([("a.c",3)][0])");
    EXPECT_EQ(reached(R"([("a.c",3)][0].Marker)"), R"([("a.c",3)][0].Marker)");
    EXPECT_EQ(reached(R"([("a.c",3)][0].Markers)"), R"([("a.c",3)][0])");
}

TEST(Select, FlagAndFieldBehindAnOptional) {
    expect_selected<std::array<bool, 4>>("TFTT", "[1]", "false");
    expect_selected<std::optional<std::list<std::int32_t>>>("T" + word(1) + word(7), "[0]", "7");
}

TEST(Select, PathsOfFindingsLeadToTheirParts) {
    auto const&       root = *find_root("IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList");
    std::string const odd = word(1) + word(0) + "x";
    auto const        finding = verify(root, odd).findings.at(0);
    EXPECT_EQ(finding.path, "[0].BOOL_PRAGMA_PARAMETER");
    EXPECT_EQ(show(root, odd, {.path = finding.path}).json,
              R"({"root":"IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList",)"
              R"("path":"[0].BOOL_PRAGMA_PARAMETER","value":false})"
              "\n");
}

TEST(Select, PrettyPart) {
    EXPECT_EQ(selected<std::list<std::int32_t>>(word(1) + word(7), "[0]", Form::pretty).json,
              "{\n  \"root\": \"R\",\n  \"path\": \"[0]\",\n  \"value\": 7\n}\n");
}

TEST(Select, NothingThereIsNotFoundAndPrintsNothing) {
    for (char const* const path :
         {"[2]", "x", "[(\"a.c\",5)]", "[(\"a.c\",3)", "[(\"a.c\",3)].", "[(\"a.c\",3)][0].Assert",
          "[(\"a.c\",3)][0].Marker.", "[#2].key", "."}) {
        Shown const shown = selected<Tables>(tables(), path);
        EXPECT_FALSE(shown.dumped.found) << path;
        EXPECT_EQ(shown.json, "") << path;
        EXPECT_EQ(shown.dumped.answer, Answer::good);
    }
}

TEST(Select, PartWithinAnAbsentValueIsNotFound) {
    EXPECT_FALSE(selected<std::optional<std::list<std::int32_t>>>("F", "[0]").dumped.found);
}

TEST(Select, FirstOfSeveralWithOnePath) {
    // Paths cut long keys, so these two look the same there.
    std::string const start(100, 'k');
    std::string const bytes =
        word(2) + in_full(1, start + "1") + word(1) + in_full(2, start + "2") + word(2);
    auto const path = "[\"" + std::string(80, 'k') + "\"... (101 bytes)]";
    expect_selected<Numbers>(bytes, path, "1");
}

TEST(Select, EntryThatAReaderDropsIsNotThere) {
    std::string const twice = word(2) + in_full(1, "a") + word(1) + word(1) + word(2);
    expect_selected<Numbers>(twice, R"(["a"])", "1");
    expect_selected<sml::core::LastWinsMap<Strings_T, std::int32_t>>(twice, R"(["a"])", "2");
    using Lists = std::unordered_map<Strings_T, std::list<std::int32_t>>;
    Shown const shown = selected<Lists>(
        word(2) + in_full(1, "a") + word(0) + word(1) + word(1) + word(7), R"(["a"][0])");
    EXPECT_FALSE(shown.dumped.found);
    EXPECT_EQ(shown.json, "");
}

TEST(Lines, OneForAnElementOrAnEntry) {
    using List = std::list<std::int32_t>;
    EXPECT_EQ(show<List>(word(2) + word(7) + word(8), {.form = Form::lines}).json, "7\n8\n");
    EXPECT_EQ(show<std::set<std::int32_t>>(word(2) + word(7) + word(8), {.form = Form::lines}).json,
              "7\n8\n");
    EXPECT_EQ(show<Tables>(tables(), {.form = Form::lines}).json,
              R"([["a.c",3],[{"arm":"Marker","args":{"first_name":"m","second_name":"n"}},)"
              R"({"arm":"No_Data"}]])"
              "\n"
              R"([["a.c",4],[{"arm":"Assert","args":["m",9]}]])"
              "\n");
}

TEST(Lines, OfATableInsideAnother) {
    EXPECT_EQ(selected<Tables>(tables(), R"([("a.c",3)])", Form::lines).json,
              R"({"arm":"Marker","args":{"first_name":"m","second_name":"n"}})"
              "\n"
              R"({"arm":"No_Data"})"
              "\n");
}

TEST(Lines, NoneForAnEmptyOrAbsentTable) {
    using List = std::list<std::int32_t>;
    Shown const empty = show<List>(word(0), {.form = Form::lines});
    EXPECT_TRUE(empty.dumped.found);
    EXPECT_EQ(empty.json, "");
    Shown const absent = show<std::optional<List>>("F", {.form = Form::lines});
    EXPECT_TRUE(absent.dumped.found);
    EXPECT_EQ(absent.json, "");
    EXPECT_EQ(show<std::optional<List>>("T" + word(1) + word(7), {.form = Form::lines}).json,
              "7\n");
}

TEST(Lines, NotFoundWhereThereIsNoTable) {
    for (char const* const path : {"", "first_name", "[0]"}) {
        Shown const shown =
            selected<Data::Marker_args>(in_full(1, "a") + word(1), path, Form::lines);
        EXPECT_FALSE(shown.dumped.found) << path;
        EXPECT_EQ(shown.json, "");
    }
}

TEST(Lines, DamageIsMarkedInItsLine) {
    using List = std::list<Strings_T>;
    Shown const shown =
        show<List>(word(2) + in_full(1, "a") + word(-2) + word(9), {.form = Form::lines});
    EXPECT_EQ(shown.json,
              "\"a\"\n"
              R"({"unsafe":{"offset":17,"expected":"a length from 0 to 0","found":"9"}})"
              "\n");
    Shown const at_once = show<List>(word(2) + word(1), {.form = Form::lines});
    EXPECT_EQ(at_once.json,
              R"({"unsafe":{"offset":0,"expected":"a count of at most 1","found":"2"}})"
              "\n");
}

TEST(DumpOfDamage, NodeIsMarkedAndWhatIsOpenIsClosed) {
    Shown const shown = show<Tables>(tables().substr(0, tables().size() - 1));
    EXPECT_EQ(shown.dumped.answer, Answer::unsafe);
    EXPECT_EQ(shown.json,
              R"({"root":"R","value":[[["a.c",3],[{"arm":"Marker",)"
              R"("args":{"first_name":"m","second_name":"n"}},{"arm":"No_Data"}]],)"
              R"([["a.c",4],[{"arm":"Assert","args":)"
              R"(["m",{"unsafe":{"offset":69,"expected":"at least 4 bytes","found":"3"}}]}]]]})"
              "\n");
}

TEST(DumpOfDamage, BytesBehindTheValueStandBesideIt) {
    Shown const shown = show<std::int32_t>(word(5) + "x");
    EXPECT_EQ(shown.json, R"({"root":"R","value":5,)"
                          R"("unsafe":{"offset":4,"expected":"the end of the bytes",)"
                          R"("found":"1 more bytes"}})"
                          "\n");
    EXPECT_EQ(shown.dumped.answer, Answer::unsafe);
    EXPECT_EQ(shown.dumped.findings.size(), 1u);
}

TEST(DumpOfDamage, LimitIsDamage) {
    DumpOptions const shallow{.walk = {.limits = {.depth = 1}}};
    Shown const       shown = show<std::list<std::list<bool>>>(word(1) + word(1) + "T", shallow);
    EXPECT_EQ(shown.dumped.answer, Answer::unsafe);
    EXPECT_EQ(shown.json,
              R"({"root":"R","value":[{"unsafe":{"offset":4,)"
              R"("expected":"at most 1 levels of variants and containers","found":"one more"}}]})"
              "\n");
}

TEST(DumpOfDamage, MarkedAlsoInAnEntryThatAReaderWouldDrop) {
    Shown const shown = show<std::unordered_map<Strings_T, std::list<Strings_T>>>(
        word(2) + in_full(1, "a") + word(0) + word(1) + word(1) + word(-2) + word(9));
    EXPECT_EQ(shown.dumped.answer, Answer::unsafe);
    EXPECT_TRUE(is_json(shown.json)) << shown.json;
    EXPECT_NE(shown.json.find("\"unsafe\""), std::string::npos) << shown.json;
}

/// The dump has the content of the bytes up to the damage, then the member `unsafe`.
TEST(DumpOfDamage, EveryCutIsJsonThatStartsLikeTheWhole) {
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        RandomValues      random(11, {.elements = 1, .depth = 3});
        std::string const whole = one.random_bytes(random);
        Root const&       root = *find_root(one.stem);
        std::string const all = show(root, whole).json;
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Shown const       cut = show(root, whole.substr(0, size));
            std::size_t const mark = cut.json.find("{\"unsafe\":");
            ASSERT_EQ(cut.dumped.answer, Answer::unsafe) << size;
            ASSERT_NE(mark, std::string::npos) << cut.json;
            ASSERT_TRUE(is_json(cut.json)) << cut.json;
            ASSERT_EQ(cut.json.substr(0, mark), all.substr(0, mark));
        }
    }
}

/// The JSON is well-formed for any bytes.
TEST(DumpOfDamage, ChangedBytesAreJson) {
    constexpr char tried[] = {'\0', '\1', 'T', ' ', '\x7F', '\xFF'};
    int            unsafe = 0;
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        RandomValues      random(12, {.elements = 1, .depth = 3});
        std::string const whole = one.random_bytes(random);
        for (std::size_t at = 0; at < whole.size(); ++at) {
            std::string changed = whole;
            changed[at] = tried[at % sizeof tried];
            DumpOptions const options{.walk = {.limits = {.memory = std::uint64_t{1} << 24}}};
            Shown const       shown = show(*find_root(one.stem), changed, options);
            ASSERT_TRUE(is_json(shown.json)) << shown.json;
            bool const is_unsafe = shown.dumped.answer == Answer::unsafe;
            ASSERT_EQ(is_unsafe, shown.json.find("\"unsafe\":{") != std::string::npos);
            unsafe += is_unsafe ? 1 : 0;
        }
    }
    EXPECT_GT(unsafe, 100);
}

/// It goes out in pieces.
TEST(Dump, LongTextKeepsEachCharacterWhole) {
    for (std::size_t const before : {0u, 1u, 2u, 3u}) {
        std::string text(before, 'a');
        while (text.size() < 200'000) text += "😀";
        EXPECT_TRUE(value_of<std::string>(block(text)) == '"' + text + '"') << before;
    }
}

TEST(DumpOfDuplicates, FirstOrLastEntryAsAReaderKeeps) {
    std::string const twice =
        word(3) + in_full(1, "a") + word(1) + in_full(2, "b") + word(5) + word(1) + word(2);
    EXPECT_EQ(value_of<Numbers>(twice), R"([["a",1],["b",5]])");
    EXPECT_EQ((value_of<std::map<Strings_T, std::int32_t>>(twice)), R"([["a",1],["b",5]])");
    EXPECT_EQ((value_of<sml::core::LastWinsMap<Strings_T, std::int32_t>>(twice)),
              R"([["a",2],["b",5]])");
    EXPECT_EQ((value_of<sml::core::LastWinsUnorderedMap<Strings_T, std::int32_t>>(twice)),
              R"([["a",2],["b",5]])");
    EXPECT_EQ(value_of<std::set<std::int32_t>>(word(3) + word(1) + word(2) + word(1)), "[1,2]");
}

TEST(DumpOfDuplicates, LastOfThreeStays) {
    std::string const thrice =
        word(3) + in_full(1, "a") + word(1) + word(1) + word(2) + word(1) + word(3);
    EXPECT_EQ(value_of<Numbers>(thrice), R"([["a",1]])");
    EXPECT_EQ((value_of<sml::core::LastWinsMap<Strings_T, std::int32_t>>(thrice)), R"([["a",3]])");
}

TEST(DumpOfDuplicates, ReadOverAreCountedAndJudgedAsByVerify) {
    Root const        root{"R", describe<sml::core::LastWinsMap<Strings_T, std::int32_t>>()};
    std::string const twice = word(2) + in_full(1, "a") + word(1) + word(1) + word(2);
    Shown const       shown = show(root, twice);
    EXPECT_EQ(shown.dumped.answer, Answer::odd);
    EXPECT_EQ(shown.dumped.odd_count, 1u);

    Shown const refused = show(root, twice, {.walk = {.limits = {.work = 0}}});
    EXPECT_EQ(refused.dumped.answer, Answer::unsafe);
    ASSERT_FALSE(refused.dumped.findings.empty());
    EXPECT_EQ(refused.dumped.findings.back().expected, "at most 0 comparisons of keys by a reader");
}

TEST(DumpOfDuplicates, WhateverTheSpellingOfTheKey) {
    // repeated keys: defined again, by an id without a definition, and in other digits
    EXPECT_EQ(value_of<Numbers>(word(2) + in_full(1, "a") + word(1) + in_full(2, "a") + word(2)),
              R"([["a",1]])");
    EXPECT_EQ(value_of<Numbers>(word(2) + in_full(1, "") + word(1) + word(9) + word(2)),
              R"([["",1]])");
    using Integers = sml::core::HashedSet<BigInteger>;
    EXPECT_EQ(value_of<Integers>(word(3) + block("1f\0\0"s) + block(" 01F") + block("+1f")),
              R"(["31","0"])");
}

TEST(DumpOfDuplicates, UnsetVariantsAreNeverEqual) {
    using Classes = sml::core::HashedSet<sml::Check_Classification::T_Check_Classification>;
    std::string const first = in_full(1, "a") + word(3);
    std::string const again = word(1) + word(3);
    std::string const args = R"("args":{"first_string":"a","first_int":3}})";
    EXPECT_EQ(value_of<Classes>(word(2) + word(-1) + first + word(-1) + again),
              R"([{"arm":null,"tag":-1,)" + args + R"(,{"arm":null,"tag":-1,)" + args + "]");
    EXPECT_EQ(value_of<Classes>(word(2) + word(99) + first + word(99) + again),
              R"([{"arm":null,"tag":99,)" + args + "]");
}

TEST(DumpOfDuplicates, StringDefinedInADroppedEntryIsKnownAfterwards) {
    using Strings = std::unordered_map<Strings_T, Strings_T>;
    EXPECT_EQ(value_of<Strings>(word(3) + in_full(1, "a") + word(1) + word(1) + in_full(2, "x") +
                                in_full(3, "b") + word(2)),
              R"([["a","a"],["b","x"]])");
}

/// Expects that the dump of odd bytes shows the value that the library's reader reads.
void expect_shown_as_read(RealRoot const& one, std::string const& odd) {
    Root const&        root = *find_root(one.stem);
    Shown const        shown = show(root, odd);
    std::ostringstream out;
    auto const         encoded = encode(shown.json, out);
    ASSERT_FALSE(encoded.error) << encoded.error->path << ": " << encoded.error->found << '\n'
                                << shown.json;
    auto const verdict = verify(root, out.str());
    EXPECT_FALSE(verdict.reason_against_encoding) << shown.json;
    std::string const read = one.read_and_write(odd);
    EXPECT_EQ(sml::inspect::digest(root, out.str()), sml::inspect::digest(root, read))
        << shown.json << show(root, read).json << hex::shown(odd);
}

TEST(DumpOfOddBytes, ShowsWhatAReaderHolds) {
    constexpr char         bytes_tried[] = {'\0', '\1', 'F', 'T', '0', '-', '\x7F', '\xFF'};
    constexpr std::int32_t words_tried[] = {0, -1, 1, std::numeric_limits<std::int32_t>::min()};
    Limits const           limits{.memory = std::uint64_t{1} << 22};
    int                    odd = 0;
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        RandomValues      random(13, {.elements = 2, .depth = 2});
        std::string const whole = one.random_bytes(random);
        auto const        try_bytes = [&](std::string const& changed) {
            if (verify(*find_root(one.stem), changed, {.limits = limits}).answer != Answer::odd)
                return;
            ++odd;
            expect_shown_as_read(one, changed);
        };
        std::size_t const step = 1 + whole.size() / 2000;
        for (std::size_t at = 0; at < whole.size(); at += step) {
            std::string changed = whole;
            changed[at] = bytes_tried[(at / step) % std::size(bytes_tried)];
            try_bytes(changed);
            if (at + 4 > whole.size()) continue;
            changed = whole;
            std::memcpy(changed.data() + at, &words_tried[(at / step) % std::size(words_tried)], 4);
            try_bytes(changed);
        }
        if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
    EXPECT_GT(odd, 500);
}

/// The bytes of one information record with a map of fields by name, in which values of repeated
/// keys are read over.
std::string fields_named(std::string const& first, std::string const& second) {
    sml::Application_Results::T_Application_Results results;
    auto& category = results.infos[{Strings_T("k"), 1}].category;
    auto& fields = category.choose<"VORS">().fields;
    for (std::string const& name : {first, second}) {
        auto& range = fields[Strings_T(name)].second.choose<"Field_Scalar">().range;
        auto& intervals = range.choose<"Value_Range">().intervals;
        intervals.emplace_back().choose<"Int_Interval">().lower = BigInteger(name.size());
    }
    return sml::Application_Results_Application_Results_fromCxx(results);
}

/// The same with one name repeated.
std::string fields_read_over() {
    std::string odd = fields_named("same", "Same");
    odd.at(odd.find("Same")) = 's';
    return odd;
}

TEST(DumpOfOddBytes, RepeatedKeyThatIsReadOverShowsWhatAReaderHolds) {
    for (RealRoot const& one : real_roots())
        if (one.stem == "Application_Results_Application_Results"s)
            expect_shown_as_read(one, fields_read_over());
}

TEST(DumpOfOddBytes, MapsThatAreReadOverAreShownInTheOrderOfTheirKeys) {
    using Lists = sml::core::LastWinsMap<std::int32_t, std::list<std::int32_t>>;
    std::string const odd = word(4) + word(9) + word(1) + word(1) + word(3) + word(0) + word(9) +
                            word(1) + word(2) + word(5) + word(0);
    EXPECT_EQ(value_of<Lists>(odd), "[[9,[1,2]],[3,[]],[5,[]]]");
    using Sets = sml::core::LastWinsMap<std::int32_t, std::unordered_set<std::int32_t>>;
    EXPECT_EQ(value_of<Sets>(odd), "[[9,[1,2]],[3,[]],[5,[]]]");
}

TEST(DumpOfOddBytes, PathsLeadToWhatIsKeptOfATableThatIsReadOver) {
    using Lists = sml::core::LastWinsMap<std::int32_t, std::list<std::int32_t>>;
    Root const        root{"R", describe<Lists>()};
    std::string const odd =
        word(3) + word(3) + word(0) + word(9) + word(1) + word(1) + word(9) + word(1) + word(2);
    Shown const one = show(root, odd, {.walk = {}, .form = Form::compact, .path = "[9][1]"});
    EXPECT_TRUE(one.dumped.found);
    EXPECT_EQ(one.json, "{\"root\":\"R\",\"path\":\"[9][1]\",\"value\":2}\n");
    Shown const lines = show(root, odd, {.walk = {}, .form = Form::lines, .path = ""});
    EXPECT_EQ(lines.json, "[3,[]]\n[9,[1,2]]\n");
    Shown const none = show(root, odd, {.walk = {}, .form = Form::compact, .path = "[#2]"});
    EXPECT_FALSE(none.dumped.found);
}

TEST(DumpOfOddBytes, WithinTheLimitsWhateverAReaderKeeps) {
    using Lists = sml::core::LastWinsMap<std::int32_t, std::list<Strings_T>>;
    Root const        root{"R", describe<Lists>()};
    std::string const odd = word(2) + word(7) + word(1) + word(5) + word(7) + word(0);
    Limits            tight;
    tight.memory = verify(root, odd).heap;
    EXPECT_EQ(show(root, odd, {.walk = {.limits = tight}}).json,
              "{\"root\":\"R\",\"value\":[[7,[\"\"]]]}\n");
}

TEST(DumpOfOddBytes, NeitherStringsNorTheResultOfTheReadersAreTouched) {
    std::string const  odd = fields_read_over();
    Root const&        root = *find_root("Application_Results_Application_Results");
    std::string const& shared = sml::Integers64_T_fromCxx(5);
    std::string const  before = shared;
    char const* const  place = shared.data();
    std::size_t const  strings = Strings_T::fAllStrings.size();
    std::size_t const  buckets = Strings_T::fAllStrings.bucket_count();
    EXPECT_NE(show(root, odd).json.find("same"), std::string::npos);
    EXPECT_EQ(shared, before);
    EXPECT_EQ(shared.data(), place);
    EXPECT_EQ(Strings_T::fAllStrings.size(), strings);
    EXPECT_EQ(Strings_T::fAllStrings.bucket_count(), buckets);
}

TEST(DumpOfOddBytes, FindingsAreListedInOrderAndCounted) {
    using List = std::list<bool>;
    Shown const shown = show<List>(word(3) + "xyz", {.walk = {.limits = {}, .listed = 2}});
    EXPECT_EQ(shown.dumped.answer, Answer::odd);
    EXPECT_EQ(shown.dumped.odd_count, 3u);
    ASSERT_EQ(shown.dumped.findings.size(), 2u);
    EXPECT_EQ(shown.dumped.findings[0].offset, 4u);
    EXPECT_EQ(shown.dumped.findings[1].offset, 5u);
    EXPECT_EQ(value_of<List>(word(3) + "xTt"), "[false,true,false]");
}

TEST(DumpOfOddBytes, FindingsAreThoseOfVerify) {
    Root const        root{"R", describe<std::map<Strings_T, bool>>()};
    std::string const odd = word(3) + in_full(1, "a") + "x" + word(1) + "T" + word(7) + "y";
    auto const        verdict = verify(root, odd);
    Shown const       shown = show(root, odd);
    EXPECT_EQ(shown.dumped.odd_count, verdict.odd_count);
    ASSERT_EQ(shown.dumped.findings.size(), verdict.findings.size());
    for (std::size_t i = 0; i < verdict.findings.size(); ++i) {
        EXPECT_EQ(shown.dumped.findings[i].offset, verdict.findings[i].offset);
        EXPECT_EQ(shown.dumped.findings[i].path, verdict.findings[i].path);
    }
}

/// A buffer that takes this many pieces and refuses further ones. It counts all that it gets.
class FullBuffer : public std::streambuf {
public:
    explicit FullBuffer(int taken) : left_(taken) {}

    int given = 0;

private:
    std::streamsize xsputn(char const*, std::streamsize size) override {
        ++given;
        return left_-- > 0 ? size : 0;
    }

    int left_;
};

TEST(Dump, EndsWhereTheStreamTakesNoMore) {
    std::string bytes = word(100'000);
    for (std::int32_t i = 1; i <= 100'000; ++i) {
        std::string const text = std::to_string(i);
        bytes += word(-i) + word(static_cast<std::int32_t>(text.size())) + text + word(0);
    }
    Root const&  root = *find_root("String_To_StringSet_T");
    FullBuffer   buffer(3);
    std::ostream out(&buffer);
    dump(root, bytes, out);
    EXPECT_FALSE(out);
    EXPECT_EQ(buffer.given, 4);
    FullBuffer   throwing(3);
    std::ostream strict(&throwing);
    strict.exceptions(std::ios::badbit);
    EXPECT_THROW(dump(root, bytes, strict), std::ios::failure);
    EXPECT_EQ(throwing.given, 4);
}

}  // namespace

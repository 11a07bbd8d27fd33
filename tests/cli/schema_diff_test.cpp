#include "schema_diff.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

namespace json = boost::json;

using bradep::breaking_changes;
using bradep::changed_roots;
using Lines = std::vector<std::string>;

/// A schema with one root R of this type and with these definitions, all in JSON.
json::value schema(std::string const& type, std::string const& types = "",
                   std::string const& digest = "d") {
    return json::parse(R"({"roots": [{"stem": "R", "type": )" + type + R"(, "digest": ")" + digest +
                       R"("}], "types": {)" + types + "}}");
}

Lines changes(std::string const& old, std::string const& now) {
    return breaking_changes(schema(old), schema(now));
}

/// The changes of a root of type X between these two definitions of X.
Lines changes_of_x(std::string const& old, std::string const& now) {
    return breaking_changes(schema(R"("X")", R"("X": )" + old), schema(R"("X")", R"("X": )" + now));
}

std::string record(std::string const& fields) {
    return R"({"kind": "record", "fields": [)" + fields + "]}";
}

std::string field(std::string const& name, std::string const& type = R"("int32")") {
    return R"({"name": ")" + name + R"(", "type": )" + type + "}";
}

std::string enumeration(std::string const& names) {
    return R"({"kind": "enumeration", "enumerators": [)" + names + "]}";
}

std::string variant(std::string const& arms) {
    return R"({"kind": "variant", "arms": [)" + arms + "]}";
}

std::string arm(std::string const& name, std::string const& more = "") {
    return R"({"tag": 0, "name": ")" + name + '"' + more + "}";
}

constexpr char const* with_int = R"(, "payload": "int32")";
constexpr char const* is_catch_all = R"(, "payload": "int32", "serves_all_other_tags": true)";

TEST(SchemaDiff, EqualSchemasBreakNothing) {
    std::string const x = record(field("a"));
    EXPECT_EQ(changes_of_x(x, x), Lines{});
    EXPECT_EQ(changes(R"({"map": ["string", {"list": "int32"}]})",
                      R"({"map": ["string", {"list": "int32"}]})"),
              Lines{});
}

TEST(SchemaDiff, RootThatIsGone) {
    json::value const old = schema(R"("int32")");
    json::value const now = json::parse(R"({"roots": [], "types": {}})");
    EXPECT_EQ(breaking_changes(old, now), Lines{"the root R is gone"});
    EXPECT_EQ(breaking_changes(now, old), Lines{});
}

TEST(SchemaDiff, AnotherKind) {
    EXPECT_EQ(changes(R"("int32")", R"("int64")"), Lines{"the root R: was int32, is int64"});
    EXPECT_EQ(changes(R"({"list": "int32"})", R"({"set": "int32", "held": "sorted"})"),
              Lines{"the root R: was list<int32>, is set<int32>"});
    EXPECT_EQ(changes(R"({"optional": "int32"})", R"("int32")"),
              Lines{"the root R: was optional<int32>, is int32"});
    EXPECT_EQ(changes(R"({"flags": 4})", R"({"flags": 5})"),
              Lines{"the root R: was 4 flags, is 5 flags"});
    EXPECT_EQ(changes(R"({"tuple": ["int32", "string"]})", R"({"tuple": ["int32"]})"),
              Lines{"the root R: was tuple<int32, string>, is tuple<int32>"});
}

TEST(SchemaDiff, AnotherKindInside) {
    EXPECT_EQ(changes(R"({"map": ["string", {"list": "int32"}], "held": "hashed"})",
                      R"({"map": ["string", {"list": "text"}], "held": "hashed"})"),
              Lines{"the root R: was int32, is text"});
}

TEST(SchemaDiff, AClassInPlaceOfAWord) {
    EXPECT_EQ(breaking_changes(schema(R"("int32")"), schema(R"("X")", R"("X": )" + record(""))),
              Lines{"the root R: was int32, is X"});
    EXPECT_EQ(changes_of_x(record(""), enumeration("")),
              Lines{"the root R: was the record X, is the enumeration X"});
}

TEST(SchemaDiff, FieldGoneNewOrOfAnotherType) {
    EXPECT_EQ(changes_of_x(record(field("a") + "," + field("b")), record(field("b"))),
              Lines{"X: the field a is gone"});
    EXPECT_EQ(changes_of_x(record(field("a")), record(field("a") + "," + field("b"))),
              Lines{"X: the field b is new"});
    EXPECT_EQ(changes_of_x(record(field("a")), record(field("a", R"("string")"))),
              Lines{"X.a: was int32, is string"});
    EXPECT_EQ(changes_of_x(record(field("a")), record(field("b"))),
              (Lines{"X: the field a is gone", "X: the field b is new"}));
}

TEST(SchemaDiff, FieldsInAnotherOrder) {
    EXPECT_EQ(changes_of_x(record(field("a") + "," + field("b") + "," + field("c")),
                           record(field("a") + "," + field("c") + "," + field("b"))),
              Lines{"X: the fields from b on stand in another order"});
}

TEST(SchemaDiff, EnumeratorInsertedMovesTheTagsBehindIt) {
    EXPECT_EQ(changes_of_x(enumeration(R"("A", "C", "D")"), enumeration(R"("A", "B", "C", "D")")),
              Lines{"X: with the new enumerator B tags move: C 1 -> 2, D 2 -> 3"});
    EXPECT_EQ(changes_of_x(enumeration(R"("B")"), enumeration(R"("A", "AA", "B")")),
              Lines{"X: with the new enumerator A, AA tags move: B 0 -> 2"});
}

TEST(SchemaDiff, EnumeratorGone) {
    EXPECT_EQ(changes_of_x(enumeration(R"("A", "B")"), enumeration(R"("B")")),
              (Lines{"X: the enumerator A with tag 0 is gone", "X: tags move: B 1 -> 0"}));
    EXPECT_EQ(changes_of_x(enumeration(R"("A", "B")"), enumeration(R"("A")")),
              Lines{"X: the enumerator B with tag 1 is gone"});
}

TEST(SchemaDiff, NameBehindAllOthersBreaksNothing) {
    EXPECT_EQ(changes_of_x(enumeration(R"("A")"), enumeration(R"("A", "B")")), Lines{});
    EXPECT_EQ(changes_of_x(variant(arm("A")), variant(arm("A") + "," + arm("B", with_int))),
              Lines{});
}

TEST(SchemaDiff, ArmInsertedOrGone) {
    EXPECT_EQ(
        changes_of_x(variant(arm("B", with_int)), variant(arm("A") + "," + arm("B", with_int))),
        Lines{"X: with the new arm A tags move: B 0 -> 1"});
    EXPECT_EQ(changes_of_x(variant(arm("A") + "," + arm("B")), variant(arm("B"))),
              (Lines{"X: the arm A with tag 0 is gone", "X: tags move: B 1 -> 0"}));
}

TEST(SchemaDiff, PayloadOfAnArm) {
    EXPECT_EQ(changes_of_x(variant(arm("A", with_int)), variant(arm("A"))),
              Lines{"X.A: has no payload any more"});
    EXPECT_EQ(changes_of_x(variant(arm("A")), variant(arm("A", with_int))),
              Lines{"X.A: has a payload now"});
    EXPECT_EQ(changes_of_x(variant(arm("A", with_int)),
                           variant(arm("A", R"(, "payload": {"list": "int32"})"))),
              Lines{"X.A: was int32, is list<int32>"});
}

TEST(SchemaDiff, CatchAllArm) {
    EXPECT_EQ(changes_of_x(variant(arm("A", with_int)), variant(arm("A", is_catch_all))),
              Lines{"X: the catch-all arm was none, is A"});
    EXPECT_EQ(changes_of_x(variant(arm("A", is_catch_all)), variant(arm("A", with_int))),
              Lines{"X: the catch-all arm was A, is none"});
    EXPECT_EQ(changes_of_x(variant(arm("A", is_catch_all)),
                           variant(arm("A", with_int) + "," + arm("B", is_catch_all))),
              Lines{"X: the catch-all arm was A, is B"});
}

TEST(SchemaDiff, HowAReaderHoldsAValueBreaksNothing) {
    EXPECT_EQ(
        changes(R"({"set": "int32", "held": "hashed"})", R"({"set": "int32", "held": "sorted"})"),
        Lines{});
    EXPECT_EQ(changes(R"({"boxed": "int32"})", R"("int32")"), Lines{});
    EXPECT_EQ(changes(R"({"optional": "int32"})", R"({"optional": {"boxed": "int32"}})"), Lines{});
    EXPECT_EQ(changes(R"({"map": ["int32", "int32"], "repeated_key": "is dropped"})",
                      R"({"map": ["int32", "int32"], "repeated_key": "is read over"})"),
              Lines{});
}

TEST(SchemaDiff, AnotherClassNameBreaksNothing) {
    json::value const old = schema(R"("X")", R"("X": )" + record(field("a")));
    json::value const now = schema(R"("Y")", R"("Y": )" + record(field("a")));
    EXPECT_EQ(breaking_changes(old, now), Lines{});
    EXPECT_EQ(
        changes_of_x(record(field("a")), R"({"kind": "group", "fields": [)" + field("a") + "]}"),
        Lines{});
}

TEST(SchemaDiff, EachTypeIsReportedOnceAndRecursionEnds) {
    std::string const both = field("a", R"("X")") + "," + field("b", R"({"list": "X"})");
    EXPECT_EQ(changes_of_x(record(both + "," + field("c")), record(both)),
              Lines{"X: the field c is gone"});
}

/// The type inside `depth` containers.
std::string nested(std::size_t depth, std::string const& kind, std::string const& type) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) text += "{\"" + kind + "\":";
    return text + type + std::string(depth, '}');
}

TEST(SchemaDiff, ChainOfTypesMayBeAsLongAsTheSchema) {
    auto const chain = [](std::size_t length, std::string const& last) {
        std::string types;
        for (std::size_t i = 0; i < length; ++i)
            types += "\"X" + std::to_string(i) +
                     "\": " + record(field("next", "\"X" + std::to_string(i + 1) + "\"")) + ",";
        return schema(R"("X0")", types + "\"X" + std::to_string(length) + "\": " + last);
    };
    constexpr std::size_t length = 50000;
    json::value const     old = chain(length, record(field("a")));
    json::value const     now = chain(length, record(field("b")));
    EXPECT_EQ(breaking_changes(old, old), Lines{});
    EXPECT_EQ(breaking_changes(old, now),
              (Lines{"X50000: the field a is gone", "X50000: the field b is new"}));
}

TEST(SchemaDiff, TypesInsideOneAnotherAreSpelledWhole) {
    constexpr std::size_t depth = 25;  // what this parser allows beyond the schema itself
    auto const            deep = nested(depth, "list", R"("int32")");
    std::string           spelled = "int32";
    for (std::size_t i = 0; i < depth; ++i) spelled = "list<" + spelled + ">";
    EXPECT_EQ(changes(deep, R"("int32")"), Lines{"the root R: was " + spelled + ", is int32"});
    EXPECT_EQ(changes(deep, nested(depth, "list", R"("text")")),
              Lines{"the root R: was int32, is text"});
    EXPECT_EQ(changes(nested(depth, "boxed", R"("int32")"), R"("int32")"), Lines{});
    EXPECT_EQ(changes(nested(1, "tuple", R"([{"tuple": ["int32", {"flags": 3}]}, "text"])"),
                      R"("int32")"),
              Lines{"the root R: was tuple<tuple<int32, 3 flags>, text>, is int32"});
}

TEST(SchemaDiff, RootsOfAnotherDigest) {
    json::value const old = schema(R"("int32")", "", "one");
    EXPECT_EQ(changed_roots(old, schema(R"("int32")", "", "one")), Lines{});
    EXPECT_EQ(changed_roots(old, schema(R"("int32")", "", "two")), Lines{"R"});
    EXPECT_EQ(changed_roots(old, json::parse(R"({"roots": []})")), Lines{"R"});
}

TEST(SchemaDiff, WhatIsNoSchemaIsAMisfit) {
    json::value const now = schema(R"("int32")");
    for (char const* const text :
         {"{}", "[]", "5", R"({"types": {}})", R"({"roots": [{}], "types": {}})",
          R"({"roots": [{"stem": "R"}], "types": {}})",
          R"({"roots": [{"stem": "R", "type": 5}], "types": {}})",
          R"({"roots": [{"stem": "R", "type": {"none": 5}}], "types": {}})"})
        EXPECT_THROW(breaking_changes(json::parse(text), now), bradep::json_input::Misfit) << text;
}

TEST(SchemaDiff, TypeThatIsNamedButNotThereIsAMisfit) {
    json::value const whole = schema(R"("X")", R"("X": )" + record(field("a")));
    EXPECT_THROW(breaking_changes(schema(R"("X")"), whole), bradep::json_input::Misfit);
}

}  // namespace

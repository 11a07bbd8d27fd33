#include <sml/inspect/schema_json.hpp>

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/describe.hpp>

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <array>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace json = boost::json;

using sml::inspect::Arm;
using sml::inspect::describe;
using sml::inspect::find_root;
using sml::inspect::Kind;
using sml::inspect::Part;
using sml::inspect::Root;
using sml::inspect::roots;
using sml::inspect::Type;
using sml::inspect::type_text;
using sml::inspect::wire_digest;
using sml::inspect::write_schema;

json::value schema_of(std::span<Root const> chosen) {
    std::ostringstream out;
    write_schema(chosen, out);
    return json::parse(out.str());
}

json::value const& all() {
    static json::value const schema = schema_of(roots());
    return schema;
}

json::object const& definition(char const* name) { return all().at("types").at(name).as_object(); }

TEST(Schema, RootsStandInTheirOrderWithTheirDigests) {
    json::array const& list = all().at("roots").as_array();
    ASSERT_EQ(list.size(), roots().size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].at("stem").as_string(), roots()[i].stem);
        EXPECT_EQ(list[i].at("digest").as_string(), wire_digest(roots()[i]));
        EXPECT_EQ(wire_digest(roots()[i]).size(), 64u);
    }
    EXPECT_EQ(list[0].at("type"), json::value("int64"));
    EXPECT_EQ(list[7].at("type"),
              json::value("sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results"));
}

TEST(Schema, RecordHasItsFieldsInWireOrder) {
    EXPECT_EQ(json::value(definition("sml::SourceLocRef::T_SourceLocRef")), json::parse(R"(
        {"kind": "record", "fields": [
            {"name": "kind", "type": "uint32"},
            {"name": "localization", "type": "sml::Localization::T_Localization"},
            {"name": "reference", "type": "int64"}]})"));
}

TEST(Schema, VariantHasItsArmsAndWhichOneIsTheCatchAll) {
    EXPECT_EQ(json::value(definition("sml::Infos::T_Range")), json::parse(R"(
        {"kind": "variant", "arms": [
            {"tag": 0, "name": "Int_Interval",
             "payload": "sml::Infos::T_Range::Int_Interval_parts"},
            {"tag": 1, "name": "Nan"},
            {"tag": 2, "name": "Real_Interval",
             "payload": "sml::Infos::T_Range::Real_Interval_parts",
             "serves_all_other_tags": true}]})"));
    EXPECT_EQ(definition("sml::Infos::T_Range::Int_Interval_parts").at("kind"),
              json::value("group"));
}

TEST(Schema, VariantWithoutSuchAnArm) {
    EXPECT_EQ(json::value(definition("sml::IL::T_Type_Op")), json::parse(R"(
        {"kind": "variant", "arms": [
            {"tag": 0, "name": "Float_Op", "payload": "sml::IL::T_Type_Op::Float_Op_args"},
            {"tag": 1, "name": "Integer_Op"}]})"));
}

TEST(Schema, ReferenceIsAKindOfItsOwn) {
    EXPECT_EQ(json::value(definition("sml::Interrogators::T_QuestionRef")), json::parse(R"(
        {"kind": "reference", "arms": [
            {"tag": 0, "name": "QuestionId", "payload": "int64"},
            {"tag": 1, "name": "QuestionPtr", "payload": "uint64"}]})"));
}

TEST(Schema, EnumerationHasItsNames) {
    EXPECT_EQ(json::value(definition("sml::IL::T_Memory_Builtin")), json::parse(R"(
        {"kind": "enumeration", "enumerators": ["Memcpy", "Meminit", "Memset", "Memzero"]})"));
}

/// The type of a field in the schema.
json::value field(char const* type, char const* name) {
    for (json::value const& one : definition(type).at("fields").as_array())
        if (one.at("name") == json::value(name)) return one.at("type");
    return nullptr;
}

TEST(Schema, ContainersSayHowTheyAreHeldAndRead) {
    constexpr char const* results = "sml::Application_Results::T_Application_Results";
    EXPECT_EQ(field(results, "block_numbers"), json::parse(R"(
        {"map": ["string", "int32"], "held": "hashed", "repeated_key": "is dropped"})"));
    EXPECT_EQ(field(results, "first_key_sets"), json::parse(R"(
        {"map": [{"tuple": ["string", "int32"]},
                 {"set": {"tuple": ["string", "int32"]}, "held": "sorted"}],
         "held": "hashed", "repeated_key": "is dropped"})"));
    EXPECT_EQ(field(results, "integer_sets").at("map").at(1),
              json::parse(R"({"set": "integer", "held": "hashed"})"));
    EXPECT_EQ(field("sml::Checks::T_A_Check", "located_names").at("held"), json::value("sorted"));
    json::value const fields = field("sml::Infos::T_Information_Category::VORS_args", "fields");
    EXPECT_EQ(fields.at("repeated_key"), json::value("is read over"));
    EXPECT_EQ(fields.at("held"), json::value("sorted"));
    EXPECT_EQ(fields.at("map").at(0), json::value("string"));
}

TEST(Schema, OtherTypesWithoutANameAreReported) {
    constexpr char const* declaration =
        "sml::IL_Extras::T_ZelvaniteResultData::Procedure_Declaration_args";
    EXPECT_EQ(field(declaration, "text"), json::parse(R"({"optional": "text"})"));
    EXPECT_EQ(field(declaration, "flags"), json::parse(R"({"flags": 4})"));
    EXPECT_EQ(field("sml::IL_Extras::T_ZelvaniteResultData::Event_args", "event"),
              json::parse(R"({"optional": {"boxed": "sml::Events::T_Event_Kind"}})"));
    EXPECT_EQ(field("sml::Infos::T_Info_Type::Inf_Type_Ada_Fixed_args", "first_double"),
              json::value("double"));
    EXPECT_EQ(field("sml::Infos::T_Range::Real_Interval_parts", "lower"), json::value("float"));
}

/// Names of types that a description uses but does not define.
void missing_names(json::value const& use, json::object const& types, std::set<std::string>& out) {
    if (auto const* const text = use.if_string()) {
        if (text->find("::") != text->npos && !types.contains(*text)) out.emplace(*text);
    } else if (auto const* const array = use.if_array()) {
        for (json::value const& one : *array) missing_names(one, types, out);
    } else if (auto const* const object = use.if_object()) {
        for (auto const& member : *object) missing_names(member.value(), types, out);
    }
}

TEST(Schema, EveryNameIsDefined) {
    std::set<std::string> missing;
    missing_names(all(), all().at("types").as_object(), missing);
    EXPECT_EQ(missing, std::set<std::string>{});
    EXPECT_GT(all().at("types").as_object().size(), sml::inspect::roots().size());
}

TEST(Schema, OfOneRootHasWhatThatRootReachesAndNoMore) {
    json::value const schema = schema_of({find_root("Interrogators_Question"), 1});
    EXPECT_EQ(schema.at("roots").as_array().size(), 1u);
    std::set<std::string> names;
    for (auto const& member : schema.at("types").as_object()) names.emplace(member.key());
    EXPECT_EQ(names, (std::set<std::string>{"sml::Interrogators::T_Question",
                                            "sml::Localization::T_Localization",
                                            "sml::SourceLocRef::T_SourceLocRef"}));
}

TEST(Schema, TypeInOneLine) {
    EXPECT_EQ(type_text(*find_root("String_To_StringSet_T")->type), "map<string, set<string>>");
    EXPECT_EQ(type_text(*describe<std::array<bool, 4>>()), "flags of 4");
    EXPECT_EQ(type_text(*describe<sml::Localization::T_Localization>()),
              "sml::Localization::T_Localization");
}

TEST(Schema, EveryTypeOfAKeyCanBeCompared) {
    std::set<Type const*>  seen;
    std::set<std::uint8_t> kinds;
    auto const             add_key = [&](auto const& self, Type const& key) -> void {
        kinds.insert(static_cast<std::uint8_t>(key.kind));
        for (Part const& part : key.parts) self(self, *part.type);
        for (Arm const& arm : key.arms)
            if (arm.payload != nullptr) self(self, *arm.payload);
        if (key.element != nullptr) self(self, *key.element);
    };
    auto const visit = [&](auto const& self, Type const& type) -> void {
        if (!seen.insert(&type).second) return;
        if (type.kind == Kind::map) add_key(add_key, *type.key);
        if (type.kind == Kind::set) add_key(add_key, *type.element);
        bool const counted =
            type.kind == Kind::list || type.kind == Kind::set || type.kind == Kind::map;
        // A count is limited by the remaining bytes, so no entry may take zero bytes.
        if (counted) {
            EXPECT_GT(type.element->least_size + (type.key ? type.key->least_size : 0), 0u);
        }
        for (Part const& part : type.parts) self(self, *part.type);
        for (Arm const& arm : type.arms)
            if (arm.payload != nullptr) self(self, *arm.payload);
        if (type.key != nullptr) self(self, *type.key);
        if (type.element != nullptr) self(self, *type.element);
    };
    for (Root const& root : roots()) visit(visit, *root.type);
    for (Kind const kind : {Kind::string, Kind::big_integer, Kind::int64, Kind::uint32, Kind::int32,
                            Kind::variant, Kind::record, Kind::group, Kind::tuple})
        kinds.erase(static_cast<std::uint8_t>(kind));
    EXPECT_TRUE(kinds.empty());
}

TEST(WireDigest, IsEqualOnlyForRootsOfOneForm) {
    std::map<std::string, std::vector<std::string_view>> stems;
    for (Root const& root : roots()) stems[wire_digest(root)].push_back(root.stem);
    std::set<std::vector<std::string_view>> several;
    for (auto const& [digest, names] : stems)
        if (names.size() > 1) several.insert(names);
    EXPECT_EQ(several,
              (std::set<std::vector<std::string_view>>{
                  {"Answers_Answer", "Answers_Context"},
                  {"Interrogators_QuestionAssert", "Interrogators_QuestionInspectionPoint"},
              }));
}

// Types made by hand, in which tests change one property at a time.
Type of_kind(Kind kind, std::string_view name = {}) {
    Type type{};
    type.kind = kind;
    type.name = name;
    return type;
}

Type const number = of_kind(Kind::int32);
Type const text = of_kind(Kind::string);

Type record(std::span<Part const> parts, std::string_view name = "Record") {
    Type type = of_kind(Kind::record, name);
    type.parts = parts;
    return type;
}

Type variant(std::span<Arm const> arms, bool has_catch_all = false) {
    Type type = of_kind(Kind::variant, "Variant");
    type.arms = arms;
    type.has_catch_all = has_catch_all;
    return type;
}

Type enumeration(std::span<std::string_view const> names) {
    Type type = of_kind(Kind::enumeration, "Enumeration");
    type.enumerators = names;
    return type;
}

Type flags(std::uint32_t count) {
    Type type = of_kind(Kind::flags);
    type.flag_count = count;
    return type;
}

Type of_element(Kind kind, Type const& element) {
    Type type = of_kind(kind);
    type.element = &element;
    return type;
}

Type set_of(Type const& element, bool hashed) {
    Type type = of_element(Kind::set, element);
    type.hashed = hashed;
    return type;
}

std::string digest_of(Type const& type) { return wire_digest({"R", &type}); }

TEST(WireDigest, ChangesWithTheOrderAndNumberOfFields) {
    std::array const two{Part{"a", &number}, Part{"b", &text}};
    std::array const turned{Part{"b", &text}, Part{"a", &number}};
    std::array const three{Part{"a", &number}, Part{"b", &text}, Part{"c", &number}};
    std::array const renamed{Part{"a", &number}, Part{"c", &text}};
    std::array const retyped{Part{"a", &number}, Part{"b", &number}};
    EXPECT_EQ(digest_of(record(two)), digest_of(record(two)));
    EXPECT_NE(digest_of(record(two)), digest_of(record(turned)));
    EXPECT_NE(digest_of(record(two)), digest_of(record(three)));
    EXPECT_NE(digest_of(record(two)), digest_of(record(renamed)));
    EXPECT_NE(digest_of(record(two)), digest_of(record(retyped)));
}

TEST(WireDigest, ChangesWithArmsPayloadsAndTheCatchAll) {
    std::array const  two{Arm{"A", nullptr}, Arm{"C", &number}};
    std::array const  three{Arm{"A", nullptr}, Arm{"B", nullptr}, Arm{"C", &number}};
    std::array const  changed{Arm{"A", nullptr}, Arm{"C", &text}};
    std::array const  bare{Arm{"A", nullptr}, Arm{"C", nullptr}};
    std::string const before = digest_of(variant(two));
    EXPECT_NE(before, digest_of(variant(three)));
    EXPECT_NE(before, digest_of(variant(changed)));
    EXPECT_NE(before, digest_of(variant(bare)));
    EXPECT_NE(before, digest_of(variant(two, true)));
}

TEST(WireDigest, ChangesWithEnumeratorsAndFlags) {
    constexpr std::array<std::string_view, 2> two{"A", "B"};
    constexpr std::array<std::string_view, 3> three{"A", "B", "C"};
    EXPECT_NE(digest_of(enumeration(two)), digest_of(enumeration(three)));
    EXPECT_NE(digest_of(flags(4)), digest_of(flags(5)));
}

TEST(WireDigest, ChangesDeepInside) {
    std::array const one{Part{"a", &number}};
    std::array const other{Part{"a", &text}};
    Type const       inner = record(one);
    Type const       changed = record(other);
    std::array const outer{Arm{"A", &inner}};
    std::array const outer_changed{Arm{"A", &changed}};
    Type const       first = variant(outer);
    Type const       second = variant(outer_changed);
    EXPECT_NE(digest_of(set_of(first, true)), digest_of(set_of(second, true)));
}

TEST(WireDigest, StaysForAnotherClassName) {
    std::array const parts{Part{"a", &number}};
    Type             renamed = record(parts);
    renamed.name = "Other";
    EXPECT_EQ(digest_of(record(parts)), digest_of(renamed));
    renamed.kind = Kind::group;
    EXPECT_EQ(digest_of(record(parts)), digest_of(renamed));
}

TEST(WireDigest, StaysForHowAReaderHoldsAValue) {
    EXPECT_EQ(digest_of(set_of(number, true)), digest_of(set_of(number, false)));
    EXPECT_EQ(digest_of(of_element(Kind::boxed, number)), digest_of(number));
    Type map = of_element(Kind::map, number);
    map.key = &text;
    auto const before = digest_of(map);
    map.last_wins = true;
    EXPECT_EQ(digest_of(map), before);
}

TEST(WireDigest, OfATypeThatHoldsItselfEndsAndStaysForAnotherName) {
    struct Chain {
        explicit Chain(std::string_view name)
            : parts{Part{"value", &number}, Part{"next", &next}},
              next(of_element(Kind::optional, self)),
              self(record(parts, name)) {}
        std::array<Part, 2> parts;
        Type                next;
        Type                self;
    };
    Chain const chain("Chain");
    Chain const renamed("Other");
    EXPECT_EQ(digest_of(chain.self), digest_of(renamed.self));
    std::array const flat{Part{"value", &number}, Part{"next", &number}};
    EXPECT_NE(digest_of(chain.self), digest_of(record(flat)));
}

}  // namespace

#include "sarif/run_lists.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using bradep::sarif::RunLists;
namespace json = boost::json;

// Index 0 may be the taxonomy's or the extension's.
std::string name_of_component(char const* reference) {
    json::value const run = json::parse(R"({
        "tool": {"driver": {"name": "driver"},
                 "extensions": [{"name": "extension", "guid": "e"}]},
        "taxonomies": [{"name": "taxonomy", "guid": "t"}]})");
    json::value const given = json::parse(reference);
    auto const* const component = RunLists(run).component(&given);
    return component ? std::string(component->at("name").as_string()) : "none";
}

TEST(RunLists, AnIndexIsATaxonomysUnlessTheNameIsAnExtensions) {
    EXPECT_EQ(name_of_component(R"({"index": 0})"), "taxonomy");
    EXPECT_EQ(name_of_component(R"({"index": 0, "name": "taxonomy"})"), "taxonomy");
    EXPECT_EQ(name_of_component(R"({"index": 0, "name": "extension"})"), "extension");
    EXPECT_EQ(name_of_component(R"({"index": 1})"), "none");
}

TEST(RunLists, AKnownGuidDecidesAlone) {
    EXPECT_EQ(name_of_component(R"({"index": 0, "guid": "e"})"), "extension");
    EXPECT_EQ(name_of_component(R"({"index": 0, "name": "taxonomy", "guid": "e"})"), "extension");
    EXPECT_EQ(name_of_component(R"({"index": 0, "guid": "unknown"})"), "taxonomy");
    EXPECT_EQ(name_of_component(R"({"name": "extension", "guid": "unknown"})"), "extension");
}

}  // namespace

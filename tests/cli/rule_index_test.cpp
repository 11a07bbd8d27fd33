#include "sarif/rule_index.hpp"

#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

namespace json = boost::json;
using bradep::sarif::RuleIndex;

struct Known {
    std::string id;
    std::size_t component;
    json::value descriptor;
};

/// The index under test and a plain implementation to compare it with.
class Both {
public:
    explicit Both(std::vector<Known> const& rules) : rules_(rules) {
        for (Known const& rule : rules_) index_.add(rule.id, rule.component, rule.descriptor);
    }

    json::value const* find_in(std::size_t component, std::string prefix) const {
        for (;;) {
            for (Known const& rule : rules_)
                if (rule.component == component && rule.id == prefix) return &rule.descriptor;
            auto const slash = prefix.rfind('/');
            if (slash == std::string::npos) return nullptr;
            prefix.resize(slash);
        }
    }

    RuleIndex::Rule find_from(std::size_t first, std::string const& id) const {
        for (std::size_t component = first; component < components; ++component)
            if (auto const* found = find_in(component, id)) return {found, component};
        return {};
    }

    void expect_agreement(std::string const& id) const {
        for (std::size_t component = 0; component < components; ++component) {
            EXPECT_EQ(index_.find_in(component, id).descriptor, find_in(component, id)) << id;
            auto const wanted = find_from(component, id);
            auto const found = index_.find_from(component, id);
            EXPECT_EQ(found.descriptor, wanted.descriptor) << id;
            if (wanted.descriptor) {
                EXPECT_EQ(found.component, wanted.component) << id;
            }
        }
    }

    static constexpr std::size_t components = 4;

private:
    std::vector<Known> const& rules_;
    RuleIndex                 index_;
};

TEST(RuleIndex, LongestIdOfTheFirstComponentThatHasAnyIsFound) {
    std::vector<Known> const rules = {{"a/b/c", 3, 0}, {"a", 1, 0},    {"a/b", 1, 0}, {"", 2, 0},
                                      {"/", 2, 0},     {"a//b", 1, 0}, {"a/b", 1, 0}, {"x/", 0, 0}};
    Both const               both(rules);
    RuleIndex                index;
    for (Known const& rule : rules) index.add(rule.id, rule.component, rule.descriptor);
    EXPECT_EQ(index.find_from(1, "a/b/c/d").descriptor, &rules[2].descriptor);
    EXPECT_EQ(index.find_from(2, "a/b/c/d").descriptor, &rules[0].descriptor);
    EXPECT_EQ(index.find_from(1, "/a").descriptor, &rules[3].descriptor);
    EXPECT_EQ(index.find_from(1, "b").descriptor, nullptr);
    EXPECT_EQ(index.find_in(1, "a/").descriptor, &rules[1].descriptor);
    for (char const* const id : {"", "/", "//", "a", "a/", "a//b", "a//b/", "a/b/c", "a/b/c/d",
                                 "a/bc", "ab", "b", "x", "x/", "x//", "/a"})
        both.expect_agreement(id);
}

TEST(RuleIndex, AgreesWithLookingThroughAllRules) {
    std::uint64_t const seed = runs::seed();
    std::mt19937_64     random(seed);
    auto const          below = [&](std::size_t end) { return random() % end; };
    auto const          some_id = [&] {
        std::string id;
        for (auto left = below(7); left > 0; --left) id += "ab/"[below(3)];
        return id;
    };
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::vector<Known> rules;
        for (auto left = below(20); left > 0; --left)
            rules.push_back({some_id(), below(Both::components), json::value(0)});
        Both const both(rules);
        for (int i = 0; i < 20; ++i) both.expect_agreement(some_id());
    }
}

}  // namespace

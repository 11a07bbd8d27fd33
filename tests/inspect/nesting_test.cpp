// Values of recursive types, nested as deeply as the default limit allows. A stack of 8 MB is
// enough for the real readers, copies, comparisons and destructors of these, and for walks as deep
// as any limit can be set.

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/inspect/wire/writer.hpp>
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/small_stack.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <vector>

namespace {

using namespace sml::inspect;

/// One step from a type to a type that it holds.
struct Way {
    Type const*  to;
    std::int32_t index;  ///< of the part or arm; 0 for an element, 1 for a key
};

std::vector<Way> ways_from(Type const& type) {
    std::vector<Way> ways;
    if (type.element != nullptr) ways.push_back({type.element, 0});
    if (type.key != nullptr) ways.push_back({type.key, 1});
    for (std::int32_t index = 0; Part const& part : type.parts)
        ways.push_back({part.type, index++});
    if (type.kind == Kind::variant)
        for (std::int32_t index = 0; Arm const& arm : type.arms) {
            if (arm.payload != nullptr) ways.push_back({arm.payload, index});
            ++index;
        }
    return ways;
}

/// The shortest chain of steps from one type to another, with at least one step; empty if there is
/// none.
std::vector<Way> shortest(Type const& from, Type const& to) {
    std::map<Type const*, std::vector<Way>> known;
    std::vector<Type const*>                edge{&from};
    for (std::size_t i = 0; i < edge.size(); ++i) {
        std::vector<Way> const so_far = known[edge[i]];
        for (Way const& way : ways_from(*edge[i])) {
            std::vector<Way> longer = so_far;
            longer.push_back(way);
            if (way.to == &to) return longer;
            if (way.to != &from && known.emplace(way.to, longer).second) edge.push_back(way.to);
        }
    }
    return {};
}

/// Writes the smallest value of a type that follows a chain of steps. At its end and beside it,
/// variants have the tag with the smallest payload.
class ChainWriter {
public:
    explicit ChainWriter(std::vector<Way> const& ways) : ways_(ways) {}

    std::string bytes;

    void write(Type const& type) { value(type, true); }

private:
    void value(Type const& type, bool on_chain) {
        bool const goes_on = on_chain && at_ < ways_.size();
        Way const  way = goes_on ? ways_[at_++] : Way{nullptr, -1};
        switch (type.kind) {
            case Kind::flag: return writer_.flag(false);
            case Kind::flags: bytes.append(type.flag_count, 'F'); return;
            case Kind::number: return writer_.block("0.000000");
            case Kind::big_integer: return writer_.big_integer("0");
            case Kind::ieee_float: return writer_.ieee_float("0X0P+0", 64);
            case Kind::text: return writer_.block("");
            case Kind::string: return writer_.string("s", id_);
            case Kind::boxed: return value(*type.element, goes_on);
            case Kind::optional:
                writer_.flag(goes_on);
                if (goes_on) value(*type.element, true);
                return;
            case Kind::list:
            case Kind::set:
            case Kind::map: return container(type, way);
            case Kind::variant: return variant(type, way);
            case Kind::record:
            case Kind::group:
            case Kind::tuple:
                for (std::int32_t index = 0; Part const& part : type.parts)
                    value(*part.type, index++ == way.index);
                return;
            default: bytes.append(type.least_size, '\0');
        }
    }

    void container(Type const& type, Way const& way) {
        writer_.word(way.to != nullptr ? 1 : 0);
        if (way.to == nullptr) return;
        if (type.key != nullptr) value(*type.key, way.index == 1);
        value(*type.element, way.index == 0);
    }

    void variant(Type const& type, Way const& way) {
        std::int32_t const tag = way.to != nullptr ? way.index : least_tag(type);
        writer_.word(tag);
        Type const* const payload = type.arms[static_cast<std::size_t>(tag)].payload;
        if (payload != nullptr) value(*payload, way.to != nullptr);
    }

    /// The first arm without payload; else the first that does not lead back to the type.
    static std::int32_t least_tag(Type const& type) {
        auto const bare = std::ranges::find(type.arms, nullptr, &Arm::payload);
        if (bare != type.arms.end()) return static_cast<std::int32_t>(bare - type.arms.begin());
        auto const flat = std::ranges::find_if(
            type.arms, [&](Arm const& arm) { return shortest(*arm.payload, type).empty(); });
        return static_cast<std::int32_t>(flat - type.arms.begin());
    }

    Writer<std::string>     writer_{bytes};
    std::vector<Way> const& ways_;
    std::size_t             at_ = 0;
    std::int32_t            id_ = 0;  // of the only string
};

/// All recursive types that have a name.
std::set<Type const*> recursive_types() {
    std::set<Type const*>    found;
    std::set<Type const*>    met;
    std::vector<Type const*> to_do;
    for (Root const& root : roots()) to_do.push_back(root.type);
    while (!to_do.empty()) {
        Type const& type = *to_do.back();
        to_do.pop_back();
        if (!met.insert(&type).second) continue;
        if (!type.name.empty() && !shortest(type, type).empty()) found.insert(&type);
        for (Way const& way : ways_from(type)) to_do.push_back(way.to);
    }
    return found;
}

/// A chain of steps from a type to itself, and the steps from a root to the type.
struct Loop {
    Root const*      root;
    Type const*      type;
    std::vector<Way> before;
    std::vector<Way> around;

    std::string bytes(std::size_t rounds) const {
        std::vector<Way> ways = before;
        for (std::size_t i = 0; i < rounds; ++i)
            ways.insert(ways.end(), around.begin(), around.end());
        ChainWriter writer(ways);
        writer.write(*root->type);
        return writer.bytes;
    }

    std::string name() const {
        std::string name = std::string(root->stem) + ": " + std::string(type->name);
        if (!type->arms.empty())
            name += " by " +
                    std::string(type->arms[static_cast<std::size_t>(around.front().index)].name);
        return name;
    }
};

/// All loops of each recursive type, in the first root that reaches it.
std::vector<Loop> loops() {
    std::vector<Loop> all;
    for (Type const* const type : recursive_types()) {
        Root const* root = nullptr;
        for (Root const& other : roots())
            if (root == nullptr && !shortest(*other.type, *type).empty()) root = &other;
        for (Way const& way : ways_from(*type)) {
            std::vector<Way>       around{way};
            std::vector<Way> const back =
                way.to == type ? std::vector<Way>{} : shortest(*way.to, *type);
            if (way.to != type && back.empty()) continue;
            around.insert(around.end(), back.begin(), back.end());
            all.push_back({root, type, shortest(*root->type, *type), around});
        }
    }
    return all;
}

Answer answer_at(Loop const& loop, std::size_t rounds, Limits const& limits = {}) {
    return verify(*loop.root, loop.bytes(rounds), {.limits = limits}).answer;
}

/// The number of rounds of the loop that the limits allow.
std::size_t most_rounds(Loop const& loop, Limits const& limits = {}) {
    std::size_t rounds = 0;
    while (rounds < limits.depth && answer_at(loop, rounds + 1, limits) != Answer::unsafe) ++rounds;
    return rounds;
}

TEST(Nesting, TheTypesThatHoldTheirOwnKind) {
    std::set<std::string> names;
    for (Type const* const type : recursive_types()) names.emplace(type->name);
    EXPECT_EQ(names, (std::set<std::string>{"sml::Events::T_Event_Kind",
                                            "sml::Events::T_Event_Kind::SECURITY_EVENT_args",
                                            "sml::IL::T_Info_Expr"}));
}

TEST(Nesting, TheDepthLimitIsExact) {
    for (Loop const& loop : loops()) {
        SCOPED_TRACE(loop.name());
        Limits limits;
        limits.depth = 1;
        while (answer_at(loop, 3, limits) == Answer::unsafe && limits.depth < 100) ++limits.depth;
        std::uint32_t const depth = limits.depth;
        limits.depth = depth - 1;
        auto const verdict = verify(*loop.root, loop.bytes(3), {.limits = limits});
        ASSERT_EQ(verdict.answer, Answer::unsafe);
        EXPECT_EQ(verdict.findings.back().expected,
                  "at most " + std::to_string(depth - 1) + " levels of variants and containers");
    }
}

constexpr std::size_t stack = std::size_t{8} << 20;

TEST(Nesting, ReadersBearTheDefaultLimitOnEightMegabytes) {
    for (Loop const& loop : loops()) {
        SCOPED_TRACE(loop.name());
        std::size_t const rounds = most_rounds(loop);
        ASSERT_GT(rounds, 50u);
        auto const deeper = verify(*loop.root, loop.bytes(rounds + 1));
        ASSERT_EQ(deeper.answer, Answer::unsafe);
        EXPECT_EQ(deeper.findings.back().found, "one more");
        std::string const bytes = loop.bytes(rounds);
        bool const        is_good = verify(*loop.root, bytes).answer == Answer::good;
        std::string       fault = "not run";
        run_on_stack(stack,
                     [&] { fault = real_root(*loop.root).fault_of_reading(bytes, is_good); });
        EXPECT_EQ(fault, "");
        std::cout << loop.name() << ": " << rounds << " rounds, " << bytes.size() << " bytes\n";
    }
}

TEST(Nesting, NoLimitIsLargerThanTheLargest) {
    Loop const        loop = loops().front();
    std::string const bytes = loop.bytes(most_rounds(loop, {.depth = Limits::depth_cap}) + 1);
    Verdict const     verdict = verify(*loop.root, bytes, {.limits = {.depth = ~std::uint32_t{0}}});
    EXPECT_EQ(verdict.answer, Answer::unsafe);
}

TEST(Nesting, WalksBearTheLargestLimitOnEightMegabytes) {
    Limits const limits{.depth = Limits::depth_cap};
    for (Loop const& loop : loops()) {
        SCOPED_TRACE(loop.name());
        std::string const bytes = loop.bytes(most_rounds(loop, limits));
        bool const is_good = verify(*loop.root, bytes, {.limits = limits}).answer == Answer::good;
        run_on_stack(stack, [&] {
            std::ostringstream json;
            EXPECT_NE(dump(*loop.root, bytes, json, {.walk = {.limits = limits}}).answer,
                      Answer::unsafe);
            std::ostringstream again;
            EXPECT_FALSE(encode(json.view(), again, {.limits = limits}).error);
            EXPECT_TRUE(!is_good || again.view() == bytes);
            std::ostringstream canonical;
            write_canonical(*loop.root, bytes, canonical, {.limits = limits});
            EXPECT_EQ(canonical.view().size(), bytes.size());
        });
    }
}

}  // namespace

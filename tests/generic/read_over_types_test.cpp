// Every class that has a wire form, as the value of a map that is read over: the value computed
// from the bytes alone must be the one that the reader reads.
//
// BRADEP_SEED sets the seed. With BRADEP_SLOW_TESTS, more values are tried.

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/inspect/read_over.hpp>
#include "tests/all_types.hpp"
#include "tests/generic/row.hpp"
#include "tests/runs.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <random>
#include <sstream>

namespace {

using generic::Row;
using sml::inspect::Answer;
using sml::inspect::Budget;
using sml::inspect::bytes_kept;
using sml::inspect::describe;
using sml::inspect::Root;
using sml::inspect::Type;
using sml::inspect::verify;
using sml::inspect::VerifyOptions;
using Random = std::mt19937_64;

VerifyOptions const bounded{.limits = {.memory = std::uint64_t{1} << 22}};

struct Tally {
    int tried = 0;
    int compared = 0;
};

std::string canonical(Root const& root, std::string const& bytes) {
    std::ostringstream out;
    write_canonical(root, bytes, out);
    return out.str();
}

/// A value of the class that is tested at the moment. As a class of its own, it lets one map type
/// hold values of any of them.
class Tested : public generic::Value {
public:
    static inline Row const* row = nullptr;

    Tested() : Value(*row) {}
};

using Map = sml::core::LastWinsMap<std::int32_t, Tested>;

/// The descriptor of a `Map` of the class that `element` describes.
Type describe_map(Type const& element) {
    Type type = *describe<sml::core::LastWinsMap<std::int32_t, std::int32_t>>();
    type.element = &element;
    type.entry_size += element.object_size;
    type.node_heap += element.object_size;
    return type;
}

void compare(Root const& root, std::string const& bytes, Tally& tally) {
    ++tally.tried;
    if (verify(root, bytes, bounded).answer == Answer::unsafe) return;
    ++tally.compared;
    Budget            budget(bounded.limits.own_memory);
    std::string const kept(bytes_kept(root, bytes, bounded, budget));
    Map               read;
    wire::read_over(read, bytes);
    ASSERT_EQ(hex::shown(canonical(root, kept)), hex::shown(canonical(root, wire::write(read))))
        << root.stem << ": " << hex::shown(bytes);
}

void edit_word(std::string& bytes, Random& random) {
    std::int32_t word = static_cast<std::int32_t>(random() % 8) - 2;
    if (bytes.size() < sizeof word) return;
    std::size_t const places = bytes.size() - sizeof word + 1;
    if (random() % 2 == 0) std::memcpy(&word, bytes.data() + random() % places, sizeof word);
    std::memcpy(bytes.data() + random() % places, &word, sizeof word);
}

/// A list of pairs has the same wire form as a map, and can repeat a key.
void compare_random(Row const& row, Type const& type, Random& random, Tally& tally) {
    Tested::row = &row;
    Type const map = describe_map(type);
    Root const root{row.name, &map};
    for (int i = runs::count(40, 1000); i > 0; --i) {
        RandomValues                               values(random(), {.elements = 2, .depth = 3});
        std::list<std::pair<std::int32_t, Tested>> entries;
        for (int left = 2 + values.below(3); left > 0; --left) {
            auto& [key, value] = entries.emplace_back();
            key = values.below(2);
            value.fill(values);
        }
        std::string const bytes = wire::write(entries);
        ASSERT_NO_FATAL_FAILURE(compare(root, bytes, tally));
        for (int left = 12; left > 0; --left) {
            std::string edited = bytes;
            for (auto edits = 1 + random() % 3; edits > 0; --edits) edit_word(edited, random);
            ASSERT_NO_FATAL_FAILURE(compare(root, edited, tally));
        }
    }
}

TEST(ReadOverType, EveryClassIsKeptAsTheReaderKeepsIt) {
    Random random(runs::seed());
    Tally  tally;
#define COMPARE(Name)                                                                 \
    compare_random(generic::row_named(#Name), *describe<sml::Name>(), random, tally); \
    if (HasFatalFailure()) return;
    ALL_TYPES(COMPARE)
#undef COMPARE
    std::cout << tally.tried << " tried, " << tally.compared << " compared\n";
    EXPECT_GT(tally.compared, tally.tried / 10);
}

}  // namespace

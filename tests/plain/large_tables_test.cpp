// Compares maps of many large entries and repeated keys with the reference implementation.

#include <sml/bindings/bindings.hpp>
#include "tests/plain/archived.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>
#include <sstream>
#include <unordered_map>
#include <vector>

namespace {

using namespace plain_test;
using Engine = std::mt19937_64;
using sml::Strings_T;

/// The bytes of a map with `count` entries and at most 200 different keys.
template <class Table>
std::string bytes_of_entries(int count, Engine& engine) {
    using Key = typename Table::key_type;
    using Value = typename Table::mapped_type;
    RandomValues     random(engine(), {2, 2});
    std::vector<Key> keys;
    for (int i = 0; i < 200; ++i) keys.push_back(random.make<Key>());
    std::list<std::pair<Key, Value>> entries;  // has the same form
    for (int i = 0; i < count; ++i)
        entries.emplace_back(keys[engine() % keys.size()], random.make<Value>());
    return plainly_written(entries);
}

/// Expects that both read the same values in the same order, which is visible in the bytes written.
template <class Table>
void expect_read_alike(Engine& engine) {
    for (int const entries : {60, 63, 64, 65, 100, 300}) {
        std::string const bytes = bytes_of_entries<Table>(entries, engine);
        Table             expected;
        plain::to_cxx(expected, bytes.data());

        Table from_bytes;
        EXPECT_EQ(wire::read_over(from_bytes, bytes), bytes.size());
        EXPECT_TRUE(plainly_written(from_bytes) == plainly_written(expected)) << entries;
        EXPECT_EQ(from_bytes.bucket_count(), expected.bucket_count());

        std::istringstream stream(bytes + "behind");
        Table              from_stream;
        sml::core::read_from_stream(from_stream, stream);
        EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
        EXPECT_TRUE(plainly_written(from_stream) == plainly_written(expected)) << entries;
        EXPECT_EQ(from_stream.bucket_count(), expected.bucket_count());
    }
}

TEST(PlainLargeTables, AreReadAlike) {
    using NumberedName = std::pair<Strings_T, std::int32_t>;
    Engine engine(runs::seed());
    for (int i = runs::count(3, 100); i > 0 && !HasFailure(); --i) {
        expect_read_alike<
            std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data>>(
            engine);
        expect_read_alike<std::unordered_map<Strings_T, sml::Functions::T_A_Function>>(engine);
        expect_read_alike<sml::core::HashedMap<NumberedName, sml::Checks::T_A_Check>>(engine);
        expect_read_alike<sml::core::HashedMap<NumberedName, sml::Infos::T_An_Info>>(engine);
        expect_read_alike<sml::core::HashedMap<NumberedName, sml::Events::T_An_Event>>(engine);
    }
}

}  // namespace

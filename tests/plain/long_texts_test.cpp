// Compares texts around the sizes of the writers' buffer and chunks with the reference
// implementation.

#include <sml/bindings/bindings.hpp>
#include "tests/plain/archived.hpp"
#include "tests/plain/caller_streams.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace plain_test;
using Engine = std::mt19937_64;
using sml::Strings_T;
using sml::core::room_ahead;

constexpr std::size_t stream_buffer = 8 * room_ahead;
constexpr std::size_t first_chunk = sml::StringOArchive::smallest_chunk;
constexpr std::size_t largest_chunk = sml::StringOArchive::largest_chunk;
constexpr std::size_t near = 20;

/// A text in which each position is recognisable. Each call returns another text.
std::string text(std::size_t size) {
    static std::string const numbers = [] {
        std::string all;
        for (int i = 0; all.size() < 3 * largest_chunk; ++i) all += std::to_string(i);
        return all;
    }();
    static std::size_t start = 0;
    start = (start + 7919) % largest_chunk;
    return numbers.substr(start, size);
}

/// After the last text come as many bytes as may follow without another request for room.
using ThreeTexts = std::tuple<std::string, std::string, std::string,
                              std::array<bool, room_ahead - 20>, std::int32_t>;

/// Three texts: the last one has `size` bytes and ends at offset `end`.
ThreeTexts three_texts(std::size_t end, std::size_t size) {
    std::size_t const before = end - size - 3 * sizeof(std::int32_t);
    ThreeTexts        value{text(before / 2), text(before - before / 2), text(size), {}, 12345};
    for (std::size_t i = 0; bool& flag : std::get<3>(value)) flag = ++i % 3 == 0;
    return value;
}

/// Offsets around the end of a block of memory, around the point where room runs short, and some in
/// between.
std::vector<std::size_t> ends_within(std::size_t block) {
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i <= room_ahead + 2 * near; ++i)
        if (i <= 2 * near || i >= room_ahead || i % 61 == 0) result.push_back(block + near - i);
    return result;
}

TEST(LongTexts, EndAnywhereInTheStreamsBuffer) {
    for (std::size_t const size : {room_ahead, 2 * room_ahead, stream_buffer / 2}) {
        for (std::size_t const end : ends_within(stream_buffer)) {
            ThreeTexts const value = three_texts(end, size);
            BlockTaker       ours(no_end, false);
            BlockTaker       expected(no_end, false);
            ASSERT_TRUE(written(archiving(value), ours, 0) ==
                        written(plainly_writing(value), expected, 0))
                << "size " << size << " end " << end;
        }
    }
}

TEST(LongTexts, EndAnywhereInTheFirstChunk) {
    for (std::size_t const size : {room_ahead, 2 * room_ahead}) {
        for (std::size_t const end : ends_within(first_chunk)) {
            ThreeTexts const value = three_texts(end, size);
            ASSERT_TRUE(wire::write(value) == plainly_written(value))
                << "size " << size << " end " << end;
        }
    }
}

TEST(LongTexts, EndAnywhereInTheBytesThatAreWrittenOver) {
    for (std::size_t const held : {3 * room_ahead + 1, 12 * room_ahead + 77}) {
        for (std::size_t const end : ends_within(held)) {
            ThreeTexts const value = three_texts(end, room_ahead);
            ASSERT_TRUE(wire::write(value, std::string(held, '*')) == plainly_written(value))
                << "held " << held << " end " << end;
        }
    }
}

TEST(LongTexts, EndNearTheEndOfTheLargestChunk) {
    std::string const before = text(largest_chunk);  // has a chunk of its own
    for (std::size_t const from_end :
         {0ul, 1ul, 5ul, 100ul, 2000ul, room_ahead - 1, room_ahead, room_ahead + 1}) {
        auto const value = std::pair(before, three_texts(largest_chunk - from_end, 2 * room_ahead));
        ASSERT_TRUE(wire::write(value) == plainly_written(value)) << "from the end " << from_end;
    }
}

/// Writes to a string that already has bytes, and to sinks that take everything, refuse and throw.
template <class T>
void expect_written_alike(T const& value, Engine& engine) {
    std::string const expected = plainly_written(value);
    std::size_t const held =
        engine() % 2 == 0 ? engine() % 70'000 : expected.size() - engine() % (expected.size() + 1);
    ASSERT_TRUE(wire::write(value, std::string(held, '*')) == expected) << "held " << held;
    std::size_t const ends[] = {no_end, engine() % (expected.size() + 2),
                                expected.size() - engine() % std::min(expected.size(), 5000ul)};
    for (std::size_t const end : ends) {
        bool const          throws = engine() % 2 == 0;
        std::uint64_t const choice = engine();
        BlockTaker          our_taker(end, throws);
        BlockTaker          plain_taker(end, throws);
        ASSERT_TRUE(written(archiving(value), our_taker, choice) ==
                    written(plainly_writing(value), plain_taker, choice))
            << "end " << end << " throws " << throws << " setting " << choice % 8;
    }
}

using TextsAmongOthers = std::tuple<std::int32_t, std::string, bool, std::string,
                                    std::array<bool, 30>, std::optional<std::string>, bool>;

TEST(LongTexts, OfTheSizesOfBufferAndChunksAreWrittenAlike) {
    Engine engine(runs::seed());
    for (std::size_t const size : {0ul, room_ahead, 2 * room_ahead, 4 * room_ahead, 7 * room_ahead,
                                   8 * room_ahead, 16 * room_ahead}) {
        for (std::size_t i = size < near ? near : 0; i <= 2 * near; ++i) {
            for (int left = runs::count(2, 50); left > 0; --left) {
                std::size_t const befores[] = {0, engine() % room_ahead, engine() % stream_buffer,
                                               7 * room_ahead - engine() % (2 * near)};
                std::size_t const before = befores[engine() % 4];
                TextsAmongOthers  value{7, text(before), true, text(size + i - near), {}, {}, true};
                if (engine() % 2 == 0) std::get<5>(value) = text(size + near - i);
                expect_written_alike(value, engine);
                if (HasFailure()) FAIL() << "size " << size + i - near << " before " << before;
            }
        }
    }
}

TEST(LongTexts, OfTheSizeOfTheLargestChunkAreWrittenAlike) {
    Engine     engine(runs::seed() + 1);
    auto const step = static_cast<std::size_t>(runs::count(4, 1));
    for (std::size_t i = 0; i <= 2 * near && !HasFailure(); i += step) {
        TextsAmongOthers const value{
            7, text(i * 1000), true, text(largest_chunk - room_ahead + i - near), {}, "more", true};
        expect_written_alike(value, engine);
    }
}

/// A size: mostly small, else around the sizes of the buffers.
std::size_t any_size(Engine& engine) {
    std::size_t const units[] = {0, 1, 2, 3, 4, 6, 7, 8, 12, 16};
    switch (engine() % 8) {
        case 0: return units[engine() % 10] * room_ahead + engine() % near;
        case 1: return units[1 + engine() % 9] * room_ahead - engine() % near;
        case 2: return engine() % stream_buffer;
        default: return engine() % 300;
    }
}

using AllThatIsText =
    std::tuple<bool, std::string, std::optional<sml::BigInteger>, Strings_T, std::list<std::string>,
               std::int32_t, zelvanite::IEEE754Float, double>;

AllThatIsText all_that_is_text(Engine& engine) {
    AllThatIsText value;
    std::get<0>(value) = engine() % 2 == 0;
    std::get<1>(value) = text(any_size(engine));
    if (engine() % 2 == 0) {
        sml::BigInteger digits = engine() + 1;
        digits <<= static_cast<unsigned>(4 * any_size(engine));
        std::get<2>(value) = engine() % 2 == 0 ? digits : -digits;
    }
    std::get<3>(value) = engine() % 3 == 0 ? "name" : text(any_size(engine));
    for (auto left = engine() % 4; left > 0; --left)
        std::get<4>(value).push_back(text(any_size(engine)));
    RandomValues(engine()).fill(std::get<6>(value));
    std::get<7>(value) = engine() % 2 == 0 ? 1e300 : 0.5;
    return value;
}

TEST(LongTexts, FollowOneAnother) {
    Engine engine(runs::seed() + 2);
    for (int i = runs::count(300, 20'000); i > 0 && !HasFailure(); --i) {
        std::list<AllThatIsText> value;
        for (auto left = engine() % 12; left > 0; --left) value.push_back(all_that_is_text(engine));
        expect_written_alike(value, engine);
    }
}

template <class T>
void expect_root_written_alike(T const& value, std::string const& (*from_cxx)(T const&),
                               void (*to_stream)(T const&, std::ostream&), Engine& engine) {
    std::string const expected = plain::from_cxx(value);
    ASSERT_TRUE(from_cxx(value) == expected);
    std::size_t const   end = engine() % 3 == 0 ? no_end : engine() % (expected.size() + 2);
    bool const          throws = engine() % 2 == 0;
    std::uint64_t const choice = engine();
    BlockTaker          our_taker(end, throws);
    BlockTaker          plain_taker(end, throws);
    ASSERT_TRUE(written([&](std::ostream& stream) { to_stream(value, stream); }, our_taker,
                        choice) == written(plainly_writing(value), plain_taker, choice))
        << "end " << end << " throws " << throws << " setting " << choice % 8;
}

TEST(LongTexts, InMapsOfTextsAreWrittenAlike) {
    Engine engine(runs::seed() + 3);
    for (int i = runs::count(300, 20'000); i > 0 && !HasFailure(); --i) {
        std::unordered_map<Strings_T, std::unordered_set<Strings_T>> value;
        for (auto left = 1 + engine() % 6; left > 0; --left) {
            auto& texts = value[text(any_size(engine))];
            for (auto more = engine() % 4; more > 0; --more) texts.insert(text(any_size(engine)));
        }
        expect_root_written_alike(value, sml::String_To_StringSet_T_fromCxx,
                                  sml::String_To_StringSet_T_toStream, engine);
    }
}

TEST(LongTexts, InChecksAreWrittenAlike) {
    using Check = sml::Base_Gui_Internal_Form_Datas::T_Chk_Data;
    Engine engine(runs::seed() + 4);
    for (int i = runs::count(200, 20'000); i > 0 && !HasFailure(); --i) {
        std::list<std::pair<std::int32_t, Check>> value;
        for (auto left = 1 + engine() % 4; left > 0; --left) {
            auto& check =
                value.emplace_back(5, RandomValues(engine(), {2, 3}).make<Check>()).second;
            check.first_optional_name = text(any_size(engine));
            check.second_numbered_name = std::pair(Strings_T(text(any_size(engine))), 3);
            check.name = text(any_size(engine));
        }
        expect_root_written_alike(
            value, sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_fromCxx,
            sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_toStream, engine);
    }
}

/// A part whose writing throws, which ends the writing of the value around it.
struct Stop {
    bool is_due = false;

    static char const* field_names() noexcept { return "is_due"; }
    template <class Use>
    decltype(auto) with_fields(Use&& use) const {
        if (is_due) throw std::runtime_error("stopped");
        return use(is_due);
    }
};

/// The bytes written before an exception that does not come from the stream have reached the
/// stream.
TEST(LongTexts, BeforeAnExceptionReachTheStream) {
    Engine engine(runs::seed() + 5);
    for (int i = runs::count(2000, 50'000); i > 0 && !HasFailure(); --i) {
        using Item = std::tuple<std::string, std::int32_t, bool, Stop>;
        std::list<Item> value;
        for (auto left = 1 + engine() % 8; left > 0; --left)
            value.emplace_back(text(any_size(engine)), 5, engine() % 2 == 0, Stop{left == 1});
        // A stream that does not throw; otherwise its own exception would come first.
        std::uint64_t const choice = engine() % 5;
        std::size_t const   end = engine() % 3 == 0 ? no_end : engine() % 60'000;
        bool const          throws = engine() % 2 == 0;
        BlockTaker          ours(end, throws);
        BlockTaker          expected(end, throws);
        EXPECT_TRUE(written(archiving(value), ours, choice) ==
                    written(plainly_writing(value), expected, choice))
            << "end " << end << " setting " << choice;
    }
}

}  // namespace

// Makes allocations fail, one after another, in the library and in the reference implementation.
//
// The two allocate at different places, so the n-th allocation of one does not correspond to that
// of the other. The tests compare the state after a failure: the state that the library leaves when
// any of its allocations fails must be one that the reference implementation leaves when one of its
// own fails, or has at some moment.

#include <sml/core/Strings.hpp>
#include <sml/core/ieee754_float.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>
#include "tests/allocations.hpp"
#include "tests/plain/outcome.hpp"
#include "tests/plain/roots.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <compare>
#include <map>
#include <new>
#include <random>
#include <set>
#include <sstream>
#include <streambuf>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <vector>

namespace {

using namespace plain_test;
using allocations::Later;
using allocations::Shortage;
using Engine = std::mt19937_64;

constexpr int few = 4;

/// Sets a known exponent range before each call.
void start_range() { zelvanite::IEEE754Float::set_range(zelvanite::IEEE754Float::Format::of(16)); }

/// Whether `call` fails with `granted` allocations. It must fail by `std::bad_alloc` itself.
template <class Call>
bool fails(long granted, Later later, Call&& call) {
    start_range();
    try {
        Shortage const shortage(granted, later);
        call();
        return false;
    } catch (std::exception const& error) {
        EXPECT_EQ(typeid(error).name(), typeid(std::bad_alloc).name());
        return true;
    }
}

/// The numbers of the allocations, out of `made`, that are to fail: all of them, or `most` of them.
std::vector<long> failing(long made, long most, Engine& engine) {
    std::vector<long> numbers;
    if (made <= most) {
        for (long number = 0; number < made; ++number) numbers.push_back(number);
    } else {
        for (long i = 1; i < most; ++i)
            numbers.push_back(static_cast<long>(engine() % static_cast<std::uint64_t>(made)));
        numbers.push_back(made - 1);
    }
    return numbers;
}

Later any_of_both(Engine& engine) { return engine() % 2 == 0 ? Later::fail : Later::succeed; }

/// The numbers of entries of the string table and of handles to them.
struct Strings {
    std::size_t   entries = sml::Strings_T::fAllStrings.size();
    std::uint64_t handles = [] {
        std::uint64_t sum = 0;
        for (auto const& entry : sml::Strings_T::fAllStrings) sum += entry.count;
        return sum;
    }();
    bool operator==(Strings const&) const = default;
};

/// Replaces some floats by spellings that no writer makes. Readers parse these from an allocated
/// block instead of digit by digit.
std::string with_odd_floats(std::string bytes, Engine& engine) {
    constexpr std::string_view odd[] = {"0x0p+0", "-0x1.8p+1", "inf", "-inf"};
    for (std::size_t at = bytes.find("0X"); at != std::string::npos;
         at = bytes.find("0X", at + 1)) {
        std::size_t const start = at > 0 && bytes[at - 1] == '-' ? at - 1 : at;
        if (start < 4 || engine() % 4 != 0) continue;
        std::int32_t size = 0;
        bytes.copy(reinterpret_cast<char*>(&size), sizeof size, start - sizeof size);
        std::size_t const point = bytes.find('P', at);
        if (size < 6 || size > 60 || point > start + static_cast<std::size_t>(size)) continue;
        std::string_view const text = odd[engine() % 4];
        auto const             new_size = static_cast<std::int32_t>(text.size());
        bytes.replace(start, static_cast<std::size_t>(size), text);
        bytes.replace(start - sizeof new_size, sizeof new_size,
                      reinterpret_cast<char const*>(&new_size), sizeof new_size);
        at = start + text.size();
    }
    return bytes;
}

Object random_value(Root const& root, int elements, Engine& engine) {
    std::string const bytes =
        with_odd_floats(root.plain_write(root.random(engine(), elements).get()), engine);
    Object value = root.make();
    root.plain_read(value.get(), bytes.data());
    return value;
}

// Writing.

/// A buffer that takes `most` bytes, then refuses. It records the exponent range at each byte; it
/// allocates only for that.
class Taker : public std::streambuf {
public:
    explicit Taker(std::size_t most, std::set<Range>* ranges = nullptr)
        : most_(most), ranges_(ranges) {}

protected:
    int_type overflow(int_type c) override {
        if (ranges_ != nullptr) ranges_->insert(Range());
        if (taken_ == most_) return traits_type::eof();
        ++taken_;
        return traits_type::not_eof(c);
    }

private:
    std::size_t      most_;
    std::size_t      taken_ = 0;
    std::set<Range>* ranges_;
};

using Write = void (*)(void const* value, std::ostream& stream);

/// All exponent ranges that are in force at some moment of writing.
std::set<Range> ranges_of_writing(Root const& root, void const* value) {
    start_range();
    std::set<Range> ranges{Range()};
    Taker           taker(~std::size_t{0}, &ranges);
    std::ostream    stream(&taker);
    root.plain_write_to(value, stream);
    ranges.insert(Range());
    return ranges;
}

/// The state of a stream that takes `most` bytes after a failing call has written to it.
std::ios::iostate state_after(Write write, void const* value, std::size_t most, long granted) {
    Taker        taker(most);
    std::ostream stream(&taker);
    EXPECT_TRUE(fails(granted, Later::fail, [&] { write(value, stream); }));
    return stream.rdstate();
}

/// The state of a stream that takes everything, and the exponent range, after a failing call.
struct Sent {
    std::size_t       size;
    std::ios::iostate state;
    Range             range;
    auto              operator<=>(Sent const&) const = default;
};

/// Whether the call fails. Expects that the bytes sent are the beginning of `bytes`.
bool fails_sending(Write write, void const* value, std::string const& bytes, long granted,
                   Later later, Sent& sent) {
    // The stream has room for everything, so that it never allocates.
    std::ostringstream stream(std::string(bytes.size(), ' '));
    bool const         has_failed = fails(granted, later, [&] { write(value, stream); });
    sent.range = Range();
    sent.state = stream.rdstate();
    sent.size =
        static_cast<std::size_t>(stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::out));
    EXPECT_TRUE(stream.view().substr(0, sent.size) == bytes.substr(0, sent.size));
    EXPECT_TRUE(has_failed || sent.size == bytes.size());
    return has_failed;
}

/// Also expects: if two writes fail after the same number of bytes, they leave a stream that takes
/// fewer bytes in the same state.
TEST(PlainAllocations, ThatFailInWritingToAStreamLeaveTheSame) {
    Engine engine(runs::seed());
    long   failures = 0;
    for (Root const& root : roots()) {
        for (int i = runs::count(4, 400); i > 0 && !HasFailure(); --i) {
            Object const                value = random_value(root, few, engine);
            std::string const           bytes = root.plain_write(value.get());
            Strings const               strings;
            std::set<Sent>              expected;
            std::map<std::size_t, long> granted_for;  // by the number of bytes sent
            Sent                        sent{};
            for (long granted = 0;
                 fails_sending(root.plain_write_to, value.get(), bytes, granted, Later::fail, sent);
                 ++granted) {
                expected.insert(sent);
                granted_for[sent.size] = granted;
                EXPECT_EQ(strings, Strings()) << root.stem;
            }
            for (long granted = 0; fails_sending(root.write_to, value.get(), bytes, granted,
                                                 any_of_both(engine), sent);
                 ++granted) {
                ++failures;
                EXPECT_TRUE(expected.contains(sent))
                    << root.stem << " allocation " << granted << " size " << sent.size << " state "
                    << sent.state << " range " << sent.range.least;
                EXPECT_EQ(strings, Strings()) << root.stem;
                std::size_t const most = engine() % (sent.size + 1);
                if (HasFailure()) break;
                EXPECT_EQ(
                    state_after(root.write_to, value.get(), most, granted),
                    state_after(root.plain_write_to, value.get(), most, granted_for.at(sent.size)))
                    << root.stem << " allocation " << granted << " most " << most << " of "
                    << sent.size;
                EXPECT_TRUE(root.write(value.get()) == bytes) << root.stem;
            }
            EXPECT_TRUE(root.plain_write(value.get()) == bytes) << root.stem;
        }
    }
    EXPECT_GT(failures, 100);
}

/// A string stream that can't grow takes the bytes that it has room for. The expected state is that
/// of a stream that takes the same number of bytes.
TEST(PlainAllocations, ThatFailInTheStreamItselfLeaveTheSame) {
    Engine engine(runs::seed() + 1);
    for (Root const& root : roots()) {
        for (int i = runs::count(4, 400); i > 0 && !HasFailure(); --i) {
            Object const      value = random_value(root, few, engine);
            std::string const bytes = root.plain_write(value.get());
            long const        made = allocations::count([&] {
                std::ostringstream stream;
                root.write_to(value.get(), stream);
            });
            for (long granted = 0; granted < made; ++granted) {
                std::ostringstream stream;
                bool const         has_failed =
                    fails(granted, Later::succeed, [&] { root.write_to(value.get(), stream); });
                std::string const sent = stream.str();
                EXPECT_TRUE(bytes.starts_with(sent)) << root.stem;
                Taker        taker(has_failed ? ~std::size_t{0} : sent.size());
                std::ostream plain_stream(&taker);
                root.plain_write_to(value.get(), plain_stream);
                EXPECT_EQ(stream.rdstate(), plain_stream.rdstate())
                    << root.stem << " allocation " << granted;
            }
        }
    }
}

/// Writes two values in turn, so that the result of one is in the memory of the other.
void expect_result_kept(std::string const& (*write)(void const*), void const* value,
                        std::string const& bytes, std::set<Range> const& ranges, Root const& other,
                        bool is_ours, long most, Engine& engine) {
    Object const      other_value = random_value(other, few, engine);
    auto const        write_other = is_ours ? other.write_result : other.plain_write_result;
    std::string const others_bytes = write_other(other_value.get());
    Strings const     strings;
    long const        made = allocations::count([&] { write(value); });
    for (long const granted : failing(made, most, engine)) {
        if (engine() % 4 == 0) write(value);
        std::string const& result = write_other(other_value.get());
        void const* const  memory = result.data();
        // The string stream of the reference implementation ignores failed allocations: a single
        // failure would cut the result short.
        Later const later = is_ours ? any_of_both(engine) : Later::fail;
        bool const  has_failed = fails(granted, later, [&] { write(value); });
        Range const range;
        if (has_failed) {
            EXPECT_TRUE(result == others_bytes) << "allocation " << granted;
            EXPECT_EQ(result.data(), memory) << "allocation " << granted;
            EXPECT_TRUE(ranges.contains(range)) << "allocation " << granted << range.least;
            EXPECT_EQ(strings, Strings());
        }
        EXPECT_TRUE(write(value) == bytes) << "allocation " << granted;
        EXPECT_EQ(strings, Strings());
    }
}

TEST(PlainAllocations, ThatFailInWritingKeepTheResult) {
    Engine      engine(runs::seed() + 2);
    auto const& all = roots();
    for (Root const& root : all) {
        SCOPED_TRACE(root.stem);
        for (int i = runs::count(4, 400); i > 0 && !HasFailure(); --i) {
            Object const      value = random_value(root, few, engine);
            std::string const bytes = root.plain_write(value.get());
            auto const        ranges = ranges_of_writing(root, value.get());
            Root const&       other = all[engine() % all.size()];
            expect_result_kept(root.write_result, value.get(), bytes, ranges, other, true, 1000,
                               engine);
            expect_result_kept(root.plain_write_result, value.get(), bytes, ranges, other, false,
                               50, engine);
            EXPECT_TRUE(root.plain_write(value.get()) == bytes);
        }
    }
}

// Reading.

/// The position in a stream, the size of the last item, and the exponent range.
struct Moment {
    std::streamoff  position;
    std::streamsize last_size;
    Range           range;
    auto            operator<=>(Moment const&) const = default;
};

/// A buffer that supplies bytes item by item and records each moment.
class Giver : public std::streambuf {
public:
    Giver(std::string_view bytes, std::set<Moment>& moments) : bytes_(bytes), moments_(moments) {}

protected:
    int_type underflow() override {
        note();
        return at_ == bytes_.size() ? traits_type::eof() : traits_type::to_int_type(bytes_[at_]);
    }
    int_type uflow() override {
        int_type const c = underflow();
        ++at_;
        note();
        return c;
    }
    std::streamsize xsgetn(char* target, std::streamsize size) override {
        note();
        bytes_.copy(target, static_cast<std::size_t>(size), at_);
        at_ += static_cast<std::size_t>(size);
        last_size_ = size;
        note();
        return size;
    }

private:
    void note() { moments_.insert({static_cast<std::streamoff>(at_), last_size_, {}}); }

    std::string_view  bytes_;
    std::set<Moment>& moments_;
    std::size_t       at_ = 0;
    std::streamsize   last_size_ = 0;
};

/// Bytes that are read into a value, which is fresh or random.
struct Reading {
    Root const&               root;
    sml::inspect::Root const& described = *sml::inspect::find_root(root.stem);
    std::string               bytes;
    std::uint64_t             held;  // the seed of the value read over; 0: a fresh value

    Object target() const { return held == 0 ? root.make() : root.random(held, few); }

    /// Text that is equal for equal content, independent of the order of hash tables.
    std::string content(void const* value) const {
        std::ostringstream stream;
        sml::inspect::write_canonical(described, root.plain_write(value), stream);
        return std::move(stream).str();
    }

    Object copy(void const* value) const {
        Object made = root.make();
        root.assign(made.get(), value);
        return made;
    }
};

/// A reader: from memory or a stream, of the library or the reference implementation.
struct Reader {
    bool is_stream;
    bool is_ours;

    void operator()(Reading const& reading, void* value, std::istream& stream) const {
        if (is_stream)
            (is_ours ? reading.root.read_from : reading.root.plain_read_from)(value, stream);
        else
            (is_ours ? reading.root.read : reading.root.plain_read)(value, reading.bytes.data());
    }
};

struct Failed {
    Object value;
    Moment moment;
};

/// Whether the call fails. Stores the state after it in `failed`.
bool fails_reading(Reader reader, Reading const& reading, long granted, Later later,
                   Failed& failed) {
    std::istringstream stream(reading.bytes);
    failed.value = reading.target();
    bool const has_failed =
        fails(granted, later, [&] { reader(reading, failed.value.get(), stream); });
    Range const range;
    EXPECT_EQ(stream.rdstate(), std::ios::goodbit);
    failed.moment = {stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in), stream.gcount(),
                     range};
    return has_failed;
}

/// The states that the reference implementation can leave: after each failing allocation, and those
/// that it has in between.
struct Allowed {
    std::set<std::string> contents;
    std::set<Moment>      moments;
    std::set<Range>       ranges;

    explicit Allowed(Reading const& reading) {
        watch(reading);
        for (bool const is_stream : {false, true}) {
            Failed failed;
            for (long granted = 0;
                 fails_reading({is_stream, false}, reading, granted, Later::fail, failed);
                 ++granted) {
                contents.insert(reading.content(failed.value.get()));
                if (is_stream) moments.insert(failed.moment);
            }
        }
        for (Moment const& moment : moments) ranges.insert(moment.range);
    }

private:
    /// Collects the moments of a read that succeeds. Its strings are released again.
    void watch(Reading const& reading) {
        Object const value = reading.target();
        start_range();
        Giver        giver(reading.bytes, moments);
        std::istream stream(&giver);
        reading.root.plain_read_from(value.get(), stream);
        moments.insert({static_cast<std::streamoff>(reading.bytes.size()), stream.gcount(), {}});
    }
};

/// Expects that a value that was read in part can be destroyed, assigned to and read over.
void expect_usable(Reader reader, Reading const& reading, Failed const& failed, Engine& engine) {
    std::istringstream stream(reading.bytes);
    switch (engine() % 3) {
        case 0: {
            Object const other = reading.root.make();
            reading.root.plain_read(other.get(), reading.bytes.data());
            reading.root.assign(failed.value.get(), other.get());
            EXPECT_TRUE(reading.content(failed.value.get()) == reading.content(other.get()));
            return;
        }
        case 1: {
            Object const expected = reading.copy(failed.value.get());
            reading.root.plain_read(expected.get(), reading.bytes.data());
            reader(reading, failed.value.get(), stream);
            EXPECT_TRUE(reading.content(failed.value.get()) == reading.content(expected.get()));
            return;
        }
        default: return;
    }
}

/// Expects that failing reads leave an allowed state; `allowed` is null if the allowed states are
/// unknown.
long expect_reads_alike(Reading const& reading, Allowed const* allowed, long most, Engine& engine) {
    long          failures = 0;
    Strings const strings;
    for (bool const is_stream : {false, true}) {
        Reader const reader{is_stream, true};
        Failed       failed;
        long const   made = [&] {
            std::istringstream stream(reading.bytes);
            Object const       value = reading.target();
            return allocations::count([&] { reader(reading, value.get(), stream); });
        }();
        for (long const granted : failing(made, most, engine)) {
            SCOPED_TRACE(std::string(reading.root.stem) + (is_stream ? " stream" : " bytes") +
                         " allocation " + std::to_string(granted));
            if (!fails_reading(reader, reading, granted, any_of_both(engine), failed)) continue;
            ++failures;
            if (allowed != nullptr) {
                EXPECT_TRUE(allowed->contents.contains(reading.content(failed.value.get())));
                EXPECT_TRUE(allowed->ranges.contains(failed.moment.range))
                    << failed.moment.range.least;
                EXPECT_TRUE(!is_stream || allowed->moments.contains(failed.moment))
                    << failed.moment.position << ' ' << failed.moment.last_size << ' '
                    << failed.moment.range.least;
            }
            expect_usable(reader, reading, failed, engine);
            failed.value.reset();
            EXPECT_EQ(strings, Strings());
            if (testing::Test::HasFailure()) return failures;
        }
    }
    return failures;
}

/// Random bytes. No other value holds their strings, so reading interns them anew.
Reading random_reading(Root const& root, int elements, std::uint64_t held, Engine& engine) {
    return {.root = root,
            .bytes = root.plain_write(random_value(root, elements, engine).get()),
            .held = held};
}

TEST(PlainAllocations, ThatFailInReadingLeaveTheSame) {
    Engine engine(runs::seed() + 3);
    long   failures = 0;
    for (Root const& root : roots()) {
        for (int i = runs::count(2, 100); i > 0 && !HasFailure(); --i) {
            std::uint64_t const held = i % 2 == 0 ? 0 : engine();
            Reading const       reading = random_reading(root, few, held, engine);
            Allowed const       allowed(reading);
            failures += expect_reads_alike(reading, &allowed, 1000, engine);
        }
    }
    EXPECT_GT(failures, 1000);
}

/// A map large enough not to be filled entry by entry.
TEST(PlainAllocations, ThatFailInReadingALargeTableLeaveTheSame) {
    Engine      engine(runs::seed() + 5);
    auto const& all = roots();
    auto const  root = std::find_if(all.begin(), all.end(), [](Root const& candidate) {
        return candidate.stem == "Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T";
    });
    ASSERT_NE(root, all.end());
    std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data> table;
    RandomValues random(engine(), {1, 1});
    for (std::int32_t i = 0; i < 150; ++i) random.fill(table[i]);
    Reading const reading{.root = *root, .bytes = root->plain_write(&table), .held = 0};
    table.clear();
    Allowed const allowed(reading);
    EXPECT_GT(expect_reads_alike(reading, &allowed, 100'000, engine), 1000);

    // The order of a map is visible in its bytes.
    std::set<std::string> expected;
    Failed                failed;
    for (long granted = 0; fails_reading({false, false}, reading, granted, Later::fail, failed);
         ++granted)
        expected.insert(reading.root.plain_write(failed.value.get()));
    for (long granted = 0;
         fails_reading({false, true}, reading, granted, any_of_both(engine), failed); ++granted)
        EXPECT_TRUE(expected.contains(reading.root.plain_write(failed.value.get())))
            << "allocation " << granted;
}

/// Values larger than the library's buffers, with only some of the allocations.
TEST(PlainAllocations, ThatFailAmongManyLeaveTheSame) {
    Engine engine(runs::seed() + 4);
    for (Root const& root : roots()) {
        if (root.stem != "Application_Results_Application_Results" &&
            root.stem != "Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T" &&
            root.stem != "String_To_StringSet_T")
            continue;
        SCOPED_TRACE(root.stem);
        for (int i = runs::count(2, 50); i > 0 && !HasFailure(); --i) {
            constexpr int  many = 30;
            constexpr long most = 20;
            Object         value = random_value(root, many, engine);
            Reading const  reading{.root = root, .bytes = root.plain_write(value.get()), .held = 0};
            auto const     ranges = ranges_of_writing(root, value.get());
            expect_result_kept(root.write_result, value.get(), reading.bytes, ranges, root, true,
                               most, engine);
            long const made = allocations::count([&] {
                Taker        taker(~std::size_t{0});
                std::ostream stream(&taker);
                root.write_to(value.get(), stream);
            });
            for (long const granted : failing(made, most, engine)) {
                Sent sent{};
                EXPECT_TRUE(fails_sending(root.write_to, value.get(), reading.bytes, granted,
                                          any_of_both(engine), sent));
                EXPECT_EQ(sent.state, std::ios::goodbit);
                EXPECT_TRUE(ranges.contains(sent.range)) << sent.range.least;
            }
            value.reset();
            expect_reads_alike(reading, nullptr, most, engine);
        }
    }
}

}  // namespace

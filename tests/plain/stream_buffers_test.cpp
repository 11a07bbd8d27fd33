// Compares the effects of callers' stream buffers and locales with the reference implementation.

#include <sml/bindings/bindings.hpp>
#include "tests/plain/archived.hpp"
#include "tests/plain/caller_streams.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <locale>
#include <memory>
#include <vector>

namespace {

using namespace plain_test;
using Engine = std::mt19937_64;
using sml::Strings_T;

/// A buffer that has only a part of its bytes in memory at a time, in a new block each time.
class Refilled : public std::streambuf {
public:
    Refilled(std::string bytes, std::size_t window) : bytes_(std::move(bytes)), window_(window) {}

    /// The number of bytes read.
    std::size_t taken() const { return held_to_ - static_cast<std::size_t>(egptr() - gptr()); }

protected:
    int_type underflow() override {
        hold_from(held_to_, window_);
        return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
    }

    /// Loads up to `size` bytes from offset `start`.
    void hold_from(std::size_t start, std::size_t size) {
        size = std::min(size, bytes_.size() - start);
        held_ = std::make_unique_for_overwrite<char[]>(size);
        std::memcpy(held_.get(), bytes_.data() + start, size);
        setg(held_.get(), held_.get(), held_.get() + size);
        held_to_ = start + size;
    }

    std::size_t window() const { return window_; }

private:
    std::string             bytes_;
    std::size_t             window_;
    std::size_t             held_to_ = 0;
    std::unique_ptr<char[]> held_;
};

/// A buffer that changes its memory whenever a block has been read.
class Changing : public Refilled {
public:
    using Refilled::Refilled;

protected:
    std::streamsize xsgetn(char* block, std::streamsize size) override {
        std::streamsize const given = std::streambuf::xsgetn(block, size);
        change();
        return given;
    }

    virtual void change() = 0;
};

/// Moves the remaining bytes to the front.
class Compacting : public Changing {
public:
    using Changing::Changing;

protected:
    void change() override {
        auto const left = egptr() - gptr();
        std::memmove(eback(), gptr(), static_cast<std::size_t>(left));
        setg(eback(), eback(), eback() + left);
    }
};

/// Loads the following bytes into other memory.
class FilledUp : public Changing {
public:
    using Changing::Changing;

protected:
    void change() override { hold_from(taken(), window()); }
};

/// Has no byte in memory, so the next one is requested anew.
class Emptied : public Changing {
public:
    using Changing::Changing;

protected:
    void change() override { hold_from(taken(), 0); }
};

/// Gives the unread bytes back when it is flushed, as a file that is read and written does.
class Duplex : public Refilled {
public:
    using Refilled::Refilled;

protected:
    int sync() override {
        hold_from(taken(), 0);
        return 0;
    }
};

/// Throws when it is flushed more than `flushes` times. It gives the unread bytes back first.
class Unflushable : public Refilled {
public:
    Unflushable(std::string bytes, std::size_t window, int flushes)
        : Refilled(std::move(bytes), window), flushes_(flushes) {}

protected:
    int sync() override {
        if (--flushes_ >= 0) return 0;
        hold_from(taken(), 0);
        throw std::runtime_error("no flush");
    }

private:
    int flushes_;
};

/// Reads two objects. Describes the outcome of each, the number of bytes read, and the objects.
template <class Buffer, class T, class Read>
std::string read_two(std::string const& bytes, std::size_t window, bool is_tied, Read const& read) {
    Buffer       buffer(bytes, window);
    std::istream stream(&buffer);
    std::ostream other_way(&buffer);
    if (is_tied) stream.tie(&other_way);
    std::string outcomes;
    for (int object = 0; object < 2; ++object) {
        T value{};
        outcomes += outcome([&] { read(value, stream); });
        outcomes += " state " + std::to_string(stream.rdstate()) + " count " +
                    std::to_string(stream.gcount()) + " taken " + std::to_string(buffer.taken()) +
                    " value " + plainly_written(value);
    }
    return outcomes;
}

template <class Buffer, class T, class Read>
void expect_read_alike(std::string const& bytes, Engine& engine, Read const& read) {
    std::size_t const windows[] = {1, 7, 8, 20, 64, 200, 10'000};
    std::size_t const window = windows[engine() % 7];
    auto const        read_plainly = [](T& value, std::istream& stream) {
        plain::from_stream(value, stream);
    };
    for (bool const is_tied : {false, true}) {
        ASSERT_EQ((read_two<Buffer, T>(bytes, window, is_tied, read)),
                  (read_two<Buffer, T>(bytes, window, is_tied, read_plainly)))
            << "window " << window << " tied " << is_tied;
    }
}

template <class T, class Read>
void expect_read_alike_from_all(std::string const& bytes, Engine& engine, Read const& read) {
    expect_read_alike<Compacting, T>(bytes, engine, read);
    expect_read_alike<FilledUp, T>(bytes, engine, read);
    expect_read_alike<Emptied, T>(bytes, engine, read);
    expect_read_alike<Duplex, T>(bytes, engine, read);
}

template <class T>
void expect_two_read_alike(Engine& engine) {
    for (int i = runs::count(100, 5000); i > 0 && !testing::Test::HasFailure(); --i) {
        RandomValues      random(engine(), {8, 3});
        std::string const bytes =
            plainly_written(random.make<T>()) + plainly_written(random.make<T>()) + "behind";
        expect_read_alike_from_all<T>(bytes, engine, sml::core::read_from_stream<T>);
    }
}

TEST(StreamBuffers, ThatMoveWhatTheyHoldGiveTwoObjects) {
    Engine engine(runs::seed());
    expect_two_read_alike<std::int64_t>(engine);
    expect_two_read_alike<bool>(engine);
    expect_two_read_alike<std::pair<std::int32_t, bool>>(engine);
    expect_two_read_alike<std::tuple<std::int32_t, std::array<bool, 4>>>(engine);
    expect_two_read_alike<std::list<std::pair<std::int64_t, bool>>>(engine);
    expect_two_read_alike<std::list<std::optional<std::int32_t>>>(engine);
    expect_two_read_alike<std::pair<std::string, bool>>(engine);
    expect_two_read_alike<std::list<Strings_T>>(engine);
    expect_two_read_alike<std::pair<sml::BigInteger, std::optional<bool>>>(engine);
    expect_two_read_alike<std::pair<zelvanite::IEEE754Float, std::array<bool, 4>>>(engine);
    expect_two_read_alike<std::tuple<double, bool, std::list<sml::BigInteger>>>(engine);
}

TEST(StreamBuffers, ThatMoveWhatTheyHoldGiveTwoRoots) {
    Engine engine(runs::seed() + 1);
    for (int i = runs::count(100, 5000); i > 0 && !HasFailure(); --i) {
        RandomValues random(engine(), {12, 3});

        using Reference = sml::Interrogators::T_FunctionRef;
        std::string bytes = plainly_written(random.make<Reference>());
        bytes += plainly_written(random.make<Reference>());
        expect_read_alike_from_all<Reference>(bytes, engine,
                                              sml::Interrogators_FunctionRef_fromStream);

        using Ids = sml::core::HashedMap<std::pair<Strings_T, std::int32_t>, std::int32_t>;
        bytes = plainly_written(random.make<Ids>());
        bytes += plainly_written(random.make<Ids>());
        expect_read_alike_from_all<Ids>(
            bytes, engine, sml::Base_Gui_Internal_Form_Datas_Kernel_To_GUI_InfoId_T_fromStream);

        using Definitions =
            std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Info_Definition>;
        bytes = plainly_written(random.make<Definitions>());
        bytes += plainly_written(random.make<Definitions>());
        expect_read_alike_from_all<Definitions>(
            bytes, engine,
            sml::Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T_fromStream);
    }
}

TEST(StreamBuffers, ThatThrowWhenTheyAreFlushedEndTheRead) {
    using Values = std::list<std::tuple<std::string, bool, std::int32_t>>;
    std::string const bytes = plainly_written(Values(50, {std::string(200, 'a'), true, 7}));
    auto const        read_flushed = [&](auto const& read, std::size_t window, int flushes) {
        Unflushable  buffer(bytes, window, flushes);
        std::istream stream(&buffer);
        std::ostream other_way(&buffer);
        stream.get();  // loads bytes
        stream.unget();
        other_way.exceptions(std::ios::badbit);
        stream.exceptions(std::ios::badbit);
        stream.tie(&other_way);
        Values      value;
        std::string outcomes = outcome([&] { read(value, stream); });
        return outcomes + " taken " + std::to_string(buffer.taken()) + " value " +
               plainly_written(value);
    };
    for (std::size_t const window : {1u, 20u, 300u, 20'000u})
        for (int flushes = 0; flushes < 300; flushes += 1 + flushes / 8)
            ASSERT_EQ(read_flushed(sml::core::read_from_stream<Values>, window, flushes),
                      read_flushed(plain::from_stream<Values>, window, flushes))
                << window << ", " << flushes;
}

/// The second text of the first object has an impossible length.
TEST(StreamBuffers, ThatMoveWhatTheyHoldStandWhereAnExceptionLeavesThem) {
    using Item = std::tuple<std::int32_t, std::array<bool, 4>, std::string, bool, std::string>;
    Engine engine(runs::seed() + 2);
    for (int i = runs::count(200, 5000); i > 0 && !HasFailure(); --i) {
        Item        item{1, {true, false, true, true}, std::string(engine() % 200, 'a'), true, ""};
        std::string bytes = plainly_written(item);
        bytes.replace(bytes.size() - 4, 4, 4, '\xff');
        bytes += plainly_written(item) + "behind";
        expect_read_alike_from_all<Item>(bytes, engine, sml::core::read_from_stream<Item>);
    }
}

/// The classic locale, except that these characters are white space, and a blank is only if `blank`
/// is true.
std::locale locale_with_spaces(std::string_view spaces, bool blank) {
    using Kinds = std::ctype<char>;
    static std::list<std::vector<Kinds::mask>> tables;  // one for each locale, which refers to it

    auto& table =
        tables.emplace_back(Kinds::classic_table(), Kinds::classic_table() + Kinds::table_size);
    for (char const space : spaces) table[static_cast<unsigned char>(space)] |= Kinds::space;
    if (!blank) table[' '] = Kinds::print;
    return {std::locale::classic(), new Kinds(table.data())};
}

using Flags = std::tuple<std::int32_t, bool, bool, std::array<bool, 4>, std::int32_t, bool>;

/// Reads two values. Describes the state of the stream after each, and the values.
std::string read_flags(std::string const& bytes, std::locale const& locale, bool skips,
                       void (*read)(Flags&, std::istream&)) {
    std::istringstream stream(bytes);
    stream.imbue(locale);
    if (!skips) stream.unsetf(std::ios::skipws);
    std::string outcomes;
    for (int object = 0; object < 2; ++object) {
        Flags value{};
        read(value, stream);
        outcomes += " state " + std::to_string(stream.rdstate()) + " count " +
                    std::to_string(stream.gcount()) + " at " + std::to_string(stream.tellg()) +
                    " value " + plainly_written(value);
    }
    return outcomes;
}

TEST(StreamLocale, SaysWhatIsSkippedBeforeAFlag) {
    Engine engine(runs::seed() + 3);
    for (std::string_view const spaces : {"", "T", "F", "TF", "01", "TF0"}) {
        for (bool const has_blank : {true, false}) {
            std::locale const locale = locale_with_spaces(spaces, has_blank);
            for (int i = runs::count(50, 5000); i > 0 && !HasFailure(); --i) {
                std::string bytes;
                while (bytes.size() < 60) bytes += "TF01 \n"[engine() % 6];
                bool const skips = engine() % 2 == 0;
                EXPECT_EQ(read_flags(bytes, locale, skips, sml::core::read_from_stream<Flags>),
                          read_flags(bytes, locale, skips, plain::from_stream<Flags>))
                    << "spaces " << spaces << " blank " << has_blank << " skips " << skips
                    << " bytes " << bytes;
            }
        }
    }
}

/// Records the exponent range at each call.
class Watcher : public BlockTaker {
public:
    Watcher() : BlockTaker(no_end, false) {}

    std::vector<Range> seen;

protected:
    int_type overflow(int_type c) override {
        seen.emplace_back();
        return BlockTaker::overflow(c);
    }
    std::streamsize xsputn(char const* block, std::streamsize size) override {
        seen.emplace_back();
        return BlockTaker::xsputn(block, size);
    }
};

using Floats =
    std::pair<zelvanite::IEEE754Float,
              std::list<std::tuple<std::optional<zelvanite::IEEE754Float>, std::string, bool>>>;

Floats random_floats(Engine& engine) {
    RandomValues random(engine());
    Floats       value{random.make<zelvanite::IEEE754Float>(), {}};
    for (auto left = engine() % 40; left > 0; --left) {
        auto& item = value.second.emplace_back();
        random.fill(std::get<0>(item));
        std::get<1>(item).resize(engine() % 8 == 0 ? engine() % 20'000 : engine() % 5, 'a');
    }
    return value;
}

/// The exponent ranges that are in force when the stream's buffer is called, and last the one that
/// remains.
std::vector<Range> ranges_seen(auto const& write, std::uint64_t choice) {
    mpfr_set_emin(-5000);
    mpfr_set_emax(5000);
    Watcher watcher;
    written(write, watcher, choice);
    watcher.seen.emplace_back();
    return watcher.seen;
}

/// The range seen is not the process's initial one, because a float comes first.
TEST(StreamBuffers, SeeAnExponentRangeThatPlainCodeShows) {
    Engine engine(runs::seed() + 4);
    for (int i = runs::count(500, 20'000); i > 0 && !HasFailure(); --i) {
        Floats const        value = random_floats(engine);
        std::uint64_t const choice = engine();
        auto const          seen = ranges_seen(archiving(value), choice);
        auto const          expected = ranges_seen(plainly_writing(value), choice);
        EXPECT_EQ(seen.back(), expected.back());
        if (is_flushed_for_each_item(choice)) {
            EXPECT_TRUE(seen == expected);
            continue;
        }
        ASSERT_GT(seen.size(), 1u);
        ASSERT_GT(expected.size(), 1u);
        EXPECT_EQ(seen[seen.size() - 2], expected[expected.size() - 2]);
        for (Range const& range : seen)
            EXPECT_NE(std::ranges::find(expected, range), expected.end())
                << range.least << " to " << range.most;
    }
}

}  // namespace

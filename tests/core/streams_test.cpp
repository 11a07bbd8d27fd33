#include "tests/core/string_table.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <iomanip>
#include <ios>
#include <istream>
#include <list>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

using sml::int32;
using sml::int64;
using sml::Strings_T;

namespace {

/// A buffer that supplies one byte at a time, can't seek, and records whether more bytes were
/// requested than it has.
class Trickle : public std::streambuf {
public:
    explicit Trickle(std::string bytes) : bytes_(std::move(bytes)) {}

    std::size_t taken() const { return next_ - static_cast<std::size_t>(egptr() - gptr()); }
    bool        asked_for_more() const { return asked_for_more_; }

protected:
    int_type underflow() override {
        if (next_ == bytes_.size()) {
            asked_for_more_ = true;
            return traits_type::eof();
        }
        char* const byte = &bytes_[next_++];
        setg(byte, byte, byte + 1);
        return traits_type::to_int_type(*byte);
    }

private:
    std::string bytes_;
    std::size_t next_ = 0;
    bool        asked_for_more_ = false;
};

/// A buffer that takes `room` bytes. It counts the calls to flush and to seek.
class Sink : public std::streambuf {
public:
    explicit Sink(std::size_t room = 1000) : room_(room) {}

    std::string bytes;
    int         flushes = 0;
    int         seeks = 0;

protected:
    int_type overflow(int_type c) override {
        if (bytes.size() == room_) return traits_type::eof();
        bytes += traits_type::to_char_type(c);
        return c;
    }
    int sync() override {
        ++flushes;
        return 0;
    }
    pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override {
        ++seeks;
        return pos_type(off_type(-1));
    }

private:
    std::size_t room_;
};

/// A buffer that has all its bytes in memory, but supplies no block after offset `most`.
class Unready : public std::streambuf {
public:
    Unready(std::string bytes, std::ptrdiff_t most) : bytes_(std::move(bytes)), most_(most) {
        setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
    }

    std::ptrdiff_t taken() const { return gptr() - eback(); }

protected:
    std::streamsize xsgetn(char* block, std::streamsize size) override {
        return taken() < most_ ? std::streambuf::xsgetn(block, size) : 0;
    }

private:
    std::string    bytes_;
    std::ptrdiff_t most_;
};

struct BrokenLine : std::runtime_error {
    BrokenLine() : std::runtime_error("the line broke") {}
};

/// Throws when the first byte is read or written.
class Broken : public std::streambuf {
protected:
    int_type overflow(int_type) override { throw BrokenLine(); }
    int_type underflow() override { throw BrokenLine(); }
};

/// One value of each type with its own way of being read.
using Everything = std::tuple<Strings_T, std::list<int32>, std::optional<bool>, std::string,
                              sml::BigInteger, zelvanite::IEEE754Float, double, Strings_T, int64>;

Everything one_of_everything() {
    return {Strings_T("text"),
            std::list<int32>{1, 2},
            true,
            std::string("plain"),
            sml::BigInteger(255),
            {},
            1.5,
            Strings_T("text"),
            int64{7}};
}

template <class T>
std::string write_to(std::ostringstream& stream, T const& value) {
    sml::StreamOArchive archive(stream);
    sml::core::Writer{archive}(value);
    archive.finish();
    return stream.str();
}

template <class T>
T read_from(std::istream& stream) {
    T value{};
    sml::core::read_from_stream(value, stream);
    return value;
}

/// Reads a value from a stream that ends too early.
template <class T>
T read_short(std::string_view hex) {
    std::istringstream stream(hex::bytes(hex));
    T                  value = read_from<T>(stream);
    EXPECT_TRUE(stream.fail());
    return value;
}

TEST(StreamWriter, PadsFlagsToTheStreamsWidth) {
    std::ostringstream stream;
    stream << std::setfill('*') << std::setw(4);
    EXPECT_EQ(write_to(stream, std::tuple(int32{1}, true, false)),
              hex::bytes("01 00 00 00 '***T' 'F'"));
}

TEST(StreamWriter, PadsFlagsAsTheStreamAdjusts) {
    std::ostringstream stream;
    stream << std::setfill('.') << std::left << std::setw(3);
    EXPECT_EQ(write_to(stream, std::optional<int32>()), "F..");
}

TEST(StreamWriter, PadsNothingButFlags) {
    std::ostringstream stream;
    stream << std::setfill('*') << std::setw(9);
    EXPECT_EQ(write_to(stream, std::tuple(Strings_T("ab"), int64{1}, std::string("c"))),
              hex::bytes("FF FF FF FF  02 00 00 00 'ab'"
                         "01 00 00 00 00 00 00 00"
                         "01 00 00 00 'c'"));
    EXPECT_EQ(stream.width(), 9);
}

TEST(StreamWriter, HoldsNothingBackAndNeitherFlushesNorSeeks) {
    Sink         sink;
    std::ostream stream(&sink);
    {
        sml::StreamOArchive archive(stream);
        sml::core::Writer{archive}(one_of_everything());
        archive.finish();
        EXPECT_EQ(hex::shown(sink.bytes), hex::shown(wire::write(one_of_everything())));
    }
    EXPECT_EQ(hex::shown(sink.bytes), hex::shown(wire::write(one_of_everything())));
    EXPECT_EQ(sink.flushes, 0);
    EXPECT_EQ(sink.seeks, 0);
}

/// Ten items: a word, a flag, an integer of two items, a float of three, and a string of three.
std::tuple<int32, bool, sml::BigInteger, zelvanite::IEEE754Float, Strings_T> ten_items() {
    return {7, true, sml::BigInteger(255), {}, Strings_T("streams: an item")};
}

TEST(StreamWriter, FlushesBehindEachItemWhereTheStreamDoes) {
    Sink         sink;
    std::ostream stream(&sink);
    stream.setf(std::ios::unitbuf);
    sml::core::write_to_stream(ten_items(), stream);
    EXPECT_EQ(sink.flushes, 10);
    EXPECT_EQ(hex::shown(sink.bytes), hex::shown(wire::write(ten_items())));
}

TEST(StreamWriter, FlushesATiedStreamBeforeEachItem) {
    Sink         sink;
    Sink         other_sink;
    std::ostream stream(&sink);
    std::ostream other(&other_sink);
    stream.tie(&other);
    sml::core::write_to_stream(ten_items(), stream);
    EXPECT_EQ(other_sink.flushes, 10);
    EXPECT_EQ(sink.flushes, 0);
    EXPECT_EQ(hex::shown(sink.bytes), hex::shown(wire::write(ten_items())));
}

TEST(StreamReader, FlushesATiedStreamBeforeEachItem) {
    Sink               other_sink;
    std::ostream       other(&other_sink);
    std::istringstream stream(wire::write(ten_items()));
    stream.tie(&other);
    decltype(ten_items()) value;
    sml::core::read_from_stream(value, stream);
    EXPECT_EQ(other_sink.flushes, 10);
    EXPECT_TRUE(value == ten_items());
}

TEST(StreamWriter, IgnoresAStreamThatTakesNoMore) {
    Sink         sink(6);
    std::ostream stream(&sink);
    {
        sml::StreamOArchive archive(stream);
        sml::core::Writer{archive}(one_of_everything());
        EXPECT_NO_THROW(archive.finish());
    }
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(sink.bytes.size(), 6u);
}

TEST(StreamWriter, LetsTheStreamsExceptionPass) {
    std::size_t const before = string_table::size();
    Sink              sink(6);
    std::ostream      stream(&sink);
    stream.exceptions(std::ios::badbit);
    EXPECT_THROW(
        {
            sml::StreamOArchive archive(stream);
            sml::core::Writer{archive}(std::tuple(Strings_T("streams: lost"), int32{1}));
            archive.finish();
        },
        std::ios_base::failure);
    EXPECT_EQ(string_table::size(), before);
}

TEST(StreamWriter, LetsTheBuffersExceptionPassWhereTheStreamDoes) {
    Broken       broken;
    std::ostream stream(&broken);
    stream.exceptions(std::ios::badbit);
    sml::StreamOArchive archive(stream);
    sml::core::Writer{archive}(int32{1});
    EXPECT_THROW(archive.finish(), BrokenLine);
    stream.exceptions(std::ios::goodbit);
    stream.clear();
    sml::core::Writer{archive}(int32{1});
    EXPECT_NO_THROW(archive.finish());
}

TEST(StreamReader, SkipsWhiteSpaceBeforeAFlag) {
    std::istringstream stream(" \n\tT");
    EXPECT_TRUE(read_from<bool>(stream));
    EXPECT_EQ(stream.tellg(), 4);
}

TEST(StreamReader, SkipsWhiteSpaceBeforeThePresenceOfAValue) {
    std::istringstream stream(hex::bytes("' T' 07 00 00 00"));
    EXPECT_EQ(read_from<std::optional<int32>>(stream), 7);
}

TEST(StreamReader, TakesABlankAsAFlagWhereTheStreamSkipsNone) {
    std::istringstream stream(" T");
    stream >> std::noskipws;
    EXPECT_FALSE(read_from<bool>(stream));
    EXPECT_EQ(stream.tellg(), 1);
}

TEST(StreamReader, SkipsWhiteSpaceBeforeNothingElse) {
    std::istringstream stream(hex::bytes("20 20 20 20  01 00 00 00 20"));
    EXPECT_EQ(read_from<int32>(stream), 0x20202020);
    EXPECT_EQ(read_from<std::string>(stream), " ");
}

TEST(StringReader, TakesABlankAsAFlag) {
    bool flag = true;
    EXPECT_EQ(wire::read_over(flag, " T"), 1u);
    EXPECT_FALSE(flag);
}

TEST(StreamReader, TakesNoByteBeyondItsObject) {
    std::string const bytes = wire::write(one_of_everything());
    Trickle           trickle(bytes + bytes);
    std::istream      stream(&trickle);

    EXPECT_TRUE(read_from<Everything>(stream) == one_of_everything());
    EXPECT_EQ(trickle.taken(), bytes.size());
    EXPECT_TRUE(read_from<Everything>(stream) == one_of_everything());
    EXPECT_EQ(trickle.taken(), 2 * bytes.size());
    EXPECT_FALSE(trickle.asked_for_more());
    EXPECT_TRUE(stream.good());
}

template <class T>
void expect_asks_for_no_more(T const& value) {
    Trickle      trickle(wire::write(value));
    std::istream stream(&trickle);
    EXPECT_TRUE(read_from<T>(stream) == value);
    EXPECT_FALSE(trickle.asked_for_more());
    EXPECT_TRUE(stream.good());
}

TEST(StreamReader, AsksForNoMoreWhateverComesLast) {
    expect_asks_for_no_more(int64{7});
    expect_asks_for_no_more(true);
    expect_asks_for_no_more(std::optional<bool>());
    expect_asks_for_no_more(Strings_T("text"));
    expect_asks_for_no_more(std::pair(Strings_T("text"), Strings_T("text")));
    expect_asks_for_no_more(Strings_T());
    expect_asks_for_no_more(std::string("text"));
    expect_asks_for_no_more(std::string());
    expect_asks_for_no_more(std::list<int32>{1, 2});
    expect_asks_for_no_more(std::list<int32>());
    expect_asks_for_no_more(sml::BigInteger(-255));
    expect_asks_for_no_more(zelvanite::IEEE754Float());
    expect_asks_for_no_more(1.5);
}

TEST(StreamReader, NeedsNoStreamThatSeeks) {
    Trickle      trickle(wire::write(one_of_everything()));
    std::istream stream(&trickle);
    ASSERT_EQ(stream.tellg(), -1);
    stream.clear();
    EXPECT_TRUE(read_from<Everything>(stream) == one_of_everything());
}

TEST(StreamReader, FirstFailedReadGivesZero) {
    int32 number = 5;
    bool  flag = true;

    std::istringstream empty;
    sml::core::read_from_stream(number, empty);
    EXPECT_EQ(number, 0);
    sml::core::read_from_stream(flag, empty);
    EXPECT_FALSE(flag);
}

TEST(StreamReader, TakesNothingFromAStreamThatHasFailedBefore) {
    using Values = std::tuple<int32, bool, sml::BigInteger, int64>;
    std::istringstream stream(wire::write(Values(7, true, 255, 9)));
    stream.setstate(std::ios::failbit);
    Values value(1, true, 2, 3);
    sml::core::read_from_stream(value, stream);
    EXPECT_TRUE(value == Values(0, false, 2, 0));
    stream.clear();
    EXPECT_EQ(stream.tellg(), 0);
}

/// The word is read again when the object ends. Flags after it, which the stream would not have
/// reached, stay in the buffer.
TEST(StreamReader, LeavesTheFlagsBehindAnItemThatFails) {
    using Values = std::tuple<int32, int32, bool, bool>;
    Unready      buffer(wire::write(Values(7, 8, true, true)), sizeof(int32));
    std::istream stream(&buffer);
    Values       value;
    sml::core::read_from_stream(value, stream);
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(buffer.taken(), 4);
}

TEST(StreamReader, FailedReadRepeatsTheWordBefore) {
    EXPECT_EQ((read_short<std::tuple<int32, int32, int32>>("07 00 00 00")), std::tuple(7, 7, 7));
    EXPECT_EQ(read_short<std::list<int32>>("03 00 00 00  09 00 00 00"),
              (std::list<int32>{9, 9, 9}));
}

TEST(StreamReader, WordThatEndsEarlyTakesTheRestFromTheWordBefore) {
    EXPECT_EQ((read_short<std::pair<int32, int32>>("44 33 22 11  FF EE")),
              std::pair(0x11223344, 0x1122EEFF));
}

TEST(StreamReader, FlagsAndWordsShareOneScratchWord) {
    EXPECT_EQ((read_short<std::pair<int32, bool>>("54 00 00 00")), std::pair(0x54, true));
    EXPECT_EQ((read_short<std::tuple<int32, bool, int32>>("00 01 00 00 54")),
              std::tuple(0x100, true, 0x154));
}

TEST(StreamReader, WordThatFailsBehindAFloatIsItsWidth) {
    EXPECT_EQ(
        (read_short<std::pair<zelvanite::IEEE754Float, int32>>("06 00 00 00 '0X1P+0'  20 00 00 00"))
            .second,
        32);
}

TEST(StreamReader, StringThatEndsEarlyKeepsBlanks) {
    EXPECT_EQ(read_short<Strings_T>("FF FF FF FF  05 00 00 00 'ab'").str(), "ab   ");
    EXPECT_EQ(read_short<std::string>("04 00 00 00 'a'"), "a   ");
    EXPECT_EQ(read_short<std::string>("02 00 00 00"), "  ");
}

TEST(StreamReader, StringOfAnEmptyStreamIsEmpty) {
    EXPECT_TRUE(read_short<Strings_T>("") == Strings_T());
}

TEST(StreamReader, LengthThatFailsIsTheWordBefore) {
    // The first sight's own word -1 is taken for the length.
    std::istringstream stream(hex::bytes("FF FF FF FF"));
    Strings_T          handle;
    EXPECT_THROW(sml::core::read_from_stream(handle, stream), std::length_error);
}

TEST(StreamReader, LetsTheStreamsExceptionPass) {
    std::size_t const  before = string_table::size();
    std::istringstream stream(hex::bytes("FF FF FF FF  04 00 00 00 'text'  07 00"));
    stream.exceptions(std::ios::eofbit);
    {
        std::pair<Strings_T, int32> value("streams: before", 5);
        EXPECT_THROW(sml::core::read_from_stream(value, stream), std::ios_base::failure);
        EXPECT_EQ(value.first.str(), "text");
        EXPECT_EQ(value.second, 5);
        EXPECT_EQ(string_table::count_of("text"), 1u);
    }
    EXPECT_EQ(string_table::size(), before);
}

TEST(StreamReader, LetsTheBuffersExceptionPassWhereTheStreamDoes) {
    Broken       broken;
    std::istream stream(&broken);
    stream.exceptions(std::ios::badbit);
    EXPECT_THROW(read_from<int32>(stream), BrokenLine);

    std::istream flags(&broken);
    flags.exceptions(std::ios::badbit);
    EXPECT_THROW(read_from<bool>(flags), BrokenLine);
}

}  // namespace

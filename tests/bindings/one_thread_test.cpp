// The library may be used by one thread at a time. Builds with assertions print the name of an
// entry point that is called while another thread is inside one, and abort. Nested calls of one
// thread are allowed.

#include <sml/bindings/bindings.hpp>
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>

namespace {

using sml::Answers::T_Context;

/// A buffer that calls a function when the first byte is read or written.
class InterruptedBuffer : public std::stringbuf {
public:
    explicit InterruptedBuffer(std::function<void()> interrupt, std::string const& bytes = {})
        : bytes_(bytes), interrupt_(std::move(interrupt)) {}

protected:
    int_type underflow() override {
        str(bytes_);
        interrupt_();
        return std::stringbuf::underflow();
    }
    int_type overflow(int_type c) override {
        interrupt_();
        return std::stringbuf::overflow(c);
    }
    std::streamsize xsputn(char const* bytes, std::streamsize size) override {
        interrupt_();
        return std::stringbuf::xsputn(bytes, size);
    }

private:
    std::string           bytes_;
    std::function<void()> interrupt_;
};

/// Calls `interrupt` in the middle of `Answers_Context_fromStream` and, below, of
/// `Answers_Context_toStream`.
T_Context read_interrupted(std::function<void()> const& interrupt) {
    InterruptedBuffer buffer(interrupt, "T");
    std::istream      stream(&buffer);
    T_Context         value;
    sml::Answers_Context_fromStream(value, stream);
    return value;
}
std::string write_interrupted(std::function<void()> const& interrupt) {
    InterruptedBuffer buffer(interrupt);
    std::ostream      stream(&buffer);
    T_Context         value;
    value.flag = true;
    sml::Answers_Context_toStream(value, stream);
    return buffer.str();
}

std::int64_t number = 5;
char const   bytes_of_six[] = "\6\0\0\0\0\0\0";

void to_cxx() { sml::Integers64_T_toCxx(number, bytes_of_six); }
void deserialize() { sml::deserializeSmlData(number, bytes_of_six); }
void from_cxx() { static_cast<void>(sml::Integers64_T_fromCxx(number)); }
void to_stream() {
    std::ostringstream stream;
    sml::Integers64_T_toStream(number, stream);
}
void from_stream() {
    std::istringstream stream(std::string(bytes_of_six, 8));
    sml::Integers64_T_fromStream(number, stream);
}
void flat_to_cxx() { Integers64_T_toCxx(&number, bytes_of_six); }
void flat_from_cxx() { static_cast<void>(Integers64_T_fromCxx(&number)); }

void in_another_thread(void (*call)()) { std::thread(call).join(); }

constexpr struct {
    char const* name;
    void (*call)();
} all_calls[] = {
    {"toCxx", to_cxx},          {"toCxx", deserialize},      {"fromCxx", from_cxx},
    {"toStream", to_stream},    {"fromStream", from_stream}, {"toCxx", flat_to_cxx},
    {"fromCxx", flat_from_cxx},
};

TEST(OneThread, MayCallInsideACall) {
    for (auto const& [name, call] : all_calls) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(read_interrupted(call).flag);
        EXPECT_EQ(write_interrupted(call), "T");
        EXPECT_EQ(
            write_interrupted([&, inner = call] { EXPECT_TRUE(read_interrupted(inner).flag); }),
            "T");
    }
    EXPECT_EQ(number, 6);
}

TEST(OneThread, MayBeAnotherOneWhenTheCallIsOver) {
    for (auto const& [name, call] : all_calls) {
        SCOPED_TRACE(name);
        call();
        in_another_thread(call);
        EXPECT_TRUE(read_interrupted(call).flag);
        in_another_thread(call);
    }
}

TEST(OneThread, MayBeAnotherOneWhenTheCallHasThrown) {
    struct Thrown {};
    auto const        throwing = []() -> void { throw Thrown(); };
    InterruptedBuffer buffer(throwing);
    std::ostream      stream(&buffer);
    stream.exceptions(std::ios::badbit);
    EXPECT_THROW(sml::Answers_Context_toStream(T_Context{}, stream), Thrown);
    in_another_thread(from_cxx);
}

#ifndef NDEBUG

TEST(OneThreadDeathTest, ASecondOneIsNamedAndEndsTheProcess) {
    for (auto const& [name, call] : all_calls) {
        SCOPED_TRACE(name);
        std::string const start = std::string("^bradep_cxx_interface: ") + name +
                                  " of Integers64_T entered while another thread is inside ";
        std::string const end = " of Answers_Context; the library serves one thread at a time\n$";
        EXPECT_DEATH(read_interrupted([inner = call] { in_another_thread(inner); }),
                     start + "fromStream" + end);
        EXPECT_DEATH(write_interrupted([inner = call] { in_another_thread(inner); }),
                     start + "toStream" + end);
    }
}

TEST(OneThreadDeathTest, TheOutermostCallIsNamed) {
    auto const inner = [] {
        static_cast<void>(read_interrupted([] { in_another_thread(from_cxx); }));
    };
    EXPECT_DEATH(write_interrupted(inner),
                 "fromCxx of Integers64_T entered while another thread is "
                 "inside toStream of Answers_Context;");
}

#endif

}  // namespace

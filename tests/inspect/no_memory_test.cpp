// When memory runs out, each call reports it and has no other effect.

#include <sml/inspect/verify_c.h>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/allocations.hpp"
#include "tests/golden/goldens.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace sml::inspect;

/// The shortest golden file of each root, and bytes that are odd in many ways.
std::vector<golden::File> inputs() {
    std::vector<golden::File> chosen;
    for (auto& file : golden::files_in(GOLDEN_FILES)) {
        if (chosen.empty() || chosen.back().root != file.root)
            chosen.push_back(std::move(file));
        else if (file.bytes.size() < chosen.back().bytes.size())
            chosen.back() = std::move(file);
    }
    // An id without a definition, a text defined twice, and a repeated key.
    chosen.push_back({"odd", find_root("String_To_StringSet_T"),
                      hex::bytes("03 00 00 00"
                                 "07 00 00 00  01 00 00 00  FF FF FF FF 01 00 00 00 'a'"
                                 "FE FF FF FF 01 00 00 00 'a'  00 00 00 00"
                                 "01 00 00 00  00 00 00 00")});
    return chosen;
}

TEST(NoMemory, IsAnAnswerOfTheCForm) {
    long failed = 0;
    for (auto const& file : inputs()) {
        SCOPED_TRACE(file.name);
        auto const verify_file = [&] {
            return sml_inspect_verify(file.root->stem.data(), file.bytes.data(), file.bytes.size(),
                                      nullptr, nullptr, 100, nullptr, nullptr);
        };
        auto const expected = verify_file();
        ASSERT_LE(expected, SML_INSPECT_ODD);
        for (long granted = 0;; ++granted) {
            sml_inspect_answer answer;
            {
                allocations::Shortage const shortage(granted);
                answer = verify_file();
            }
            if (answer == expected) break;
            ASSERT_EQ(answer, SML_INSPECT_NO_MEMORY) << granted;
            ++failed;
        }
    }
    EXPECT_GT(failed, 100);
}

/// Expects that a call throws std::bad_alloc when one of its allocations fails, alone or with all
/// later ones.
void expect_bad_alloc_alone(std::function<void()> const& call) {
    call();
    auto const later = {allocations::Later::fail, allocations::Later::succeed};
    for (allocations::Later const what : later)
        for (long granted = 0; !allocations::ends_within(granted, call, what); ++granted) {
        }
}

TEST(NoMemory, ThrowsBadAllocFromEveryCall) {
    for (auto const& file : inputs()) {
        SCOPED_TRACE(file.name);
        std::ostringstream json;
        dump(*file.root, file.bytes, json);
        std::string const text = json.str();
        std::stringbuf    buffer;
        std::string const room(4 * text.size() + 4096, '.');
        auto const        out = [&] {
            buffer.str(room);  // so that the stream allocates nothing
            buffer.pubseekpos(0, std::ios::out);
        };
        expect_bad_alloc_alone([&] { verify(*file.root, file.bytes); });
        expect_bad_alloc_alone([&] { digest(*file.root, file.bytes); });
        expect_bad_alloc_alone([&] {
            out();
            std::ostream stream(&buffer);
            dump(*file.root, file.bytes, stream);
        });
        expect_bad_alloc_alone([&] {
            out();
            std::ostream stream(&buffer);
            encode(text, stream);
        });
    }
}

}  // namespace

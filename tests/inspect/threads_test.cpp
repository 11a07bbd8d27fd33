// Calls all functions of the inspection library from several threads at once with any bytes. Each
// thread must get the same results as a single thread. This also runs under ThreadSanitizer, so of
// the serialisation library only the number texts are linked.

#include <sml/inspect/verify_c.h>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/schema_json.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/golden/goldens.hpp"
#include "tests/inspect/wire_bytes.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <barrier>
#include <cstring>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace sml::inspect;
using namespace std::string_literals;
using Form = DumpOptions::Form;
using wire_bytes::in_full;
using wire_bytes::word;

struct Case {
    std::string name;
    Root const* root;
    std::string bytes;
};

VerifyOptions const bounded{.limits = {.memory = std::uint64_t{1} << 24}};

/// A field of a structure with this name: a pointer without a type, with the full range of
/// integers.
std::string field(std::string const& name, std::int32_t number) {
    return name + word(number) + word(0) + word(1) + word(number) + word(6) + word(0) + "FF";
}

/// The bytes of one information record with a map of fields, in which a reader reads values over.
std::string information(std::string const& key, std::vector<std::string> const& fields) {
    std::string bytes = key + word(0) + word(1) + word(0) + word(16);
    bytes += word(static_cast<std::int32_t>(fields.size()));
    for (std::string const& one : fields) bytes += one;
    return bytes + "F" + word(8) + word(1) + word(0) + "F" + word(1) + word(0) + "F" + word(0) +
           word(0) + word(1) + word(0) + word(0) + word(0) + word(1) + word(0);
}

/// A result set with `count` information records, each with some repeated fields.
Case with_fields_twice(std::int32_t count) {
    std::string bytes;
    for (int left = 9; left > 0; --left) bytes += word(0);
    bytes += word(count) + information(in_full(1, ""), {field(word(1), 1), field(word(1), 2)});
    for (std::int32_t i = 1; i < count; ++i) {
        std::string const name = "key " + std::to_string(i);
        std::string const key = in_full(1 + i, name);
        bytes +=
            information(key, {field(word(1 + i), 1), field(word(1), 2), field(word(1 + i), 3)});
    }
    for (int left = 4; left > 0; --left) bytes += word(0);
    return {"fields twice, " + std::to_string(count),
            find_root("Application_Results_Application_Results"), bytes};
}

/// The bytes with some words and bytes changed.
std::string damaged(std::string bytes, std::mt19937_64& random) {
    for (auto left = 1 + random() % 3; left > 0 && bytes.size() >= 4; --left) {
        std::size_t const at = random() % (bytes.size() - 3);
        if (random() % 2 == 0)
            bytes[at] = "TF0 -z\xFF"[random() % 7];
        else
            std::memcpy(&bytes[at], word(static_cast<std::int32_t>(random() % 9) - 2).data(), 4);
    }
    return bytes;
}

std::vector<Case> all_cases() {
    std::vector<Case> cases{with_fields_twice(1), with_fields_twice(9)};
    std::mt19937_64   random(runs::seed());
    for (golden::File const& file : golden::files_in(GOLDEN_FILES)) {
        cases.push_back({file.name, file.root, file.bytes});
        cases.push_back({file.name + " damaged", file.root, damaged(file.bytes, random)});
        auto const entries = golden::entries_in(*file.root, file.bytes);
        if (entries.empty()) continue;
        auto const& entry = entries[random() % entries.size()];
        cases.push_back(
            {file.name + " doubled", file.root, golden::with_copy(file.bytes, entry, entry, true)});
    }
    return cases;
}

void print(std::ostream& out, std::vector<Finding> const& findings) {
    for (Finding const& finding : findings)
        out << finding.offset << ' ' << finding.path << ": " << finding.expected << ", "
            << finding.found << '\n';
}

void tell_verdict(std::ostream& out, Case const& one) {
    Verdict const verdict = verify(*one.root, one.bytes, bounded);
    out << static_cast<int>(verdict.answer) << ' ' << verdict.odd_count << ' ' << verdict.walked
        << ' ' << verdict.heap << ' ' << verdict.elements << ' ' << verdict.strings << ' '
        << verdict.reason_against_encoding.has_value() << '\n';
    print(out, verdict.findings);
}

void tell_dumps(std::ostream& out, Case const& one) {
    for (Form const form : {Form::compact, Form::pretty, Form::lines}) {
        std::ostringstream json;
        Dumped const       dumped =
            dump(*one.root, one.bytes, json, {.walk = bounded, .form = form, .path = ""});
        out << json.view() << dumped.odd_count << ' ' << dumped.found << '\n';
        print(out, dumped.findings);
        if (form != Form::compact) continue;
        std::ostringstream encoded;
        auto const         error = encode(json.view(), encoded).error;
        out << (error ? error->path : encoded.str()) << '\n';
    }
}

void tell_canonical(std::ostream& out, Case const& one) try {
    CanonOptions const options{.limits = bounded.limits};
    write_canonical(*one.root, one.bytes, out, options);
    out << digest(*one.root, one.bytes, options) << '\n';
} catch (std::invalid_argument const& thrown) {
    out << thrown.what() << '\n';
}

void tell_candidates(std::ostream& out, Case const& one) {
    for (Candidate const& candidate : identify(one.bytes, bounded))
        out << candidate.root->stem << ' ' << static_cast<int>(candidate.answer) << ' '
            << candidate.walked << '\n';
}

void tell_c_verdict(std::ostream& out, Case const& one) {
    auto const listen = [](void* context, sml_inspect_finding const* finding) {
        *static_cast<std::ostream*>(context) << finding->offset << ' ' << finding->path << '\n';
    };
    sml_inspect_limits const limits{0, 0, 0, bounded.limits.memory, 0, 0, nullptr};
    sml_inspect_verdict      verdict{};
    std::string const        stem(one.root->stem);
    out << sml_inspect_verify(stem.c_str(), one.bytes.data(), one.bytes.size(), &limits, &verdict,
                              100, listen, &out)
        << ' ' << verdict.walked << '\n';
}

/// The results of all functions for one case, as text.
std::string all_of(Case const& one) {
    std::ostringstream out;
    tell_verdict(out, one);
    tell_dumps(out, one);
    tell_canonical(out, one);
    tell_candidates(out, one);
    tell_c_verdict(out, one);
    return out.str();
}

std::string schema() {
    std::ostringstream out;
    write_schema(roots(), out);
    return out.str();
}

constexpr std::size_t thread_count = 4;

/// Runs `work(thread)` in all threads, which start together.
template <class Work>
void in_all_threads(Work work) {
    std::barrier             start(thread_count);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < thread_count; ++i)
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            work(i);
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, EachGetsWhatOneAloneGets) {
    std::vector<Case> const cases = all_cases();
    // The threads run first, so that several of them are the first to use objects that are made at
    // first use.
    std::vector<std::vector<std::string>> printed(thread_count);
    std::vector<std::string>              schemas(thread_count);
    in_all_threads([&](std::size_t thread) {
        printed[thread].resize(cases.size());
        // All threads start with the two cases that are read over, then each continues in its own
        // order.
        for (std::size_t i = 0; i < cases.size(); ++i) {
            std::size_t const at = i < 2 ? i : 2 + (i + thread * 17) % (cases.size() - 2);
            printed[thread][at] = all_of(cases[at]);
        }
        schemas[thread] = schema();
    });
    for (std::size_t i = 0; i < cases.size(); ++i) {
        std::string const alone = all_of(cases[i]);
        for (auto const& by_thread : printed) ASSERT_EQ(by_thread[i], alone) << cases[i].name;
    }
    for (std::string const& one : schemas) EXPECT_EQ(one, schema());
}

TEST(Threads, FieldsTwiceAreReadOver) {
    for (std::int32_t const count : {1, 9}) {
        Case const         one = with_fields_twice(count);
        std::ostringstream json;
        Dumped const       dumped = dump(*one.root, one.bytes, json);
        EXPECT_EQ(dumped.answer, Answer::odd);
        EXPECT_EQ(dumped.odd_count, static_cast<std::uint64_t>(count));
        EXPECT_NE(json.view().find(R"([["",0],{)"), std::string::npos);
        EXPECT_EQ(json.view().find("key 8") != std::string::npos, count == 9);
    }
}

TEST(Threads, FieldsTwiceAreDumpedByAllAtOnce) {
    Case const  one = with_fields_twice(9);
    std::string alone;
    {
        std::ostringstream out;
        tell_dumps(out, one);
        alone = out.str();
    }
    std::vector<int> others(thread_count);
    in_all_threads([&](std::size_t thread) {
        for (int left = 300; left > 0; --left) {
            std::ostringstream out;
            tell_dumps(out, one);
            others[thread] += out.view() == alone ? 0 : 1;
        }
    });
    EXPECT_EQ(others, std::vector<int>(thread_count));
}

// A number text sets MPFR's exponent range, which must be separate for each thread.
TEST(Threads, TheNumberLibraryKeepsItsRangeForEachThread) { EXPECT_NE(mpfr_buildopt_tls_p(), 0); }

}  // namespace

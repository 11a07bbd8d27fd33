// Compares reading a log result by result with reading it as one value.

#include "cli_support.hpp"
#include "errors.hpp"
#include "json_input.hpp"
#include "sarif/reader.hpp"
#include "sarif/run.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace {

using namespace cli_test;
namespace json = boost::json;
using bradep::sarif::Result;

/// What a reader makes of a log: results and the number of runs, or a message.
struct Reading {
    std::vector<Result> results;
    std::int32_t        runs = 0;
    std::string         complaint;

    bool operator==(Reading const&) const = default;
};

template <class Read>
Reading reading_of(Read const& read) {
    Reading reading;
    try {
        reading.runs = read([&](Result&& result) { reading.results.push_back(std::move(result)); });
    } catch (bradep::DamagedInput const& error) {
        reading = {{}, 0, error.what()};
    }
    return reading;
}

Reading streamed(std::string const& log) {
    return reading_of(
        [&](auto const& sink) { return bradep::sarif::read_log(log, "log", 0, sink); });
}

using bradep::json_input::Misfit;

json::array const& runs_of(json::value const& log) {
    if (!log.is_object()) throw Misfit{&log, "not SARIF: the document is no object"};
    auto const version = bradep::json_input::text(log, "version");
    if (!version) throw Misfit{&log, "not SARIF: the member \"version\" is missing"};
    if (*version != "2.1.0")
        throw Misfit{bradep::json_input::member(log, "version"),
                     "SARIF version \"" + *version + "\" is not read, only \"2.1.0\""};
    auto const* runs = bradep::json_input::list(log, "runs");
    if (!runs) throw Misfit{&log, "not SARIF: the member \"runs\" is missing"};
    return *runs;
}

template <class Sink>
std::int32_t read_runs(json::value const& log, Sink const& sink) {
    bradep::Comparisons      comparisons;
    bradep::sarif::Expansion expansion({}, comparisons);
    std::int32_t             count = 0;
    for (auto const& given : runs_of(log)) {
        auto const* const  results = bradep::json_input::list(given, "results");
        bradep::sarif::Run run(given, count++, expansion);
        if (!results) continue;
        for (auto const& result : *results) sink(run.resolve(result));
    }
    return count;
}

/// The same by a reader that has all of the log in memory.
Reading whole(std::string const& log) {
    return reading_of([&](auto const& sink) {
        bradep::json_input::Document const document(log, "log");
        try {
            return read_runs(document.root(), sink);
        } catch (Misfit const& misfit) {
            auto const place = bradep::json_input::pointer_below(document.root(), *misfit.where);
            throw bradep::DamagedInput("log:" + (place->empty() ? "1:1" : *place) + ": " +
                                       misfit.what);
        }
    });
}

/// All logs in reach, damaged ones included.
std::vector<std::string> const& logs() {
    static std::vector<std::string> const all = [] {
        std::vector<fs::path> directories{BRADEP_FIXTURES};
        char const* const     more = std::getenv("BRADEP_SARIF_DIRS");
        std::istringstream    names(more ? more : "");
        for (std::string name; std::getline(names, name, ':');)
            if (!name.empty()) directories.emplace_back(name);
        std::vector<fs::path> paths;
        for (auto const& directory : directories)
            for (auto const& entry : fs::directory_iterator(directory))
                if (entry.path().extension() == ".sarif") paths.push_back(entry.path());
        std::ranges::sort(paths);
        std::vector<std::string> texts;
        for (auto const& path : paths) texts.push_back(bytes_of(path));
        return texts;
    }();
    return all;
}

TEST(StreamedLog, IsReadAsAWhole) {
    ASSERT_GE(logs().size(), 55U);
    for (auto const& log : logs()) EXPECT_EQ(streamed(log), whole(log)) << log.substr(0, 2000);
}

constexpr std::size_t small = 200'000;  // longer logs take too long to be read often

/// Makes random logs of a log: members change places, come twice or under an escaped name, numbers
/// are spelled in another way, blanks come between tokens, and values are damaged or left out.
class Respelling {
public:
    Respelling(std::mt19937_64& random, bool damages) : random_(random), damages_(damages) {}

    std::string of(json::value const& log) {
        text_.clear();
        put(log);
        return text_;
    }

private:
    bool one_in(std::size_t count) { return random_() % count == 0; }

    void blank() {
        if (one_in(6)) text_ += " \t\r\n"[random_() % 4];
    }

    void put(json::value const& value) {
        static constexpr char const* odd[] = {"null", "{}",   "[]",   "0",   "-1",
                                              "7",    "\"\"", "true", "1.5", "[{}]"};
        blank();
        if (damages_ && one_in(150))
            text_ += odd[random_() % std::size(odd)];
        else if (auto const* object = value.if_object())
            put_members(*object);
        else if (auto const* array = value.if_array())
            put_elements(*array);
        else if (auto const* number = value.if_int64())
            put_number(*number);
        else
            text_ += json::serialize(value);
        blank();
    }

    void put_number(std::int64_t number) {
        text_ += std::to_string(number);
        if (one_in(4)) text_ += ".0";
        if (one_in(4)) text_ += "e0";
    }

    void put_name(std::string_view name) {
        blank();
        if (!name.empty() && one_in(8) && name.front() >= 'a' && name.front() <= 'o')
            text_ += "\"\\u006" + std::string(1, "123456789abcdef"[name.front() - 'a']) +
                     std::string(name.substr(1)) + "\"";
        else
            text_ += json::serialize(json::value(name));
        blank();
        text_ += ':';
    }

    void put_members(json::object const& object) {
        std::vector<json::key_value_pair const*> members;
        for (auto const& member : object) members.push_back(&member);
        std::ranges::shuffle(members, random_);
        text_ += '{';
        bool       is_first = true;
        auto const put_member = [&](std::string_view name, json::value const& value) {
            if (!is_first) text_ += ',';
            is_first = false;
            put_name(name);
            put(value);
        };
        for (auto const* member : members) {
            bool const is_long = text_.size() > small;  // members of members multiply
            if (!is_long && one_in(20))
                put_member(member->key(), members[random_() % members.size()]->value());
            if (!is_long && one_in(30)) put_member(R"(unknown "]}\)", member->value());
            if (!damages_ || !one_in(150)) put_member(member->key(), member->value());
        }
        text_ += '}';
    }

    void put_elements(json::array const& array) {
        text_ += '[';
        for (std::size_t i = 0; i < array.size(); ++i) {
            if (i > 0) text_ += ',';
            put(array[i]);
        }
        text_ += ']';
    }

    std::mt19937_64& random_;
    bool             damages_;
    std::string      text_;
};

std::vector<json::value> small_documents() {
    std::vector<json::value> documents;
    for (auto const& log : logs()) {
        json::error_code error;
        auto             value = json::parse(log, error, {}, {.max_depth = 1000});
        if (!error && log.size() < small) documents.push_back(std::move(value));
    }
    return documents;
}

void compare_respelled(bool damages, int count) {
    std::mt19937_64 random(runs::seed());
    auto const      documents = small_documents();
    Respelling      respelling(random, damages);
    int             refused = 0;
    for (int i = 0; i < count; ++i) {
        auto const log = respelling.of(documents[random() % documents.size()]);
        auto const reading = streamed(log);
        refused += !reading.complaint.empty();
        ASSERT_EQ(reading, whole(log)) << log;
    }
    EXPECT_GT(refused, count / 10);
    EXPECT_LT(refused, count);
}

TEST(StreamedLog, MembersMayStandInAnyOrderAndMoreThanOnce) {
    compare_respelled(false, runs::count(1000, 20000));
}

TEST(StreamedLog, DamagedValuesAreReportedWithTheSameWords) {
    compare_respelled(true, runs::count(2000, 40000));
}

TEST(StreamedLog, DamagedTextsAreReportedWithTheSameWords) {
    std::mt19937_64        random(runs::seed());
    std::string_view const pieces[] = {"\"", "\\",   "{",    "}", "[", "]",       ",",   ":",
                                       "\n", "\x01", "\xE4", "0", "e", "\\ud800", "null"};
    int                    refused = 0;
    int const              count = runs::count(3000, 60000);
    for (int i = 0; i < count; ++i) {
        auto log = logs()[random() % logs().size()];
        if (log.size() > small || log.empty()) continue;
        for (auto left = 1 + random() % 3; left > 0; --left) {
            auto const at = random() % (log.size() + 1);
            switch (random() % 4) {
                case 0: log.resize(at); break;
                case 1: log.erase(at, 1 + random() % 3); break;
                case 2: log.insert(at, pieces[random() % std::size(pieces)]); break;
                default:
                    if (at < log.size()) log[at] = static_cast<char>(random());
            }
        }
        auto const reading = streamed(log);
        refused += !reading.complaint.empty();
        ASSERT_EQ(reading, whole(log)) << log;
    }
    EXPECT_GT(refused, count / 2);
}

}  // namespace

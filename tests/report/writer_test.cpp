// What is given to the writer of a report comes out of its chunks.

#include <report/writer/packed.hpp>
#include <report/writer/page.hpp>
#include <report/writer/report_writer.hpp>
#include "tests/runs.hpp"

#include <gtest/gtest.h>
#include <zlib.h>
#include <boost/json.hpp>

#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace bradep::report;
namespace json = boost::json;

std::string from_base64(std::string const& text) {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string   bytes;
    std::uint32_t bits = 0;
    int           count = 0;
    for (char const c : text) {
        if (c == '=') break;
        bits = bits << 6 | static_cast<std::uint32_t>(alphabet.find(c));
        if ((count += 6) < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count & 0xFF);
    }
    return bytes;
}

// By another library than that of the writer.
std::string inflated(std::string const& raw) {
    ::z_stream stream{};
    EXPECT_EQ(::inflateInit2(&stream, -MAX_WBITS), Z_OK);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(raw.data()));
    stream.avail_in = static_cast<uInt>(raw.size());
    std::string all;
    int         code = Z_OK;
    while (code == Z_OK) {
        char piece[4096];
        stream.next_out = reinterpret_cast<Bytef*>(piece);
        stream.avail_out = sizeof piece;
        code = ::inflate(&stream, Z_NO_FLUSH);
        all.append(piece, sizeof piece - stream.avail_out);
    }
    EXPECT_EQ(code, Z_STREAM_END);
    EXPECT_EQ(stream.avail_in, 0u);
    ::inflateEnd(&stream);
    return all;
}

/// Keeps chunks as they are packed.
class Kept : public ChunkOutput {
public:
    void add(std::string const& name, std::string_view packed) override {
        EXPECT_TRUE(chunks.emplace(name, packed).second) << name;
    }

    std::string content(std::string const& name) const {
        return inflated(from_base64(chunks.at(name)));
    }
    json::value value(std::string const& name) const { return json::parse(content(name)); }

    std::map<std::string, std::string> chunks;
};

/// The columns by name, as numbers.
std::map<std::string, std::vector<std::uint32_t>> columns_of(Kept const& kept) {
    auto const  index = kept.value("index");
    auto const  bytes = kept.content("columns");
    auto const  count = index.at("findings").to_number<std::size_t>();
    std::size_t at = 0;
    std::map<std::string, std::vector<std::uint32_t>> columns;
    for (auto const& column : index.at("columns").as_array()) {
        auto const        type = std::string(column.at("type").as_string());
        std::size_t const width = type == "u8" ? 1 : type == "u16" ? 2 : 4;
        auto&             values = columns[std::string(column.at("name").as_string())];
        for (std::size_t i = 0; i < count; ++i) {
            std::uint32_t value = 0;
            for (std::size_t byte = 0; byte < width; ++byte, ++at)
                value |= std::uint32_t{static_cast<unsigned char>(bytes.at(at))} << 8 * byte;
            values.push_back(value);
        }
    }
    EXPECT_EQ(at, bytes.size());
    return columns;
}

TEST(Base64, HasTheTextsOfItsStandard) {
    EXPECT_EQ(base64_of(""), "");
    EXPECT_EQ(base64_of("f"), "Zg==");
    EXPECT_EQ(base64_of("fo"), "Zm8=");
    EXPECT_EQ(base64_of("foo"), "Zm9v");
    EXPECT_EQ(base64_of("foob"), "Zm9vYg==");
    EXPECT_EQ(base64_of("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64_of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(base64_of("\xFB\xFF\xFE"), "+//+");
}

TEST(ReportWriter, WritesAReportWithoutFindings) {
    Kept         kept;
    ReportWriter writer(kept);
    writer.finish({"empty", {}, {}, {}, false});
    EXPECT_EQ(kept.chunks.size(), 4u);
    EXPECT_EQ(kept.content("columns"), "");
    EXPECT_EQ(kept.content("runs"), "[]");
    EXPECT_EQ(kept.content("messages"), R"([""])");
    auto const index = kept.value("index");
    EXPECT_EQ(index.at("findings"), 0);
    EXPECT_EQ(index.at("format"), 1);
    EXPECT_EQ(index.at("title"), "empty");
    EXPECT_FALSE(index.as_object().contains("source"));
    EXPECT_FALSE(index.as_object().contains("history"));
    EXPECT_FALSE(index.as_object().contains("old_sets"));
}

TEST(ReportWriter, ColumnsAreAsWideAsTheirLargestValue) {
    for (auto const& [largest, type] : {std::pair{0u, "u8"},
                                        {255u, "u8"},
                                        {256u, "u16"},
                                        {65535u, "u16"},
                                        {65536u, "u32"},
                                        {4294967295u, "u32"}}) {
        Kept           kept;
        ReportWriter   writer(kept);
        FindingColumns finding;
        finding.line = largest;
        writer.add(finding, "{}");
        writer.finish({});
        auto const index = kept.value("index");
        for (auto const& column : index.at("columns").as_array())
            EXPECT_EQ(column.at("type"), column.at("name") == "line" ? type : "u8");
        EXPECT_EQ(columns_of(kept).at("line"), std::vector{largest});
    }
}

// A report as it was given to the writer.
struct Given {
    std::vector<FindingColumns>                        findings;
    std::vector<std::array<std::string, text_columns>> texts;
    std::vector<std::string>                           details;
};

std::string random_text(std::mt19937_64& random) {
    static std::vector<std::string> const pieces = {
        "a", "\"",      "\\",  "</script>", "\n",           "é",
        "😀", "\\udc80", "<b>", "\x7F",      "\xE2\x80\xAE", "'"};
    std::string text;
    for (auto left = random() % 5; left > 0; --left) text += pieces[random() % pieces.size()];
    return text;
}

Given random_findings(std::mt19937_64& random, std::size_t count, ReportWriter& writer) {
    Given given;
    for (std::size_t i = 0; i < count; ++i) {
        auto& finding = given.findings.emplace_back();
        auto& texts = given.texts.emplace_back();
        for (std::size_t column = 0; column < text_columns; ++column) {
            texts[column] = random_text(random);
            finding.texts[column] =
                writer.number_of(static_cast<TextColumn>(column), texts[column]);
        }
        finding.run = static_cast<std::uint32_t>(random() % 3);
        finding.line = static_cast<std::uint32_t>(random() >> random() % 64);
        finding.column = static_cast<std::uint32_t>(random() % 300);
        finding.identity = static_cast<std::uint32_t>(i + 1);
        finding.is_suppressed = random() % 2 == 0;
        json::object details{{"key", random_text(random)}, {"number", i}};
        given.details.push_back(json::serialize(details));
        writer.add(finding, given.details.back());
    }
    return given;
}

void expect(Given const& given, Kept const& kept) {
    auto const index = kept.value("index");
    auto const columns = columns_of(kept);
    auto const size = index.at("chunk_size").to_number<std::size_t>();
    auto const text_of = [&](std::string const& name, std::uint32_t number) {
        auto const all =
            name == "message" ? kept.value("messages") : index.at("dictionaries").at(name);
        return std::string(all.as_array().at(number).as_string());
    };
    constexpr std::array names = {"tool",  "rule",    "level", "kind",     "category",
                                  "class", "message", "uri",   "function", "state"};
    for (std::size_t i = 0; i < given.findings.size(); ++i) {
        auto const& finding = given.findings[i];
        for (std::size_t column = 0; column < text_columns; ++column)
            EXPECT_EQ(text_of(names[column], columns.at(names[column]).at(i)),
                      given.texts[i][column]);
        EXPECT_EQ(columns.at("run").at(i), finding.run);
        EXPECT_EQ(columns.at("line").at(i), finding.line);
        EXPECT_EQ(columns.at("column").at(i), finding.column);
        EXPECT_EQ(columns.at("identity").at(i), finding.identity);
        EXPECT_EQ(columns.at("suppressed").at(i), finding.is_suppressed ? 1u : 0u);
        auto const chunk = kept.value("details-" + std::to_string(i / size));
        EXPECT_EQ(chunk.as_array().at(i % size), json::parse(given.details[i]));
    }
}

TEST(ReportWriter, WritesWhatItWasGiven) {
    std::mt19937_64 random(runs::seed());
    for (int i = 0; i < runs::count(8, 60); ++i) {
        Kept         kept;
        ReportWriter writer(kept);
        auto const   given = random_findings(random, random() % 200, writer);
        EXPECT_EQ(writer.add_run(R"({"a":1})"), 0u);
        EXPECT_EQ(writer.add_run(R"({"b":2})"), 1u);
        writer.finish({"title", {}, {}, {}, true});
        expect(given, kept);
        EXPECT_EQ(kept.content("runs"), R"([{"a":1},{"b":2}])");
        auto const dictionaries = kept.value("index").at("dictionaries").as_object();
        for (auto const& [name, texts] : dictionaries) EXPECT_EQ(texts.at(0), "") << name;
    }
}

TEST(ReportWriter, EqualInputGivesEqualBytes) {
    auto const seed = runs::seed();
    auto const written = [&] {
        std::mt19937_64 random(seed);
        Kept            kept;
        ReportWriter    writer(kept);
        random_findings(random, 150, writer);
        writer.add_source("a.c", "int a;\n");
        writer.finish({"title", {{"a.set", 3}}, {}, {}, false});
        return kept.chunks;
    };
    EXPECT_EQ(written(), written());
}

TEST(ReportWriter, SaysWhatDescribesTheReport) {
    Kept         kept;
    ReportWriter writer(kept);
    writer.finish({"</title>\xFF",
                   {{"a.set", 30}, {"b.sarif", 7}},
                   {{{"old.set", 1}}},
                   {{{1, "monday", 5, 4, 4, 0, 0}, {2, "tuesday", 4, 3, 1, 1, 2}}},
                   false});
    auto const index = kept.value("index");
    EXPECT_EQ(index.at("title"), "</title>\xEF\xBF\xBD");
    EXPECT_EQ(index.at("sets"), json::parse(R"([{"name":"a.set","bytes":30},
                              {"name":"b.sarif","bytes":7}])"));
    EXPECT_EQ(index.at("old_sets"), json::parse(R"([{"name":"old.set","bytes":1}])"));
    EXPECT_EQ(index.at("history"), json::parse(R"([
        {"run":1,"name":"monday","findings":5,"open":4,"new":4,"returned":0,"fixed":0},
        {"run":2,"name":"tuesday","findings":4,"open":3,"new":1,"returned":1,"fixed":2}])"));
}

TEST(ReportWriter, FilesThatAreLeftOutForOneReasonShareAChunk) {
    Kept         kept;
    ReportWriter writer(kept);
    writer.looks_for_sources();
    writer.skip_source("a.c", "missing");
    writer.add_source("b.c", "int b;\xFF\n");
    writer.skip_source("c.c", "binary");
    writer.skip_source("d.c", "missing");
    writer.finish({});
    auto const source = kept.value("index").at("source");
    EXPECT_EQ(source.at("skipped"), json::parse(R"({"missing":2,"binary":1})"));
    EXPECT_EQ(source.at("files"), json::parse(R"({"a.c":0,"b.c":1,"c.c":2,"d.c":0})"));
    EXPECT_EQ(kept.value("source-0"), json::parse(R"({"skipped":"missing"})"));
    EXPECT_EQ(kept.value("source-1"), json::parse(R"({"uri":"b.c","text":"int b;\uFFFD\n"})"));
    EXPECT_EQ(kept.value("source-2"), json::parse(R"({"skipped":"binary"})"));
}

/// Fails at a chunk.
class Failing : public ChunkOutput {
public:
    explicit Failing(int good) : left_(good) {}

    void add(std::string const&, std::string_view) override {
        if (left_-- == 0) throw std::runtime_error("the disk is full");
    }

private:
    int left_;
};

TEST(ReportWriter, ThrowsWhatItsOutputThrows) {
    for (int good = 0; good < 12; ++good) {
        Failing    output(good);
        auto const write = [&] {
            ReportWriter writer(output);
            for (int i = 0; i < 64 * 8; ++i) writer.add({}, "{}");
            writer.finish({});
        };
        EXPECT_THROW(write(), std::runtime_error) << good;
    }
    Failing      output(3);
    ReportWriter given_up(output);  // its destructor must not wait
    for (int i = 0; i < 64 * 4; ++i) given_up.add({}, "{}");
}

TEST(Page, EscapesTheTitle) {
    auto const page = page_of_directory("</title><script>&\"'@STYLE@");
    EXPECT_NE(page.find("<title>&lt;/title&gt;&lt;script&gt;&amp;&quot;&#39;@STYLE@</title>"),
              std::string::npos);
    EXPECT_EQ(page.find("@TITLE@"), std::string::npos);
    EXPECT_EQ(page.find("@CHUNKS@"), std::string::npos);
}

TEST(Page, OfOneFileHasScriptAndStyleInIt) {
    auto const [before, behind] = single_page("T");
    auto const files = page_files();
    auto const script = "<script>" + std::string(files.script) + "</script>";
    auto const style = "<style>" + std::string(files.style) + "</style>";
    auto       rest = before + behind;
    for (std::string const& part : {script, style}) {
        ASSERT_NE(rest.find(part), std::string::npos);
        rest.erase(rest.find(part), part.size());
    }
    for (char const* const loaded : {"'self'", "src=", "href=", "@"})
        EXPECT_EQ(rest.find(loaded), std::string::npos) << loaded;
}

}  // namespace

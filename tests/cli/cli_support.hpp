#pragma once
// Shared by the tests of the command.

#include "run.hpp"
#include "sarif/reader.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace cli_test {

namespace fs = std::filesystem;

inline fs::path fixture(std::string const& name) { return fs::path(BRADEP_FIXTURES) / name; }

inline std::string bytes_of(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void write_bytes(fs::path const& path, std::string const& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

/// A new temporary directory, which the destructor removes.
class Scratch {
public:
    Scratch() {
        std::string pattern = (fs::temp_directory_path() / "bradep-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("no scratch directory");
        path_ = pattern;
    }
    ~Scratch() { fs::remove_all(path_); }
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;

    fs::path                 operator/(std::string const& name) const { return path_ / name; }
    fs::path const&          path() const { return path_; }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(path_))
            names.push_back(entry.path().filename());
        return names;
    }

private:
    fs::path path_;
};

struct Outcome {
    int         code;
    std::string out;
    std::string err;
};

inline Outcome run_command(std::vector<std::string> const& args, std::string const& input = "") {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    int const          code = bradep::run(args, in, out, err);
    return {code, out.str(), err.str()};
}

inline std::string log_with(std::string const& results) {
    return R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "Tool"}}, "results": [)" +
           results + "]}]}";
}

inline std::vector<bradep::sarif::Result> results_of(std::string const& log) {
    std::vector<bradep::sarif::Result> results;
    bradep::sarif::read_log(log, "log", 0,
                            [&](auto&& result) { results.push_back(std::move(result)); });
    return results;
}

/// The well-formed logs among the fixtures.
inline std::vector<fs::path> sound_logs() {
    std::vector<fs::path> logs;
    for (auto const& entry : fs::directory_iterator(BRADEP_FIXTURES))
        if (!entry.path().filename().string().starts_with("bad-")) logs.push_back(entry.path());
    return logs;
}

}  // namespace cli_test

// Runs the libraries on the benchmarks' kind of data, for a build that records which branches their
// code takes (cmake/Profile.cmake). The data has another seed than the benchmarks have.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include <sml/inspect/verify.hpp>
#include "bench/workload.hpp"

#include <cstdio>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using Graph = sml::Application_Results::T_Application_Results;

constexpr std::uint64_t seed = 7;
constexpr std::size_t   small = 1'000;
constexpr std::size_t   large = 10'000;

void expect(bool holds, char const* what) {
    if (!holds) throw std::logic_error(what);
}

std::string serialise(Graph const& graph) {
    using namespace sml;
    std::string const bytes = Application_Results_Application_Results_fromCxx(graph);

    Graph copy;
    Application_Results_Application_Results_toCxx(copy, bytes.data());
    expect(copy == graph, "what was read is not what was written");
    static_cast<void>(copy < graph);

    std::stringstream stream(std::ios::in | std::ios::out | std::ios::binary);
    Application_Results_Application_Results_toStream(graph, stream);
    Graph streamed;
    Application_Results_Application_Results_fromStream(streamed, stream);
    expect(stream.good() && streamed == graph,
           "what was read from a stream is not what was written");
    return bytes;
}

void inspect(std::string const& bytes) {
    using namespace sml::inspect;
    Root const& root = *find_root("Application_Results_Application_Results");
    expect(verify(root, bytes).answer == Answer::good, "the workload is not good");

    std::ostringstream json;
    dump(root, bytes, json);
    std::ostringstream again;
    expect(!encode(std::move(json).str(), again).error, "the dump can't be encoded");
    expect(std::move(again).str() == bytes, "the dump encodes other bytes");
    digest(root, bytes);
}

}  // namespace

int main() try {
    for (std::size_t const checks : {small, large}) {
        serialise(bench::workload_with_payloads(checks, seed));
        inspect(serialise(bench::workload(checks, seed)));
    }
} catch (std::exception const& error) {
    std::fprintf(stderr, "record_profile: %s\n", error.what());
    return 1;
}

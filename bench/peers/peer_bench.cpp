// Times one way to carry the workload, in a process of its own:
//
//   peer_bench PEER CHECKS ROUNDS
//
// prints the peer's name, the number of its bytes and, in nanoseconds a check, the first encoding
// and decoding, then the medians of as many more. What is decoded must be the graph that was
// encoded.

#include "bench/peers/peer.hpp"
#include "bench/plain/equal.hpp"
#include "bench/workload.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

using namespace peers;
using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

double median(std::vector<double>& times) {
    auto const middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

void run(Peer const& peer, std::size_t checks, int rounds) {
    Graph const         graph = bench::workload(checks);
    std::size_t         size = 0;
    std::vector<double> encode;
    std::vector<double> decode;
    for (int round = 0; round <= rounds; ++round) {
        auto start = Clock::now();
        size = peer.encode(graph);
        encode.push_back(since(start));
        std::optional<Graph> read(std::in_place);
        start = Clock::now();
        peer.decode(*read);
        decode.push_back(since(start));
        if (round == 0 && !plain::equal(graph, *read))
            throw std::runtime_error(std::string(peer.name) + " changes the graph");
    }
    auto const   each = 1 / static_cast<double>(checks);
    double const first_encode = encode.front() * each;
    double const first_decode = decode.front() * each;
    encode.erase(encode.begin());
    decode.erase(decode.begin());
    std::printf("%s %zu %.0f %.0f %.0f %.0f\n", peer.name, size, first_encode, first_decode,
                median(encode) * each, median(decode) * each);
}

}  // namespace

int main(int argc, char** argv) {
    Peer const all[] = {library(),      plain_reference(), cereal_binary(),
                        boost_binary(), protobuf(),        flatbuffers()};
    if (argc == 4) {
        for (Peer const& peer : all) {
            if (std::string_view(peer.name) != argv[1]) continue;
            run(peer, std::strtoull(argv[2], nullptr, 10), std::atoi(argv[3]));
            return 0;
        }
    }
    std::fprintf(stderr, "usage: peer_bench PEER CHECKS ROUNDS\nthe peers:");
    for (Peer const& peer : all) std::fprintf(stderr, " %s", peer.name);
    std::fprintf(stderr, "\n");
    return 2;
}

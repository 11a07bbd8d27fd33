// Measures the machine itself with the same number of bytes and nodes as a result set: these are
// lower bounds of the time of any way to write and read one.

#include "bench/prepared.hpp"
#include "bench/scratch_file.hpp"
#include "bench/walk.hpp"

#include <sml/bindings/bindings.hpp>

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <type_traits>
#include <vector>

namespace {

using bench::Prepared;

Prepared const& data_of(benchmark::State const& state) {
    return bench::prepared(static_cast<std::size_t>(state.range(0)));
}

void copy_warm(benchmark::State& state) {
    auto const&       data = data_of(state);
    std::vector<char> target(data.bytes().size());
    for ([[maybe_unused]] auto const round : state) {
        std::memcpy(target.data(), data.bytes().data(), data.bytes().size());
        benchmark::ClobberMemory();
    }
    bench::report(state, data);
}

void copy_to_fresh_pages(benchmark::State& state) {
    auto const&       data = data_of(state);
    std::size_t const size = data.bytes().size();
    for ([[maybe_unused]] auto const round : state) {
        void* const target =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (target == MAP_FAILED) return state.SkipWithError("no memory");
        std::memcpy(target, data.bytes().data(), size);
        benchmark::ClobberMemory();
        state.PauseTiming();
        ::munmap(target, size);
        state.ResumeTiming();
    }
    bench::report(state, data);
}

void copy_to_file(benchmark::State& state) {
    auto const&               data = data_of(state);
    bench::Scratch_File const file;
    for ([[maybe_unused]] auto const round : state) {
        std::ofstream stream(file.path(), std::ios::binary);
        stream << data.bytes();
        stream.close();
        if (!stream) state.SkipWithError("the file could not be written");
    }
    bench::report(state, data);
}

/// The sizes of all blocks of the heap that a value owns, in the order of `walk`.
struct Node_Sizes {
    template <class T>
    void operator()(T const& part) {
        using namespace sml::core;
        constexpr std::size_t word = sizeof(void*);
        if constexpr (Boxed<T>) {
            add(sizeof *part);
        } else if constexpr (List<T> || Set<T> || Map<T>) {
            constexpr std::size_t links = HashSet<T> || HashMap<T> ? 2 : List<T> ? 2 : 4;
            for (std::size_t left = part.size(); left > 0; --left)
                add(sizeof(typename T::value_type) + links * word);
        } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
            if (auto const limbs = mpz_size(part.backend().data()); limbs > 0) add(limbs * word);
        } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
            auto const bits = static_cast<std::size_t>(mpfr_get_prec(part.number()));
            add((bits + 63) / 64 * word + word);
        }
    }

    void add(std::size_t size) { sizes.push_back(static_cast<std::uint32_t>(size)); }

    std::vector<std::uint32_t> sizes;
};

/// Allocates nodes of the same number and sizes, links each to the previous one and writes to all
/// their bytes.
void make_nodes(benchmark::State& state) {
    struct Node {
        Node* before;
    };
    auto const& data = data_of(state);
    Node_Sizes  nodes;
    bench::walk(data.value, nodes);
    for ([[maybe_unused]] auto const round : state) {
        Node* latest = nullptr;
        for (std::uint32_t const size : nodes.sizes) {
            auto* const node = static_cast<Node*>(std::malloc(size));
            if (node == nullptr) return state.SkipWithError("no memory");
            std::memset(node, 1, size);
            node->before = latest;
            latest = node;
        }
        benchmark::ClobberMemory();
        state.PauseTiming();
        while (latest != nullptr) {
            Node* const before = latest->before;
            std::free(latest);
            latest = before;
        }
        state.ResumeTiming();
    }
    bench::report(state, data);
    state.counters["nodes"] =
        static_cast<double>(nodes.sizes.size()) / static_cast<double>(state.range(0));
}

/// Adds up all leaves. For numbers, it reads a limb.
struct Sum {
    template <class T>
    void operator()(T const& part) {
        using namespace sml::core;
        if constexpr (Word<T> || std::is_same_v<T, bool>) {
            total += static_cast<std::uint64_t>(part);
        } else if constexpr (std::is_same_v<T, sml::Strings_T>) {
            total += reinterpret_cast<std::uintptr_t>(&part.str());
        } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
            total += mpz_get_ui(part.backend().data());
        } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
            total += part.width + *part.number()->_mpfr_d;
        }
    }

    std::uint64_t total = 0;
};

/// Reads both of two equal graphs once, which is the least that `==` has to do.
void read_both(benchmark::State& state) {
    auto const&                                     data = data_of(state);
    sml::Application_Results::T_Application_Results other;
    sml::Application_Results_Application_Results_toCxx(other, data.bytes().data());
    for ([[maybe_unused]] auto const round : state) {
        Sum sum;
        bench::walk(data.value, sum);
        bench::walk(other, sum);
        benchmark::DoNotOptimize(sum.total);
    }
    bench::report(state, data);
}

enum class Order { table, address };

/// Reads all infos, the largest entries of the graph, in the order of their table, as a writer has
/// to, or by their addresses.
template <Order order>
void read_infos(benchmark::State& state) {
    auto const& data = data_of(state);
    using Entry = std::remove_cvref_t<decltype(*data.value.infos.begin())>;
    std::vector<Entry const*> entries;
    for (Entry const& entry : data.value.infos) entries.push_back(&entry);
    if (order == Order::address) std::ranges::sort(entries, std::less<>());
    for ([[maybe_unused]] auto const round : state) {
        Sum sum;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (i + 1 < entries.size()) sml::core::prefetch(*entries[i + 1]);
            bench::walk(*entries[i], sum);
        }
        benchmark::DoNotOptimize(sum.total);
    }
    bench::report(state, data);
}

BENCHMARK(copy_warm)->Name("limit/copy_warm")->Apply(bench::sizes);
BENCHMARK(copy_to_fresh_pages)->Name("limit/copy_to_fresh_pages")->Apply(bench::sizes);
BENCHMARK(copy_to_file)->Name("limit/copy_to_file")->Apply(bench::sizes);
BENCHMARK(make_nodes)->Name("limit/make_nodes")->Apply(bench::sizes);
BENCHMARK(read_both)->Name("limit/read_both")->Apply(bench::sizes);
BENCHMARK(read_infos<Order::table>)->Name("limit/read_infos")->Apply(bench::sizes);
BENCHMARK(read_infos<Order::address>)->Name("limit/read_infos_by_address")->Apply(bench::sizes);

}  // namespace

// Measures one call in a fresh process, its time and its memory:
//
//   bench_once encode FILE
//   bench_once decode FILE
//
// FILE is written by make_workload. Prints one line of JSON: the time in nanoseconds; the size of
// the encoded form; four increases since before the call, in bytes: of the resident size, its peak,
// the heap and its peak; the number of allocations in the call and how many of them are left. Exit
// codes: 0 done, 1 not measured, 2 usage.

#include <sml/bindings/bindings.hpp>

#include <fcntl.h>
#include <gmp.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

/// Counts the heap of C++ and of the number libraries. Sizes are those of the allocator, which can
/// be larger than requested.
struct Heap {
    std::int64_t calls = 0;
    std::int64_t alive = 0;
    std::int64_t size = 0;
    std::int64_t peak = 0;

    void take(void* memory) {
        ++calls;
        ++alive;
        size += static_cast<std::int64_t>(malloc_usable_size(memory));
        peak = std::max(peak, size);
    }
    void give(void* memory) {
        if (memory == nullptr) return;
        --alive;
        size -= static_cast<std::int64_t>(malloc_usable_size(memory));
    }
};

Heap heap;

void* allocate(std::size_t size) {
    void* const memory = std::malloc(size);
    if (memory != nullptr) heap.take(memory);
    return memory;
}

void* reallocate(void* memory, std::size_t, std::size_t size) {
    heap.give(memory);
    void* const moved = std::realloc(memory, size);
    if (moved == nullptr) std::abort();
    heap.take(moved);
    return moved;
}

void release(void* memory, std::size_t) {
    heap.give(memory);
    std::free(memory);
}

}  // namespace

// Not inlined: otherwise the compiler would report malloc() and `delete` as a mismatched pair.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = allocate(std::max<std::size_t>(size, 1))) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { release(memory, 0); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t size) noexcept {
    release(memory, size);
}

namespace {

using Graph = sml::Application_Results::T_Application_Results;

/// A size of this process in /proc/self/status, in bytes.
std::int64_t system_figure(std::string_view name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name)) return std::stoll(line.substr(name.size())) * 1024;
    throw std::runtime_error("the system does not tell " + std::string(name));
}

/// Resets the resident peak to the present resident size.
void forget_peak() {
    std::ofstream file("/proc/self/clear_refs");
    if (!(file << "5" << std::flush))
        throw std::runtime_error("the system does not start a peak anew");
}

/// Maps a file and makes all its bytes resident.
std::string_view mapped(char const* path) {
    int const   file = ::open(path, O_RDONLY | O_CLOEXEC);
    struct stat about {};
    if (file < 0 || ::fstat(file, &about) != 0) throw std::runtime_error("cannot read the file");
    auto const  size = static_cast<std::size_t>(about.st_size);
    void* const bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
    ::close(file);
    if (bytes == MAP_FAILED) throw std::runtime_error("cannot map the file");
    return {static_cast<char const*>(bytes), size};
}

/// Measures one call, which must return the number of encoded bytes.
void measure(std::function<std::size_t()> const& call) {
    using Clock = std::chrono::steady_clock;
    malloc_trim(0);
    forget_peak();
    auto const resident = system_figure("VmRSS:");
    heap.peak = heap.size;
    Heap const before = heap;
    auto const start = Clock::now();
    auto const size = call();
    auto const time = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    Heap const after = heap;
    auto const peak = system_figure("VmHWM:");
    std::printf(R"({"ns": %.0f, "bytes": %zu, "resident": %lld, "resident_peak": %lld, )"
                R"("heap": %lld, "heap_peak": %lld, "allocations": %lld, "allocations_kept": %lld})"
                "\n",
                time, size, static_cast<long long>(system_figure("VmRSS:") - resident),
                static_cast<long long>(peak - resident),
                static_cast<long long>(after.size - before.size),
                static_cast<long long>(after.peak - before.size),
                static_cast<long long>(after.calls - before.calls),
                static_cast<long long>(after.alive - before.alive));
}

}  // namespace

int main(int argc, char** argv) try {
    std::string_view const what = argc == 3 ? argv[1] : "";
    if (what != "encode" && what != "decode") {
        std::fputs("usage: bench_once encode|decode FILE\n", stderr);
        return 2;
    }
    mp_set_memory_functions(
        [](std::size_t size) {
            void* const memory = allocate(size);
            if (memory == nullptr) std::abort();
            return memory;
        },
        reallocate, release);

    auto const bytes = mapped(argv[2]);
    auto const graph = std::make_unique<Graph>();
    auto const read = [&] {
        sml::Application_Results_Application_Results_toCxx(*graph, bytes.data());
        return bytes.size();
    };
    if (what == "decode") {
        measure(read);
    } else {
        read();
        ::munmap(const_cast<char*>(bytes.data()), bytes.size());
        measure(
            [&] { return sml::Application_Results_Application_Results_fromCxx(*graph).size(); });
    }
    std::fflush(stdout);
    std::_Exit(0);  // without destroying the graph
} catch (std::exception const& error) {
    std::fprintf(stderr, "bench_once: %s\n", error.what());
    return 1;
}

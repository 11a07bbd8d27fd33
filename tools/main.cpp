#include "errors.hpp"
#include "output_file.hpp"
#include "run.hpp"

#include <gmp.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

// The number libraries know no failure: where memory ends they would abort. The command ends as it
// does where memory ends elsewhere. What it was writing has no name yet, or is removed by name.
[[noreturn]] void end_without_memory() {
    constexpr std::string_view  message = "bradep: out of memory\n";
    [[maybe_unused]] auto const written = ::write(STDERR_FILENO, message.data(), message.size());
    bradep::remove_temporary_file();
    ::_exit(bradep::exit_usage_or_io);
}

void* allocate(std::size_t size) {
    if (void* const memory = std::malloc(size)) return memory;
    end_without_memory();
}
void* reallocate(void* memory, std::size_t, std::size_t size) {
    if (void* const moved = std::realloc(memory, size)) return moved;
    end_without_memory();
}
void release(void* memory, std::size_t) { std::free(memory); }

}  // namespace

int main(int argc, char** argv) {
    ::mp_set_memory_functions(allocate, reallocate, release);
    std::ios::sync_with_stdio(false);
    // Another thread shows progress on standard error: what it writes must not flush what this one
    // prints.
    std::cin.tie(nullptr);
    std::cerr.tie(nullptr);
    return bradep::run({argv + 1, argv + argc}, std::cin, std::cout, std::cerr);
}

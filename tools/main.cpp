#include "errors.hpp"
#include "output_file.hpp"
#include "run.hpp"

#include <gmp.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

// The number libraries can't report a failed allocation: they would abort. The command ends instead
// with the code and message of any other lack of memory. An output file that is being written has
// no name yet, or is removed by its name.
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
    // Patterns for file names and typed lines are UTF-8, whatever the locale; numbers stay as in
    // "C".
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::ios::sync_with_stdio(false);
    // Another thread shows progress on standard error. A tied stream would make its writes flush
    // standard output while this thread prints there.
    std::cin.tie(nullptr);
    std::cerr.tie(nullptr);
    return bradep::run({argv + 1, argv + argc}, std::cin, std::cout, std::cerr);
}

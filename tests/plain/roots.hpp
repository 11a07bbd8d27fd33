#pragma once
// Every root with its functions in the library and in the reference implementation.

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace plain_test {

using Object = std::shared_ptr<void>;

struct Root {
    std::string_view stem;
    Object (*make)();
    /// A random value from this seed, with at most `elements` elements in each container.
    Object (*random)(std::uint64_t seed, int elements);

    void (*assign)(void* target, void const* source);

    std::string (*write)(void const* value);
    /// The result string itself, which the next call of any root replaces.
    std::string const& (*write_result)(void const* value);
    void (*read)(void* value, char const* bytes);
    void (*write_to)(void const* value, std::ostream& stream);
    void (*read_from)(void* value, std::istream& stream);

    std::string (*plain_write)(void const* value);
    std::string const& (*plain_write_result)(void const* value);
    void (*plain_read)(void* value, char const* bytes);
    void (*plain_write_to)(void const* value, std::ostream& stream);
    void (*plain_read_from)(void* value, std::istream& stream);
};

std::vector<Root> const& roots();

}  // namespace plain_test

#pragma once
// What a reader keeps of tables in which a later value is read over an earlier one.

#include <sml/inspect/memory.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/verify.hpp>

#include <memory_resource>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Bytes of the value that a reader has of bytes that verified as not unsafe, with the same
/// options: no key or element is there twice, each string is written in full where it is met first,
/// under the next id. Numbers and flags stay spelled as they are. Entries stand in the order in
/// which their keys are met first. Takes the memory of the bytes once more, and of each open set or
/// table some 100 bytes an entry, from the budget.
std::pmr::string bytes_kept(Root const& root, std::string_view bytes, VerifyOptions const& options,
                            Budget& budget);

}  // namespace sml::inspect

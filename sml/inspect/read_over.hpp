#pragma once
// The value that a reader makes of bytes with maps in which values are read over earlier ones.

#include <sml/inspect/memory.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/verify.hpp>

#include <memory_resource>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Returns bytes of the value that a reader makes of `bytes`. These must have been verified as not
/// unsafe, with the same options. In the result no key or element is repeated, and each string is
/// defined where it occurs first, with the next id. Numbers and flags keep their spelling. Entries
/// are in the order in which their keys first occur. From the budget it takes as many bytes as
/// `bytes` has, and some 100 bytes for each entry of the open sets and maps.
std::pmr::string bytes_kept(Root const& root, std::string_view bytes, VerifyOptions const& options,
                            Budget& budget);

}  // namespace sml::inspect

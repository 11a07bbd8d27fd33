#pragma once
// Ways to write and read a result set, all measured in the same way.

#include <sml/schema/Application_Results.hpp>

#include <cstddef>
#include <functional>

namespace bench {

using Graph = sml::Application_Results::T_Application_Results;

struct Serialiser {
    char const* name;
    /// Returns the number of bytes. The serialiser keeps the bytes until the next call.
    std::function<std::size_t(Graph const&)> encode;
    /// Reads the bytes of the last `encode` into a fresh graph.
    std::function<void(Graph&)> decode;
};

/// Registers the benchmarks NAME/encode and NAME/decode. Must be called before `main`. Returns
/// true.
bool add_serialiser(Serialiser serialiser);

}  // namespace bench

#pragma once
// Ways to carry a result set to bytes and back, all timed alike.

#include <sml/schema/Application_Results.hpp>

#include <cstddef>
#include <functional>

namespace bench {

using Graph = sml::Application_Results::T_Application_Results;

struct Serialiser {
    char const* name;
    /// Gives the number of bytes, which stay with the serialiser until the next call.
    std::function<std::size_t(Graph const&)> encode;
    /// Reads what was encoded last into a fresh graph.
    std::function<void(Graph&)> decode;
};

/// Has the benchmarks NAME/encode and NAME/decode run. To be called before `main`; gives true.
bool add_serialiser(Serialiser serialiser);

}  // namespace bench

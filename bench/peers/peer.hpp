#pragma once
// What is measured of each way to carry a result set.

#include "schema/Application_Results.hpp"

#include <functional>
#include <string>

namespace peers {

using Graph = sml::Application_Results::T_Application_Results;

struct Peer {
    char const* name;
    /// Gives the number of bytes, which stay with the peer until the next call.
    std::function<std::size_t(Graph const&)> encode;
    /// Reads what was encoded last.
    std::function<void(Graph&)> decode;
};

Peer library();
Peer plain_reference();
Peer cereal_binary();
Peer boost_binary();
Peer protobuf();
Peer flatbuffers();

}  // namespace peers

#include "bench/peers/peer.hpp"
#include "bench/plain/plain.hpp"
#include "bindings/bindings.hpp"

namespace peers {

Peer library() {
    static char const* bytes = nullptr;
    return {"library",
            [](Graph const& graph) {
                auto const& result = sml::Application_Results_Application_Results_fromCxx(graph);
                bytes = result.data();
                return result.size();
            },
            [](Graph& graph) { sml::Application_Results_Application_Results_toCxx(graph, bytes); }};
}

Peer plain_reference() {
    static char const* bytes = nullptr;
    return {"plain",
            [](Graph const& graph) {
                auto const& result = plain::from_cxx(graph);
                bytes = result.data();
                return result.size();
            },
            [](Graph& graph) { plain::to_cxx(graph, bytes); }};
}

}  // namespace peers

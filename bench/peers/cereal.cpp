#include "bench/peers/graph_form.hpp"
#include "bench/serialisers.hpp"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>

#include <sstream>

namespace peers {

namespace {

template <class Archive>
struct Form {
    template <class T>
    void word(T&& value) {
        archive(value);
    }
    template <class T>
    void flag(T&& value) {
        archive(value);
    }
    template <class T>
    void text(T&& value) {
        archive(value);
    }
    void size(std::size_t const& count) {
        auto size = static_cast<cereal::size_type>(count);
        archive(cereal::make_size_tag(size));
        if constexpr (Archive::is_loading::value) const_cast<std::size_t&>(count) = size;
    }

    Archive& archive;
};

std::string bytes;

bool const is_added = bench::add_serialiser({"cereal",
                                             [](bench::Graph const& graph) {
                                                 std::ostringstream stream(std::ios::binary);
                                                 cereal::BinaryOutputArchive archive(stream);
                                                 Form<decltype(archive)>     form{archive};
                                                 Save{form}(graph);
                                                 bytes = std::move(stream).str();
                                                 return bytes.size();
                                             },
                                             [](bench::Graph& graph) {
                                                 InputBytes                 source(bytes);
                                                 std::istream               stream(&source);
                                                 cereal::BinaryInputArchive archive(stream);
                                                 Form<decltype(archive)>    form{archive};
                                                 Load{form}(graph);
                                             }});

}  // namespace

}  // namespace peers

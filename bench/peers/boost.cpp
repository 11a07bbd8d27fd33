#include "bench/peers/graph_form.hpp"
#include "bench/serialisers.hpp"

#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/collection_size_type.hpp>

#include <sstream>

namespace peers {

namespace {

struct Writing {
    template <class T>
    void word(T const& value) {
        archive << value;
    }
    void flag(bool value) { archive << value; }
    void text(std::string const& value) { archive << value; }
    void size(std::size_t count) {
        boost::serialization::collection_size_type const size(count);
        archive << size;
    }

    boost::archive::binary_oarchive& archive;
};

struct Reading {
    template <class T>
    void word(T& value) {
        archive >> value;
    }
    void flag(bool& value) { archive >> value; }
    void text(std::string& value) { archive >> value; }
    void size(std::size_t& count) {
        boost::serialization::collection_size_type size;
        archive >> size;
        count = size;
    }

    boost::archive::binary_iarchive& archive;
};

std::string bytes;

bool const is_added = bench::add_serialiser(
    {"boost",
     [](bench::Graph const& graph) {
         std::ostringstream stream(std::ios::binary);
         {
             boost::archive::binary_oarchive archive(stream, boost::archive::no_header);
             Writing                         form{archive};
             Save{form}(graph);
         }
         bytes = std::move(stream).str();
         return bytes.size();
     },
     [](bench::Graph& graph) {
         InputBytes                      source(bytes);
         boost::archive::binary_iarchive archive(source, boost::archive::no_header);
         Reading                         form{archive};
         Load{form}(graph);
     }});

}  // namespace

}  // namespace peers

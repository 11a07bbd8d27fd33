// Protocol Buffers as fast as it could be made: messages are in an arena that keeps its memory,
// each text is stored once in a table made by hand, and numbers are stored as limbs.

#include "bench/peers/message_form.hpp"
#include "bench/serialisers.hpp"

#include "graph.pb.h"

#include <google/protobuf/arena.h>

#include <stdexcept>
#include <vector>

namespace peers {

namespace {

struct Saver {
    std::uint32_t string(sml::Strings_T const& handle) { return numbers(handle); }

    TextNumbers numbers;
};

struct Loader {
    void string(std::uint32_t number, sml::Strings_T& handle) const { handle = strings[number]; }

    std::vector<sml::Strings_T> strings;
};

void save_float(form::Float& message, zelvanite::IEEE754Float const& value) {
    FloatWords const words = words_of(value);
    message.set_high(words.high);
    message.set_low(words.low);
    message.set_exponent(words.exponent);
    message.set_width(words.width);
    message.set_kind(words.kind);
}

void load_float(form::Float const& message, zelvanite::IEEE754Float& value) {
    set_float(value, {message.high(), message.low(), message.exponent(), message.width(),
                      static_cast<std::uint8_t>(message.kind())});
}

void load_integer(std::int64_t small, std::string const& large, sml::BigInteger& value) {
    set_integer(value, small, large.data(), large.size());
}

template <class Container, class Repeated, class SaveOne>
void save_each(Container const& container, Repeated& to, SaveOne const& save_one) {
    to.Reserve(static_cast<int>(container.size()));
    for (auto const& element : container) save_one(to, element);
}

#include "graph_messages.hpp"

std::vector<std::uint8_t> bytes;
std::size_t               bytes_used = 0;

/// Calls `use` with an empty message in an arena, which reuses the memory of the previous call.
template <class Use>
void with_message(Use const& use) {
    static std::vector<char>       block(std::size_t{1} << 20);
    google::protobuf::ArenaOptions options;
    options.initial_block = block.data();
    options.initial_block_size = block.size();
    options.max_block_size = std::size_t{1} << 20;
    std::size_t used = 0;
    {
        google::protobuf::Arena arena(options);
        use(*google::protobuf::Arena::CreateMessage<form::Graph>(&arena));
        used = arena.SpaceAllocated();
    }
    if (used > block.size()) block = std::vector<char>(used + used / 8);
}

void write(form::Graph const& message) {
    bytes_used = message.ByteSizeLong();
    if (bytes.size() < bytes_used) bytes.resize(bytes_used);
    message.SerializeWithCachedSizesToArray(bytes.data());
}

void read(form::Graph& message) {
    if (!message.ParseFromArray(bytes.data(), static_cast<int>(bytes_used)))
        throw std::runtime_error("the message can't be parsed");
}

bool const is_added = bench::add_serialiser(
    {"protobuf",
     [](bench::Graph const& graph) {
         with_message([&](form::Graph& message) {
             Saver saver;
             save_root(saver, *message.mutable_root(), graph);
             auto const& texts = saver.numbers.texts();
             message.mutable_strings()->Reserve(static_cast<int>(texts.size()));
             for (std::string const* text : texts) message.add_strings(*text);
             write(message);
         });
         return bytes_used;
     },
     [](bench::Graph& graph) {
         with_message([&](form::Graph& message) {
             read(message);
             Loader loader;
             loader.strings.reserve(static_cast<std::size_t>(message.strings_size()));
             for (auto const& text : message.strings()) loader.strings.emplace_back(text);
             load_root(loader, message.root(), graph);
         });
     }});

}  // namespace

}  // namespace peers

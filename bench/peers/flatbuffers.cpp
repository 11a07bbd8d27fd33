// FlatBuffers as fast as it could be made: the builder keeps its memory, structs and unions are
// used where they fit, each text is stored once in a table made by hand, and numbers are stored as
// limbs. Bytes are verified before they are read.

#include "bench/peers/message_form.hpp"
#include "bench/serialisers.hpp"

#include "graph_tables_generated.h"

#include <limits>
#include <stdexcept>
#include <vector>

namespace peers {

namespace {

struct Saver {
    std::uint32_t string(sml::Strings_T const& handle) { return numbers(handle); }

    flatbuffers::FlatBufferBuilder&        builder;
    std::vector<flatbuffers::Offset<void>> waiting;  // elements of the vectors that are being made
    TextNumbers                            numbers;
};

struct Loader {
    void string(std::uint32_t number, sml::Strings_T& handle) const { handle = strings[number]; }

    std::vector<sml::Strings_T> strings;
};

/// The type and value of the union that a variant is stored as.
struct Arm {
    std::uint8_t              type = 0;
    flatbuffers::Offset<void> payload;
};

tables::Float save_float(zelvanite::IEEE754Float const& value) {
    FloatWords const words = words_of(value);
    return {words.high, words.low, words.exponent, static_cast<std::uint16_t>(words.width),
            words.kind};
}

void load_float(tables::Float const& from, zelvanite::IEEE754Float& value) {
    set_float(value, {from.high(), from.low(), from.exponent(), from.width(), from.kind()});
}

using Strings = flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<flatbuffers::String>>>;
using Bytes = flatbuffers::Vector<std::uint8_t>;

flatbuffers::Offset<Bytes> save_large(Saver& s, sml::BigInteger const& value) {
    if (is_small(value)) return 0;
    std::string bytes;
    append_large(bytes, value);
    return s.builder.CreateVector(reinterpret_cast<std::uint8_t const*>(bytes.data()),
                                  bytes.size());
}

void load_integer(std::int64_t small, Bytes const* large, sml::BigInteger& value) {
    if (large == nullptr)
        set_integer(value, small, nullptr, 0);
    else
        set_integer(value, 0, reinterpret_cast<char const*>(large->data()), large->size());
}

// The functions below write nothing for an empty container.

template <class Container, class SaveOne>
auto save_words(Saver& s, Container const& container, SaveOne const& save_one) {
    using Word = std::remove_cvref_t<decltype(save_one(*container.begin()))>;
    flatbuffers::Offset<flatbuffers::Vector<Word>> saved;
    if (container.empty()) return saved;
    Word* to = nullptr;
    saved = s.builder.CreateUninitializedVector(container.size(), &to);
    for (auto const& element : container) *to++ = save_one(element);
    return saved;
}

template <class Struct, class Container, class SaveOne>
auto save_structs(Saver& s, Container const& container, SaveOne const& save_one) {
    flatbuffers::Offset<flatbuffers::Vector<Struct const*>> saved;
    if (container.empty()) return saved;
    Struct* to = nullptr;
    saved = s.builder.CreateUninitializedVectorOfStructs(container.size(), &to);
    for (auto const& element : container) *to++ = save_one(element);
    return saved;
}

template <class Table, class Container, class SaveOne>
auto save_tables(Saver& s, Container const& container, SaveOne const& save_one) {
    flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<Table>>> saved;
    if (container.empty()) return saved;
    auto const first = s.waiting.size();
    for (auto const& element : container) s.waiting.push_back(save_one(element).Union());
    saved = s.builder.CreateVector(s.waiting.data() + first, container.size()).o;
    s.waiting.resize(first);
    return saved;
}

template <class Elements, class Container, class LoadOne>
void load_each(Elements const* from, Container& container, LoadOne const& load_one) {
    if (from == nullptr) return;
    reserve(container, from->size());
    for (auto const element : *from) load_one(element);
}

#include "graph_tables.hpp"

flatbuffers::FlatBufferBuilder& builder() {
    static auto kept = [] {
        flatbuffers::FlatBufferBuilder made(std::size_t{1} << 20);
        // Each table has its own vtable: the linear search for an equal one took four times as long
        // as everything else, and reduced the bytes to 0.7 of their number.
        made.DedupVtables(false);
        return made;
    }();
    return kept;
}

tables::Graph const& verified() {
    constexpr auto                 any = std::numeric_limits<flatbuffers::uoffset_t>::max();
    flatbuffers::Verifier::Options limits;
    limits.max_depth = 1000;
    limits.max_tables = any;
    flatbuffers::Verifier verifier(builder().GetBufferPointer(), builder().GetSize(), limits);
    if (!tables::VerifyGraphBuffer(verifier))
        throw std::runtime_error("the buffer can't be verified");
    return *tables::GetGraph(builder().GetBufferPointer());
}

bool const is_added =
    bench::add_serialiser({"flatbuffers",
                           [](bench::Graph const& graph) {
                               builder().Clear();
                               Saver      saver{builder(), {}, {}};
                               auto const root = save_root(saver, graph);
                               for (std::string const* text : saver.numbers.texts())
                                   saver.waiting.push_back(builder().CreateString(*text).Union());
                               Strings const strings = builder().CreateVector(saver.waiting).o;
                               builder().Finish(tables::CreateGraph(builder(), strings, root));
                               return std::size_t{builder().GetSize()};
                           },
                           [](bench::Graph& graph) {
                               tables::Graph const& from = verified();
                               Loader               loader;
                               loader.strings.reserve(from.strings()->size());
                               for (auto const* text : *from.strings())
                                   loader.strings.emplace_back(text->str());
                               load_root(loader, *from.root(), graph);
                           }});

}  // namespace

}  // namespace peers

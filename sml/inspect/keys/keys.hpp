#pragma once
// The keys of sets and maps, and the elements of sets, in bytes that have been walked before: their
// hashes, which of them are equal, and how paths show them.

#include <sml/inspect/memory.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/string_table.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Keys by the offsets where they start.
class Keys {
public:
    /// All of these live as long as this.
    Keys(std::string_view bytes, StringTable const& strings, Budget& budget)
        : bytes_(bytes), strings_(strings), budget_(budget) {}

    /// A hash of a key; `no_hash` for one that equals no other, as it holds a negative tag.
    std::uint64_t hash(Type const& type, std::uint64_t offset) const;

    static constexpr std::uint64_t no_hash = 0;

    /// The hash that a reader's table has for a key, where the strings are passed on to a model.
    struct ReadersHash {
        std::uint64_t hash;
        bool          equals_none;
    };
    ReadersHash readers_hash(Type const& type, std::uint64_t offset) const;

    struct Compared {
        bool          are_equal;
        std::uint64_t bytes;  // of one of them that were looked at
    };
    Compared compare(Type const& type, std::uint64_t a, std::uint64_t b) const;
    bool     are_equal(Type const& type, std::uint64_t a, std::uint64_t b) const {
            return compare(type, a, b).are_equal;
    }

    /// As paths show it, as in `("src/a.c",3)`.
    std::string text(Type const& type, std::uint64_t offset) const;

    /// Where the text of a key stands that is a string: one place for equal texts, behind the
    /// offset where the text is written there for the first time. None for the empty text.
    std::optional<std::uint64_t> text_place(std::uint64_t offset) const;

private:
    class Cursor;
    class Digits;
    struct HashSink;
    struct ReadersHashSink;
    struct EqualSink;
    struct TextSink;

    std::string_view   bytes_;
    StringTable const& strings_;
    Budget&            budget_;
};

}  // namespace sml::inspect

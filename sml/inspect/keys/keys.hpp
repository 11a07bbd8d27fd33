#pragma once
// The keys of maps and the elements of sets, in bytes that have been walked: their hashes, which of
// them are equal, and how paths show them.

#include <sml/inspect/memory.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/string_table.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Reads keys at the offsets where they start.
class Keys {
public:
    /// All arguments must outlive this object.
    Keys(std::string_view bytes, StringTable const& strings, Budget& budget)
        : bytes_(bytes), strings_(strings), budget_(budget) {}

    /// Returns a hash of a key, which depends on the random seed of the process; `no_hash` for a
    /// key with a negative tag in it, which equals no other.
    std::uint64_t hash(Type const& type, std::uint64_t offset) const;

    static constexpr std::uint64_t no_hash = 0;

    /// The hash that a key has in a reader's hash table. Requires that `StringTable::model_reader`
    /// was called, which makes the hashes of the texts those of a reader.
    struct ReadersHash {
        std::uint64_t hash;
        bool          equals_none;  ///< there is a negative tag in it
    };
    ReadersHash readers_hash(Type const& type, std::uint64_t offset) const;

    struct Compared {
        bool          are_equal;
        std::uint64_t bytes;  // how many bytes of `a` were read
    };
    Compared compare(Type const& type, std::uint64_t a, std::uint64_t b) const;
    bool     are_equal(Type const& type, std::uint64_t a, std::uint64_t b) const {
            return compare(type, a, b).are_equal;
    }

    /// The key as paths show it, as in `("src/a.c",3)`.
    std::string text(Type const& type, std::uint64_t offset) const;

    /// For a key that is a string: the offset of the first definition of its text, at the length
    /// word. Equal texts have the same one. It is greater than `offset` if and only if the key is
    /// that definition. None for the empty text.
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

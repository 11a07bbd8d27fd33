#pragma once
// Interned strings: one machine word a handle, one counted entry a distinct text.
//
// Nothing here may be used by two threads at once, and no handle may outlive `main`: the table is
// destroyed at exit.

#include <sml/core/export.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <unordered_set>

namespace sml {

namespace core {
enum class Counting;
template <Counting>
class StringsById;
}  // namespace core

/// A handle to an interned string, which shares ownership of the text's entry in the string table.
/// The null handle is the empty text. Copies share the entry; equality and order are those of the
/// entry's address, so the order is not alphabetical and differs from process to process.
class Strings_T {
public:
    /// An entry of the string table: a distinct text, not empty, and the number of its handles.
    struct StringWithRefCount {
        std::string           str;  // first member: the text's address is the entry's address
        std::uint64_t         hash{};
        mutable std::uint64_t count{};

        bool operator==(StringWithRefCount const& other) const noexcept {
            return hash == other.hash && str.size() == other.str.size() &&
                   std::memcmp(str.data(), other.str.data(), str.size()) == 0;
        }
    };

    /// Returns the stored hash; never reads the text.
    struct StringWithRefCountHash {
        std::size_t operator()(StringWithRefCount const& entry) const { return entry.hash; }
    };

    /// The process-wide string table. It owns the entries, whose addresses never change.
    SML_API static std::unordered_set<StringWithRefCount, StringWithRefCountHash,
                                      std::equal_to<StringWithRefCount>>
        fAllStrings;

    Strings_T() noexcept = default;
    Strings_T(std::string const& text) { setStr(text); }

    // No move: a moved-from record is required to keep its strings.
    Strings_T(Strings_T const& other) noexcept : fStr(other.fStr) { retain(); }

    Strings_T& operator=(Strings_T const& other) {
        if (fStr == other.fStr) return *this;
        release();
        fStr = other.fStr;
        retain();
        return *this;
    }

    /// Releases the present entry and interns `text`, which may be this handle's own `str()`. If
    /// that throws `std::bad_alloc`, the handle is null.
    Strings_T& operator=(std::string const& text) {
        if (static_cast<void const*>(fStr) == static_cast<void const*>(&text)) return *this;
        release();
        setStr(text);
        return *this;
    }

    ~Strings_T() { release(); }

    /// Points the handle to the entry of `text`, which is added if there is none; the empty text
    /// gives the null handle. The present entry is not released: the caller does that first.
    /// Throws `std::bad_alloc`, and then leaves the handle as it was.
    SML_API void setStr(std::string const& text);

    /// The text, owned by the entry: valid as long as some handle to it lives.
    std::string const& str() const {
        static std::string const emptyStr;
        return fStr == nullptr ? emptyStr : fStr->str;
    }

    /// The hash stored with the entry, 0 for the null handle.
    std::uint64_t hash() const noexcept { return fStr == nullptr ? 0 : fStr->hash; }

    bool operator==(Strings_T const& other) const noexcept { return fStr == other.fStr; }
    bool operator<(Strings_T const& other) const noexcept {
        return std::less<StringWithRefCount const*>{}(fStr, other.fStr);
    }

private:
    template <core::Counting>
    friend class core::StringsById;

    void retain() const noexcept {
        if (fStr != nullptr) ++fStr->count;
    }
    void release() {
        if (fStr != nullptr) release_entry();
    }
    [[gnu::noinline]] void release_entry() {
        if (--fStr->count == 0) fAllStrings.erase(*fStr);
        fStr = nullptr;
    }

    StringWithRefCount const* fStr = nullptr;
};

}  // namespace sml

template <>
struct std::hash<sml::Strings_T> {
    // Not noexcept: libstdc++ then stores the hash in each node of a hash table.
    std::size_t operator()(sml::Strings_T const& handle) const { return handle.hash(); }
};

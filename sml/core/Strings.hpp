#pragma once
// Interned text: one machine word per handle, one counted entry per distinct text.
//
// Nothing here is safe across threads, and no handle may outlive the library's exit handlers.

#include <sml/core/export.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <unordered_set>

namespace sml {

namespace core {
class StringsById;
}

/// A handle to an interned text. The null handle is the empty text. Copies share the entry;
/// equality and order are those of the entry's address, so the order is not alphabetical and
/// differs from process to process.
class Strings_T {
public:
    /// One distinct non-empty text with the number of handles that refer to it.
    struct StringWithRefCount {
        std::string           str;  // first member: the text's address is the entry's address
        std::uint64_t         hash{};
        mutable std::uint64_t count{};

        bool operator==(StringWithRefCount const& other) const noexcept {
            return hash == other.hash && str.size() == other.str.size() &&
                   std::memcmp(str.data(), other.str.data(), str.size()) == 0;
        }
    };

    /// Gives the stored hash; never reads text.
    struct StringWithRefCountHash {
        std::size_t operator()(StringWithRefCount const& entry) const { return entry.hash; }
    };

    /// The process-wide table. It owns the entries, which keep their address for their life.
    SML_API static std::unordered_set<StringWithRefCount, StringWithRefCountHash,
                                      std::equal_to<StringWithRefCount>>
        fAllStrings;

    Strings_T() noexcept = default;
    Strings_T(std::string const& text) { setStr(text); }

    // There is no stealing move: a moved-from record keeps its strings.
    Strings_T(Strings_T const& other) noexcept : fStr(other.fStr) { retain(); }

    Strings_T& operator=(Strings_T const& other) {
        if (fStr == other.fStr) return *this;
        release();
        fStr = other.fStr;
        retain();
        return *this;
    }

    /// Interns `text`. Assigning a handle from its own entry's text changes nothing.
    Strings_T& operator=(std::string const& text) {
        if (static_cast<void const*>(fStr) == static_cast<void const*>(&text)) return *this;
        release();
        setStr(text);
        return *this;
    }

    ~Strings_T() { release(); }

    /// Points the handle at the entry of `text`, making it when absent; the empty text gives the
    /// null handle. What was held is not released: the caller does that first. Throws
    /// `std::bad_alloc` and leaves the handle as it was.
    SML_API void setStr(std::string const& text);

    /// The text; valid as long as some handle to the entry lives.
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
    friend class core::StringsById;

    void retain() const noexcept {
        if (fStr != nullptr) ++fStr->count;
    }
    void release() {
        if (fStr != nullptr && --fStr->count == 0) fAllStrings.erase(*fStr);
        fStr = nullptr;
    }

    StringWithRefCount const* fStr = nullptr;
};

}  // namespace sml

template <>
struct std::hash<sml::Strings_T> {
    // Not noexcept: the standard table then keeps each node's hash beside it.
    std::size_t operator()(sml::Strings_T const& handle) const { return handle.hash(); }
};

#pragma once
// Reading bytes again that have been walked: nothing is checked.

#include <sml/inspect/wire/form.hpp>
#include <sml/inspect/wire/string_word.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sml::inspect {

/// A position in bytes. Functions that take something move it to the byte after that.
class WalkedBytes {
public:
    /// The bytes must outlive this object.
    explicit WalkedBytes(std::string_view bytes, std::uint64_t offset = 0) noexcept
        : start_(bytes.data()), offset_(offset) {}

    std::uint64_t offset() const noexcept { return offset_; }

    template <class Word>
    Word peek_word() const noexcept {
        return word_at<Word>(start_ + offset_);
    }
    template <class Word>
    Word take_word() noexcept {
        offset_ += sizeof(Word);
        return word_at<Word>(start_ + offset_ - sizeof(Word));
    }
    StringWord take_string_word() noexcept { return StringWord(take_word<std::int32_t>()); }

    bool take_flag() noexcept { return is_true_flag(start_[offset_++]); }

    std::string_view take(std::size_t size) noexcept {
        offset_ += size;
        return {start_ + (offset_ - size), size};
    }

    /// Takes a length word and as many bytes, and returns these.
    std::string_view take_block() noexcept {
        return take(static_cast<std::size_t>(take_word<std::int32_t>()));
    }

private:
    char const*   start_;
    std::uint64_t offset_;
};

/// Takes a value of a type, by calls of `taker`: `bytes(size)` takes so many bytes, `word` a word
/// and `flag` a flag, both of which return the value; `block` takes a length word and as many
/// bytes, and `string` a string. `container(type)` may take a whole list, set or map; if it takes
/// nothing, it returns false.
template <class Taker>
void take_value(Type const& type, Taker& taker) {
    switch (type.kind) {
        case Kind::int32:
        case Kind::uint32:
        case Kind::int64:
        case Kind::uint64:
        case Kind::flag:
        case Kind::flags:
        case Kind::enumeration:
        case Kind::reference: taker.bytes(type.least_size); return;
        case Kind::text:
        case Kind::number:
        case Kind::big_integer: taker.block(); return;
        case Kind::ieee_float:
            taker.block();
            taker.template word<std::int32_t>();
            return;
        case Kind::string: taker.string(); return;
        case Kind::optional:
            if (taker.flag()) take_value(*type.element, taker);
            return;
        case Kind::boxed: take_value(*type.element, taker); return;
        case Kind::variant:
            if (Arm const* const arm = type.with_payload(taker.template word<std::int32_t>()))
                take_value(*arm->payload, taker);
            return;
        case Kind::list:
        case Kind::set:
        case Kind::map:
            if (taker.container(type)) return;
            for (auto left = taker.template word<std::uint32_t>(); left > 0; --left) {
                if (type.key != nullptr) take_value(*type.key, taker);
                take_value(*type.element, taker);
            }
            return;
        case Kind::tuple:
        case Kind::record:
        case Kind::group:
            for (FlatPart const* part = type.flat;; ++part) {
                if (part->words_before > 0) taker.bytes(part->words_before);
                if (part->type == nullptr) return;
                take_value(*part->type, taker);
            }
    }
}

/// Passes over what `take_value` takes.
struct Skipper {
    WalkedBytes& at;

    void bytes(std::size_t size) { at.take(size); }

    template <class Word>
    Word word() {
        return at.take_word<Word>();
    }
    bool flag() { return at.take_flag(); }
    void block() { at.take_block(); }
    void string() {
        if (!at.take_string_word().refers()) at.take_block();
    }
    bool container(Type const&) { return false; }
};

}  // namespace sml::inspect

#pragma once
// Writes values in the wire form, as writers of objects do.

#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/wire/form.hpp>
#include <sml/inspect/wire/string_word.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sml::inspect {

/// Appends to an `Out`, which has `append(std::string_view)` and must outlive this object.
template <class Out>
class Writer {
public:
    explicit Writer(Out& out) : out_(out) {}

    /// A number, tag, enumerator or count.
    template <class Word>
    void word(Word word) {
        static_assert(sizeof word == 4 || sizeof word == 8);
        out_.append(std::string_view(reinterpret_cast<char const*>(&word), sizeof word));
    }

    void flag(bool is_true) {
        char const byte = flag_byte(is_true);
        out_.append(std::string_view(&byte, 1));
    }

    void block(std::string_view bytes) {
        length(bytes.size());
        out_.append(bytes);
    }

    void big_integer(std::string_view hexadecimal) {
        static constexpr std::string_view zeros("\0\0", 2);
        std::size_t const                 behind = zeros_behind(hexadecimal);
        length(hexadecimal.size() + behind);
        out_.append(hexadecimal);
        out_.append(zeros.substr(0, behind));
    }

    void ieee_float(std::string_view text, std::int32_t width) {
        block(text);
        word(width);
    }

    void reference(std::int32_t tag, std::uint64_t value) {
        word(tag);
        word(value);
    }

    /// Writes a string. If `id` is 0, the text has no id yet: `id` becomes the next one, from 1 on,
    /// and a definition is written. Else a back-reference is written.
    void string(std::string_view text, std::int32_t& id) {
        if (id != 0) return word(StringWord::reference(id).word());
        id = ++strings_;
        string_in_full(text, id);
    }

    void string_in_full(std::string_view text, std::int32_t id) {
        word(StringWord::in_full(id).word());
        block(text);
    }

private:
    void length(std::size_t bytes) { word(static_cast<std::int32_t>(bytes)); }

    Out&         out_;
    std::int32_t strings_ = 0;  // number of definitions
};

}  // namespace sml::inspect

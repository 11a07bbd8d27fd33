#include "tests/generic/node.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

namespace generic {

namespace {

using Texts = std::vector<std::string>;

std::string quoted(std::string const& text) { return std::to_string(text.size()) + ":" + text; }

std::string exact(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%a", value);
    return text;
}

std::string exact(zelvanite::IEEE754Float const& value) {
    char text[256];
    mpfr_snprintf(text, sizeof text, "%Ra", value.number());
    return text + ("/" + std::to_string(value.width));
}

std::string leaf_text(Node const& leaf) {
    switch (leaf.kind) {
        case Kind::int32: return std::to_string(leaf.as<std::int32_t>());
        case Kind::uint32: return std::to_string(leaf.as<std::uint32_t>());
        case Kind::int64: return std::to_string(leaf.as<std::int64_t>());
        case Kind::uint64: return std::to_string(leaf.as<std::uint64_t>());
        case Kind::flag: return leaf.as<bool>() ? "T" : "F";
        case Kind::real: return exact(leaf.as<double>());
        case Kind::text: return quoted(leaf.as<std::string>());
        case Kind::handle: return quoted(leaf.as<sml::Strings_T>().str());
        case Kind::big_integer: return leaf.as<sml::BigInteger>().str();
        case Kind::ieee_float: return exact(leaf.as<zelvanite::IEEE754Float>());
        default: return std::to_string(leaf.tag);
    }
}

bool is_set_or_map(Kind kind) { return kind >= Kind::sorted_set; }

std::string joined(Node const& value, Texts parts) {
    if (value.kind <= Kind::enumeration) return leaf_text(value);
    if (is_set_or_map(value.kind)) std::ranges::sort(parts);
    std::string text = value.kind == Kind::variant ? std::to_string(value.tag) : "";
    text += '(';
    for (std::string const& part : parts) text += part + ' ';
    text += ')';
    return text;
}

Texts texts_of(std::vector<Node> const& parts) {
    Texts texts;
    for (Node const& part : parts) texts.push_back(text_of(part));
    return texts;
}

Texts read_over_one_by_one(Node const& held, Node const& read) {
    Texts texts;
    for (std::size_t i = 0; i < read.parts.size(); ++i)
        texts.push_back(text_read_over(held.parts[i], read.parts[i]));
    return texts;
}

Texts appended(Node const& held, Node const& read) {
    Texts texts = texts_of(held.parts);
    for (std::string& text : texts_of(read.parts)) texts.push_back(std::move(text));
    return texts;
}

Texts united(Node const& held, Node const& read) {
    Texts texts = appended(held, read);
    std::ranges::sort(texts);
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

// The first entry of a key is kept, or its value is read over.
Texts united_by_key(Node const& held, Node const& read) {
    std::map<std::string, Node const*> held_entries;
    for (Node const& entry : held.parts) held_entries[text_of(entry.parts[0])] = &entry;
    Texts texts;
    for (Node const& entry : read.parts) {
        auto const known = held_entries.find(text_of(entry.parts[0]));
        if (known == held_entries.end()) {
            texts.push_back(text_of(entry));
        } else if (read.shape->last_wins) {
            texts.push_back(joined(entry, read_over_one_by_one(*known->second, entry)));
            held_entries.erase(known);
        }
    }
    for (auto const& [key, entry] : held_entries) texts.push_back(text_of(*entry));
    return texts;
}

template <class T>
T& changeable(Node const& node) {
    return *static_cast<T*>(const_cast<void*>(node.object));
}

template <class Word>
void change_word(Word& word, RandomValues& random) {
    using Bits = std::make_unsigned_t<Word>;
    auto bits = static_cast<Bits>(word);
    switch (random.below(4)) {
        case 0: bits = static_cast<Bits>(bits + 1); break;
        case 1: bits = static_cast<Bits>(bits - 1); break;
        case 2: bits = static_cast<Bits>(~bits); break;
        default:
            bits ^= static_cast<Bits>(Bits{1} << random.below(std::numeric_limits<Bits>::digits));
    }
    word = static_cast<Word>(bits);
}

void change_float(zelvanite::IEEE754Float& value, RandomValues& random) {
    using Float = zelvanite::IEEE754Float;
    constexpr std::uint64_t widths[] = {16, 32, 40, 48, 64, 80, 128};
    switch (random.below(5)) {
        case 0: mpfr_set_nan(value.number()); return;
        case 1: mpfr_set_inf(value.number(), random.below(2) == 0 ? 1 : -1); return;
        case 2: value.width = widths[random.below(7)]; break;
        default: break;
    }
    Float::Format const format = Float::Format::of(value.width);
    Float::set_range(format);
    mpfr_set_prec(value.number(), format.mantissa_bits);
    mpfr_set_si(value.number(), random.below(3) - 1, MPFR_RNDN);
}

void change_text(std::string& text, RandomValues& random) {
    text = random.below(4) == 0 ? "" : text + static_cast<char>('a' + random.below(3));
}

void change_variant(Node const& variant, RandomValues& random) {
    // The tag can also be one of two before the first arm and two after the last.
    std::int32_t const tag = random.below(variant.shape->count() + 4) - 2;
    variant.shape->choose(const_cast<void*>(variant.object), tag);
}

void change(Node const& part, RandomValues& random) {
    switch (part.kind) {
        case Kind::int32: change_word(changeable<std::int32_t>(part), random); break;
        case Kind::uint32: change_word(changeable<std::uint32_t>(part), random); break;
        case Kind::int64: change_word(changeable<std::int64_t>(part), random); break;
        case Kind::uint64: change_word(changeable<std::uint64_t>(part), random); break;
        case Kind::flag: changeable<bool>(part) ^= true; break;
        case Kind::real:
            changeable<double>(part) =
                random.below(4) == 0 ? std::nan("") : part.as<double>() + random.below(3) - 1;
            break;
        case Kind::text: change_text(changeable<std::string>(part), random); break;
        case Kind::handle: {
            std::string text = part.as<sml::Strings_T>().str();
            change_text(text, random);
            changeable<sml::Strings_T>(part) = text;
            break;
        }
        case Kind::big_integer:
            changeable<sml::BigInteger>(part) += random.below(2) == 0 ? 1 : -1;
            break;
        case Kind::ieee_float:
            change_float(changeable<zelvanite::IEEE754Float>(part), random);
            break;
        case Kind::enumeration: {
            std::int32_t const number = random.below(part.shape->count());
            std::memcpy(const_cast<void*>(part.object), &number, sizeof number);
            break;
        }
        case Kind::variant:
        case Kind::reference: change_variant(part, random); break;
        default:
            if (!part.parts.empty() && random.below(2) == 0)
                part.shape->shrink(const_cast<void*>(part.object));
            else
                part.shape->grow(const_cast<void*>(part.object), random);
    }
}

bool can_change(Node const& part) {
    bool const only_holds_parts =
        part.kind == Kind::box || part.kind == Kind::group || part.kind == Kind::record;
    return !part.fixed && !only_holds_parts;
}

void collect_changeable(Node const& value, std::vector<Node const*>& parts) {
    if (can_change(value)) parts.push_back(&value);
    for (Node const& part : value.parts) collect_changeable(part, parts);
}

bool is_zero(Node const& leaf) {
    switch (leaf.kind) {
        case Kind::real: return leaf.as<double>() == 0.0;
        case Kind::flag: return !leaf.as<bool>();
        case Kind::text: return leaf.as<std::string>().empty();
        case Kind::handle: return leaf.as<sml::Strings_T>().str().empty();
        case Kind::ieee_float:
            return exact(leaf.as<zelvanite::IEEE754Float>()) == exact(zelvanite::IEEE754Float());
        default: return leaf_text(leaf) == "0";
    }
}

bool has_all_fresh(std::vector<Node> const& parts) { return std::ranges::all_of(parts, is_fresh); }

}  // namespace

std::string text_of(Node const& value) { return joined(value, texts_of(value.parts)); }

std::string text_read_over(Node const& held, Node const& read) {
    switch (read.kind) {
        case Kind::box:
        case Kind::group:
        case Kind::record:
        case Kind::reference: return joined(read, read_over_one_by_one(held, read));
        case Kind::list: return joined(read, appended(held, read));
        case Kind::sorted_set:
        case Kind::hash_set: return joined(read, united(held, read));
        case Kind::sorted_map:
        case Kind::hash_map: return joined(read, united_by_key(held, read));
        case Kind::variant:
            if (held.tag == read.tag) return joined(read, read_over_one_by_one(held, read));
            [[fallthrough]];
        default: return text_of(read);
    }
}

bool is_fresh(Node const& value) {
    switch (value.kind) {
        case Kind::box:
        case Kind::group:
        case Kind::record: return has_all_fresh(value.parts);
        case Kind::variant: return value.tag == -1 && has_all_fresh(value.parts);
        case Kind::reference: return value.tag == -1 && is_fresh(value.parts[1]);
        default: return value.kind <= Kind::enumeration ? is_zero(value) : value.parts.empty();
    }
}

bool has_variant_without_payload(Node const& value) {
    if (value.kind == Kind::variant && (value.tag < 0 || value.parts.empty())) return true;
    if (value.kind == Kind::reference && value.tag < 0) return true;
    return std::ranges::any_of(value.parts, has_variant_without_payload);
}

bool mutate(Node const& value, RandomValues& random) {
    std::vector<Node const*> parts;
    collect_changeable(value, parts);
    if (parts.empty()) return false;
    change(*parts[static_cast<std::size_t>(random.below(static_cast<int>(parts.size())))], random);
    return true;
}

}  // namespace generic

#include <sml/inspect/walk/walk.hpp>

#include <sml/core/hash.hpp>
#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/text/quote.hpp>
#include <sml/inspect/walk/path.hpp>

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

namespace sml::inspect {

namespace {

Limits capped(Limits limits) {
    limits.depth = std::min(limits.depth, Limits::depth_cap);
    return limits;
}

}  // namespace

Walk::Walk(std::string_view bytes, WalkOptions const& options, Budget& given_budget)
    : budget(given_budget),
      strings(bytes, &budget),
      heap(options.limits.memory),
      limits(capped(options.limits)),
      progress(options.progress),
      point_(options.decimal_point),
      start_(bytes.data()),
      end_(start_ + bytes.size()),
      at_(start_) {}

// The block's own where it is as it is written.
class Walk::IntegerDigits {
public:
    IntegerDigits(Walk const& walk, std::string_view block) {
        if (is_written_integer(block)) {
            view_ = written_digits(block);
            return;
        }
        hold_.emplace(walk.budget, block.size());
        own_ = integer_of(block);
        view_ = own_;
    }
    IntegerDigits(IntegerDigits const&) = delete;
    IntegerDigits& operator=(IntegerDigits const&) = delete;

    std::string_view view() const { return view_; }

private:
    std::optional<Budget::Hold> hold_;
    std::string                 own_;
    std::string_view            view_;
};

std::string Walk::path() const {
    std::vector<Step const*> steps;
    for (Step const* step = top_; step != nullptr; step = step->up) steps.push_back(step);
    std::string path;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        if ((*step)->part != Step::nowhere || (*step)->flat != nullptr) append_step(path, **step);
    return path;
}

void Walk::append_step(std::string& path, Step const& step) const {
    if (step.flat != nullptr) {
        Type const* type = step.type;
        for (std::size_t i = 0; i < step.flat->way_length; ++i) {
            inspect::append_step(path, *type, step.flat->way[i], {});
            type = type->parts[step.flat->way[i]].type;
        }
    } else if (step.key_offset == Step::nowhere) {
        inspect::append_step(path, *step.type, step.part, {});
    } else {
        inspect::append_step(path, *step.type, step.part,
                             key_text(*step.type->key, step.key_offset));
    }
}

std::string Walk::key_text(Type const& type, std::uint64_t offset) const {
    std::string text;
    append_key(text, type, offset);
    return text;
}

void Walk::append_key(std::string& text, Type const& type, std::uint64_t& offset) const {
    switch (type.kind) {
        case Kind::string: text += quoted(take_string(offset)); return;
        case Kind::big_integer: text += IntegerDigits(*this, take_block(offset)).view(); return;
        case Kind::int64: text += std::to_string(take_word<std::int64_t>(offset)); return;
        case Kind::uint32: text += std::to_string(take_word<std::uint32_t>(offset)); return;
        case Kind::int32: text += std::to_string(take_word<std::int32_t>(offset)); return;
        case Kind::variant: {
            auto const       tag = take_word<std::int32_t>(offset);
            Arm const* const arm = type.serving(tag);
            text += type.knows_tag(tag) ? std::string(arm->name) : std::to_string(tag);
            if (arm == nullptr || arm->payload == nullptr) return;
            text += ' ';
            append_key(text, *arm->payload, offset);
            return;
        }
        default: break;
    }
    text += '(';
    for (Part const& part : type.parts) {
        if (&part != type.parts.data()) text += ',';
        append_key(text, *part.type, offset);
    }
    text += ')';
}

/// Takes a key apart and mixes what it holds.
struct Walk::KeyHash {
    Walk const&   walk;
    std::uint64_t offset;
    std::uint64_t hash = 0;
    bool          is_unequal = false;

    [[gnu::always_inline]] void add(Type const& type) {
        switch (type.kind) {
            case Kind::string: mix(string_hash(walk.take_word<std::int32_t>(offset))); return;
            case Kind::uint32:
            case Kind::int32: mix(walk.take_word<std::uint32_t>(offset)); return;
            default: add_other(type); return;
        }
    }

private:
    [[gnu::noinline]] void add_other(Type const& type) {
        switch (type.kind) {
            case Kind::int64: mix(walk.take_word<std::uint64_t>(offset)); return;
            case Kind::big_integer:
                mix(seeded_hash(IntegerDigits(walk, walk.take_block(offset)).view()));
                return;
            case Kind::variant: {
                auto const tag = walk.take_word<std::int32_t>(offset);
                mix(static_cast<std::uint32_t>(tag));
                is_unequal = is_unequal || tag < 0;
                Arm const* const arm = type.serving(tag);
                if (arm != nullptr && arm->payload != nullptr) add_other(*arm->payload);
                return;
            }
            case Kind::string:
            case Kind::uint32:
            case Kind::int32: add(type); return;
            default: break;
        }
        for (Part const& part : type.parts) add_other(*part.type);
    }

    std::uint64_t string_hash(std::int32_t word) {
        if (word >= 1) return walk.strings.hash_of(word);
        std::uint64_t const length_offset = offset;
        walk.take_block(offset);
        return walk.strings.hash_of_told(length_offset);
    }

    void mix(std::uint64_t word) { hash = seeded_hash(word, hash); }
};

std::uint64_t Walk::key_hash(Type const& type, std::uint64_t offset) const {
    KeyHash key{*this, offset};
    if (type.has_parts())
        for (Part const& part : type.parts) key.add(*part.type);
    else
        key.add(type);
    if (key.is_unequal) return no_hash;
    return key.hash == no_hash ? 1 : key.hash;
}

bool Walk::take_same_key(Type const& type, std::uint64_t& a, std::uint64_t& b) const {
    switch (type.kind) {
        case Kind::string: return strings.are_equal(take_place(a), take_place(b));
        case Kind::big_integer:
            return IntegerDigits(*this, take_block(a)).view() ==
                   IntegerDigits(*this, take_block(b)).view();
        case Kind::int64: return take_word<std::int64_t>(a) == take_word<std::int64_t>(b);
        case Kind::uint32:
        case Kind::int32: return take_word<std::uint32_t>(a) == take_word<std::uint32_t>(b);
        case Kind::variant: {
            auto const tag = take_word<std::int32_t>(a);
            if (tag != take_word<std::int32_t>(b)) return false;
            Arm const* const arm = type.serving(tag);
            return arm == nullptr || arm->payload == nullptr || take_same_key(*arm->payload, a, b);
        }
        default: break;
    }
    return std::ranges::all_of(type.parts,
                               [&](Part const& part) { return take_same_key(*part.type, a, b); });
}

namespace {

/// As the required hash of integers folds them: limb by limb, the lowest first, then the sign.
std::uint64_t readers_hash_of_digits(std::string_view digits) {
    constexpr std::size_t digits_of_limb = 16;
    bool const            is_negative = digits.starts_with('-');
    if (is_negative) digits.remove_prefix(1);
    if (digits == "0") return core::combine(0, 0);
    std::uint64_t hash = 0;
    while (!digits.empty()) {
        std::size_t const size = std::min(digits.size(), digits_of_limb);
        std::uint64_t     limb = 0;
        std::from_chars(digits.end() - size, digits.end(), limb, 16);
        hash = core::combine(hash, limb);
        digits.remove_suffix(size);
    }
    return core::combine(hash, core::hash_word(is_negative ? -1 : 1));
}

}  // namespace

/// Takes a key apart and folds what it holds as the required hashes do.
struct Walk::ReadersKeyHash {
    Walk const&   walk;
    std::uint64_t offset;
    bool          equals_none = false;

    // Inlined for what most keys consist of.
    [[gnu::always_inline]] std::uint64_t of(Type const& type) {
        switch (type.kind) {
            case Kind::string: return of_string();
            case Kind::int32: return core::hash_word(walk.take_word<std::int32_t>(offset));
            default: return of_other(type);
        }
    }

private:
    std::uint64_t of_string() {
        auto const word = walk.take_word<std::int32_t>(offset);
        if (word >= 1) return walk.strings.hash_of(word);
        std::uint64_t const length_offset = offset;
        walk.take_block(offset);
        return walk.strings.hash_of_told(length_offset);
    }

    [[gnu::noinline]] std::uint64_t of_other(Type const& type) {
        switch (type.kind) {
            case Kind::big_integer:
                return readers_hash_of_digits(IntegerDigits(walk, walk.take_block(offset)).view());
            case Kind::variant: return of_variant(type);
            case Kind::tuple: {
                std::uint64_t const first = of(*type.parts[0].type);
                return core::combine(first, of(*type.parts[1].type));
            }
            default: return of_parts(type);
        }
    }

    std::uint64_t of_variant(Type const& type) {
        auto const tag = walk.take_word<std::int32_t>(offset);
        equals_none = equals_none || tag < 0;
        Arm const* const arm = type.serving(tag);
        bool const       has_payload = arm != nullptr && arm->payload != nullptr;
        return core::combine(core::hash_word(tag), has_payload ? of(*arm->payload) : 0);
    }

    /// One after another, a string with a number behind it as a numbered key.
    std::uint64_t of_parts(Type const& type) {
        std::uint64_t hash = 0;
        for (std::size_t i = 0; i < type.parts.size(); ++i) {
            std::uint64_t part = of(*type.parts[i].type);
            bool const    is_numbered = type.parts[i].type->kind == Kind::string &&
                                     i + 1 < type.parts.size() &&
                                     type.parts[i + 1].type->kind == Kind::int32;
            if (is_numbered) part = core::combine(part, of(*type.parts[++i].type));
            hash = core::combine(hash, part);
        }
        return hash;
    }
};

Walk::ReadersHash Walk::readers_key_hash(Type const& type, std::uint64_t offset) const {
    ReadersKeyHash      key{*this, offset};
    std::uint64_t const hash = key.of(type);
    return {hash, key.equals_none};
}

std::uint64_t Walk::take_place(std::uint64_t& offset) const {
    auto const word = take_word<std::int32_t>(offset);
    if (word >= 1) return strings.place_of(word);
    std::uint64_t const length_offset = offset;
    take_block(offset);
    return strings.place_of_told(length_offset);
}

std::optional<std::uint64_t> Walk::key_text_place(std::uint64_t offset) const {
    std::uint64_t const place = take_place(offset);
    if (strings.are_equal(place, StringTable::nowhere)) return std::nullopt;
    return place;
}

std::string_view Walk::take_string(std::uint64_t& offset) const {
    auto const word = take_word<std::int32_t>(offset);
    return word >= 1 ? strings.text_of(word) : take_block(offset);
}

std::string_view Walk::take_block(std::uint64_t& offset) const {
    auto const length = static_cast<std::size_t>(take_word<std::int32_t>(offset));
    offset += length;
    return {start_ + (offset - length), length};
}

}  // namespace sml::inspect

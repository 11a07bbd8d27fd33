#include "inspect/walk.hpp"

#include "inspect/number_text.hpp"
#include "inspect/path.hpp"
#include "inspect/quote.hpp"

#include <algorithm>
#include <vector>

namespace sml::inspect {

namespace {

Limits capped(Limits limits) {
    limits.depth = std::min(limits.depth, Limits::depth_cap);
    return limits;
}

}  // namespace

Walk::Walk(std::string_view bytes, Limits const& given)
    : strings(bytes),
      limits(capped(given)),
      start_(bytes.data()),
      end_(start_ + bytes.size()),
      at_(start_) {}

std::string Walk::path() const {
    std::vector<Step const*> steps;
    for (Step const* step = top_; step != nullptr; step = step->up) steps.push_back(step);
    std::string path;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        if ((*step)->part != Step::nowhere) append_step(path, **step);
    return path;
}

void Walk::append_step(std::string& path, Step const& step) const {
    if (step.is_flat) {
        FlatPart const& part = step.type->flat[step.part];
        Type const*     type = step.type;
        for (std::size_t i = 0; i < part.way_length; ++i) {
            inspect::append_step(path, *type, part.way[i], {});
            type = type->parts[part.way[i]].type;
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
        case Kind::big_integer: text += integer_of(take_block(offset)); return;
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

bool Walk::take_same_key(Type const& type, std::uint64_t& a, std::uint64_t& b) const {
    switch (type.kind) {
        case Kind::string: return take_string(a) == take_string(b);
        case Kind::big_integer: return integer_of(take_block(a)) == integer_of(take_block(b));
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

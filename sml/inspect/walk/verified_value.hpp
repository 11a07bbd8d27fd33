#pragma once
// Reading parts of bytes that have been verified: skips values, and reports their events.

#include <sml/inspect/contents.hpp>
#include <sml/inspect/text/double_text.hpp>
#include <sml/inspect/text/number_text.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// A position in the bytes of some contents, which must outlive this object.
class VerifiedBytes : public WalkedBytes {
public:
    explicit VerifiedBytes(Contents const& contents, std::uint64_t offset = 0)
        : WalkedBytes(contents.bytes(), offset), contents_(&contents) {}

    Contents const& contents() const { return *contents_; }

    std::string_view take_string() {
        StringWord const word = take_string_word();
        return word.refers() ? contents_->text_of(word.id()) : take_block();
    }

    double take_number() { return *double_of(take_block(), contents_->point()); }

    /// Takes an integer and calls `use` with its hexadecimal digits, with a sign if it is negative.
    template <class Use>
    auto take_big_integer(Use const& use) {
        std::string_view const block = take_block();
        if (is_written_integer(block)) return use(written_digits(block));
        return use(std::string_view(integer_of(block)));
    }

    /// Takes a float and calls `use` with its text, as a writer spells it with a dot, and its
    /// width.
    template <class Use>
    auto take_float(Use const& use) {
        std::string_view const block = take_block();
        auto const             width = take_word<std::int32_t>();
        char const             point = float_point(contents_->point());
        if (!is_written_float(block, width, block.size(), point))
            return use(std::string_view(float_of(block, width, point)), width);
        if (point == '.') return use(block, width);
        return use(std::string_view(with_dot(block, point)), width);
    }

    /// Passes over a value. It takes no time for what is in a long container.
    void skip(Type const& type) {
        LongSkipper skipper{{*this}, contents_->long_containers()};
        take_value(type, skipper);
    }

private:
    struct LongSkipper : Skipper {
        LongContainers const& long_containers;

        bool container(Type const&) {
            constexpr std::uint32_t many = 64;  // fewer entries are skipped faster than looked up
            if (at.peek_word<std::uint32_t>() < many) return false;
            std::uint64_t const end = long_containers.end_of(at.offset());
            if (end == 0) return false;
            at.take(end - at.offset());
            return true;
        }
    };

    Contents const* contents_;
};

/// Takes a value and reports the events that a walk of it reports to its visitor.
template <class Visitor>
void visit_value(Type const& type, VerifiedBytes& at, Visitor& visitor) {
    switch (type.kind) {
        case Kind::int32: visitor.integer(type, at.take_word<std::int32_t>()); return;
        case Kind::int64: visitor.integer(type, at.take_word<std::int64_t>()); return;
        case Kind::uint32: visitor.natural(type, at.take_word<std::uint32_t>()); return;
        case Kind::uint64: visitor.natural(type, at.take_word<std::uint64_t>()); return;
        case Kind::flag: visitor.flag(at.take_flag()); return;
        case Kind::enumeration: visitor.enumeration(type, at.take_word<std::int32_t>()); return;
        case Kind::string: visitor.string(at.take_string()); return;
        case Kind::text: visitor.text(at.take_block()); return;
        case Kind::number: visitor.number(at.take_number()); return;
        case Kind::big_integer:
            at.take_big_integer([&](std::string_view digits) { visitor.big_integer(digits); });
            return;
        case Kind::ieee_float:
            at.take_float([&](std::string_view text, std::int32_t width) {
                visitor.ieee_float(text, width);
            });
            return;
        case Kind::optional:
            if (!at.take_flag()) return visitor.absent(type);
            visitor.present(type);
            return visit_value(*type.element, at, visitor);
        case Kind::boxed: return visit_value(*type.element, at, visitor);
        case Kind::reference: {
            auto const tag = at.take_word<std::int32_t>();
            visitor.reference(type, tag, at.take_word<std::uint64_t>());
            return;
        }
        case Kind::variant: {
            auto const       tag = at.take_word<std::int32_t>();
            Arm const* const arm = type.arm_of(tag);
            visitor.begin_variant(type, tag, arm);
            if (arm != nullptr && arm->payload != nullptr) {
                visitor.payload(type);
                visit_value(*arm->payload, at, visitor);
            }
            visitor.end_variant(type);
            return;
        }
        case Kind::flags:
            visitor.begin(type, type.flag_count);
            for (std::uint32_t i = 0; i < type.flag_count; ++i) {
                visitor.part(type, i);
                visitor.flag(at.take_flag());
            }
            visitor.end(type);
            return;
        case Kind::list:
        case Kind::set:
        case Kind::map: {
            std::uint64_t const count = at.take_word<std::uint32_t>();
            visitor.begin(type, count);
            for (std::uint64_t i = 0; i < count; ++i) {
                visitor.part(type, i);
                if (type.key != nullptr) {
                    visit_value(*type.key, at, visitor);
                    visitor.entry_value(type);
                }
                visit_value(*type.element, at, visitor);
                if (type.key != nullptr) visitor.end_entry(type);
            }
            visitor.end(type);
            return;
        }
        case Kind::tuple:
        case Kind::record:
        case Kind::group: {
            visitor.begin(type, type.parts.size());
            std::uint64_t index = 0;
            for (Part const& part : type.parts) {
                visitor.part(type, index++);
                visit_value(*part.type, at, visitor);
            }
            visitor.end(type);
            return;
        }
    }
}

}  // namespace sml::inspect

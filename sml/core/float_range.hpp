#pragma once
// MPFR's exponent range, which every float that is written sets anew.

#include <sml/core/ieee754_float.hpp>

#include <cstdint>

namespace sml::core {

/// Sets the range of the float that was touched last, when it is needed and at the end: nobody
/// looks at those in between.
class FloatRange {
public:
    FloatRange() = default;
    ~FloatRange() { apply(); }
    FloatRange(FloatRange const&) = delete;
    FloatRange& operator=(FloatRange const&) = delete;

    /// A float of this width was touched.
    void touch(std::uint64_t width) noexcept {
        width_ = width;
        is_due_ = true;
    }

    void apply() noexcept {
        if (is_due_)
            zelvanite::IEEE754Float::set_range(zelvanite::IEEE754Float::Format::of(width_));
        is_due_ = false;
    }

private:
    std::uint64_t width_ = 0;
    bool          is_due_ = false;
};

}  // namespace sml::core

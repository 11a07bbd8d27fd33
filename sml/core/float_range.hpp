#pragma once
// MPFR's process-wide exponent range, which writing a float is required to set.

#include <sml/core/ieee754_float.hpp>

#include <cstdint>

namespace sml::core {

/// Remembers the width of the float written last, and sets its format's range in `apply` and at
/// destruction only: no other code runs in between that could see the range.
class FloatRange {
public:
    FloatRange() = default;
    ~FloatRange() { apply(); }
    FloatRange(FloatRange const&) = delete;
    FloatRange& operator=(FloatRange const&) = delete;

    /// To be called for each float of this width in bits that is written.
    void touch(std::uint64_t width) noexcept {
        width_ = width;
        is_due_ = true;
    }

    /// Sets the range, if a float was written since the last call.
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

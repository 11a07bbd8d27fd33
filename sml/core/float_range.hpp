#pragma once
// MPFR's process-wide exponent range, which writing a float is required to set.

#include <sml/core/ieee754_float.hpp>

#include <cstdint>

namespace sml::core {

/// Sets the range for the float that was written last, but only when `apply` is called and on
/// destruction. Until then it keeps the width.
///
/// `apply` must be called before each call of the caller's stream, so that the stream finds the
/// range that is required. In between, no code of the caller runs but functions for memory:
/// `operator new`, and those of the number libraries. These may find the range of an earlier float.
class FloatRange {
public:
    FloatRange() = default;
    ~FloatRange() { apply(); }
    FloatRange(FloatRange const&) = delete;
    FloatRange& operator=(FloatRange const&) = delete;

    /// Must be called for each float that is written, with its width in bits.
    void touch(std::uint64_t width) noexcept {
        width_ = width;
        is_due_ = true;
    }

    /// Sets the range if a float was written since the last call.
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

#pragma once
// The texts of doubles, read in the same way in every process, whatever its locale and rounding
// mode.

#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// The decimal point of the "C" locale, which is assumed unless another one is given.
inline constexpr std::string_view plain_point = ".";

/// The double that a process with this decimal point reads from a block, rounding to the nearest.
/// None if reading the block throws in any process, with any decimal point and rounding mode.
std::optional<double> double_of(std::string_view block, std::string_view point = plain_point);

/// The double nearest to a JSON number; none if the number is too large or too small for a double.
std::optional<double> nearest_double(std::string_view number);

/// The double nearest to a float with this text, as the wire form has it with a dot; if it is out
/// of range, zero or infinity.
double nearest_to_float(std::string_view text);

/// What the writer prints for a double in a process with this decimal point.
std::string written_double(double value, std::string_view point = plain_point);

/// Whether a block is certainly what the writer prints for the double that is read from it. It
/// finds numbers of up to nine digits before the point; others that the writer prints give false.
bool is_plainly_written_double(std::string_view block, std::string_view point);

/// If a block is what a process with another decimal point than this one writes: that other point.
std::optional<std::string_view> other_point_of(std::string_view block, std::string_view point);

}  // namespace sml::inspect

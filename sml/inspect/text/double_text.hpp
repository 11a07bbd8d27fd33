#pragma once
// The text of a double, judged alike in every process: whatever its locale and its rounding mode.

#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// The decimal point of the "C" locale, which bytes are read with unless another is asked for.
inline constexpr std::string_view plain_point = ".";

/// The double that a process with this decimal point reads from a block, rounding to the nearest.
/// None where reading it throws in any process: with this decimal point or another, rounding to the
/// nearest or otherwise.
std::optional<double> double_of(std::string_view block, std::string_view point = plain_point);

/// The double nearest to a JSON number; none for one beyond all doubles or too small for them.
std::optional<double> nearest_double(std::string_view number);

/// What the writer prints for a double in a process with this decimal point.
std::string written_double(double value, std::string_view point = plain_point);

/// Whether a block is plainly what the writer prints for the double that is read from it; true for
/// numbers of up to nine digits before the point. False tells nothing.
bool is_plainly_written_double(std::string_view block, std::string_view point);

/// The decimal point of the process that has written a block, if it is another than this one.
std::optional<std::string_view> other_point_of(std::string_view block, std::string_view point);

}  // namespace sml::inspect

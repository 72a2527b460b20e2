// Values as people read them: time points in ISO-8601 UTC, durations with
// units, complex numbers as a+bi, long arrays summarised.
#ifndef MAV_TOOLS_MAV_VALUE_TEXT_H_
#define MAV_TOOLS_MAV_VALUE_TEXT_H_

#include <string>
#include <string_view>

#include "MavValues.h"

namespace mav_tool {

using namespace Tarnwick::MavProtobuf;

// Text as it is where it is UTF-8, with control characters, quotes,
// backslashes and bytes that are not UTF-8 escaped (\n, \", \xFF).
std::string EscapedText(std::string_view bytes);
// The scalar alone: `4`, `det1`, `50+3i`, `2024-05-01T12:00:00.25Z`.
std::string ScalarText(const ScalarDataUnion& scalar);
// Every element, each followed by `separator`.
std::string ArrayText(const ArrayDataUnion& array, char separator);
// The first `shown` elements, then min/max/mean for numbers.
std::string ArraySummary(const ArrayDataUnion& array, size_t shown);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_VALUE_TEXT_H_

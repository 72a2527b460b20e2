// `mav check`: what a valid tree holds, counted.
#ifndef MAV_TOOLS_MAV_CHECK_H_
#define MAV_TOOLS_MAV_CHECK_H_

#include <string>

#include "Mav.pb.h"

namespace mav_tool {

// Node counts by form, leaf counts and wire bytes by kind, and the maximum
// depth, as a small table.
std::string CheckReport(const Tarnwick::MavProtobuf::PropertyNode& root);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_CHECK_H_

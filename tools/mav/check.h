// `mav check`: what a valid tree holds, counted.
#ifndef MAV_TOOLS_MAV_CHECK_H_
#define MAV_TOOLS_MAV_CHECK_H_

#include <string>
#include <vector>

#include "Mav.pb.h"

namespace mav_tool {

// Node counts by form, leaf counts and wire bytes by kind, and the maximum
// depth, as a small table. `warnings` gets "path: problem" for each value
// that is well formed on the wire but cannot be read as the model says (no
// member, a shape that does not match, a narrow integer out of its range, a
// time fraction of a second or more).
std::string CheckReport(const Tarnwick::MavProtobuf::PropertyNode& root,
                        std::vector<std::string>* warnings);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_CHECK_H_

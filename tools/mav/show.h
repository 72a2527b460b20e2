// `mav show`: an indented tree of keys and list indices, each leaf with its
// kind, shape and value.
#ifndef MAV_TOOLS_MAV_SHOW_H_
#define MAV_TOOLS_MAV_SHOW_H_

#include <string>

#include "Mav.pb.h"

namespace mav_tool {

// `depth` levels below the root are shown (at least 1), deeper maps and lists
// only summarised; a negative depth shows all.
std::string ShowTree(const Tarnwick::MavProtobuf::PropertyNode& root, int depth);

// One line for a value: `uint16 4`, `float64 array 512x512 C [...] min ...`.
std::string DescribeValue(const Tarnwick::MavProtobuf::KVariant& value);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_SHOW_H_

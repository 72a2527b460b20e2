// The trees of an input: the whole input as one tree, or a sequence of
// length-delimited records (the runtime's delimited format). And the same
// two forms for writing.
#ifndef MAV_TOOLS_MAV_RECORDS_H_
#define MAV_TOOLS_MAV_RECORDS_H_

#include <functional>
#include <string>

#include "Mav.pb.h"
#include "input.h"

namespace mav_tool {

using Tarnwick::MavProtobuf::PropertyNode;

// Parses each tree of `input` in turn and hands it to `visit` with its
// record number (0 for a whole input). An empty input is one empty tree, or
// no records. Throws Failure naming the input (and the record) on bytes that
// do not parse, and on a whole input that holds more than one tree.
void ForEachTree(const Input& input, bool delimited, const std::function<void(PropertyNode&, size_t)>& visit);

// The deterministic wire bytes of `tree`, as a delimited record if asked.
std::string TreeBytes(const PropertyNode& tree, bool delimited);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_RECORDS_H_

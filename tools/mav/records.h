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

// Hands each tree's bytes to `visit` without parsing them: the whole input,
// or each record's. Throws Failure naming the input and the record on a
// length prefix that is cut short, over 2 GiB or past the end, and on a whole
// input that holds more than one tree.
void ForEachTreeBytes(const Input& input, bool delimited,
                      const std::function<void(std::string_view, size_t)>& visit);

// Runs `read`, which reads a tree's bytes through a view, and turns the
// view's refusal into a Failure naming the input and `what` ("the input",
// "record 3"), with the runtime's log kept off standard error.
void ReadThroughView(const Input& input, const std::string& what, const std::function<void()>& read);

// The deterministic wire bytes of `tree`, as a delimited record if asked.
std::string TreeBytes(const PropertyNode& tree, bool delimited);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_RECORDS_H_

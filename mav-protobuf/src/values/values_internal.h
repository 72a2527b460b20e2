// What the value layer's sources share: wording of refusals and the stored
// shape and order of an array.
#ifndef MAV_PROTOBUF_SRC_VALUES_VALUES_INTERNAL_H_
#define MAV_PROTOBUF_SRC_VALUES_VALUES_INTERNAL_H_

#include <optional>
#include <string>
#include <string_view>

#include "MavValues.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace values_internal {

// "at 'a/b': " for a path, nothing without one.
std::string Where(std::string_view path);
// "a uint16 array", "an int8 scalar"; "nothing" for an empty value.
std::string Describe(Kind kind, Form form);
std::string Describe(const KVariant& value);
// "a map", "a list", "a value", "an empty node".
std::string Describe(const PropertyNode& node);
// The same for a node's member number (0 for none).
std::string DescribeNode(int member);

// One step of a path with "~0" and "~1" turned back into '~' and '/'.
std::string Unescape(std::string_view raw);
// Canonical decimal only: "01" names no item, so that each item has one path.
std::optional<size_t> ParseIndex(std::string_view text);

[[noreturn]] void Fail(const std::string& message);

// The dimensions of an array, or its element count as one axis when it has
// none.
Shape StoredShape(const ArrayDataUnion& array);
// dataorder read as an order: empty is 'C'; nothing for unknown text.
std::optional<Order> StoredOrder(const ArrayDataUnion& array);

}  // namespace values_internal
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_VALUES_VALUES_INTERNAL_H_

// MavJson: property trees and values as natural JSON, both ways.
//
// A map is a JSON object, a list an array, a float64 scalar a number, a str
// scalar a string, a bool true/false and an empty node null. Every other
// value is an object whose first key is "$" and a kind name (KindName of
// MavValues.h), or "$array" for an n-dimensional array with its shape, order
// and data; map keys that begin with "$" are written with one more "$".
// docs/json.md gives the whole mapping with an example of every kind.
//
// The mapping is lossless: for every tree, binary to JSON to binary gives the
// same deterministic serialization, byte for byte. NaN is written as "NaN"
// and comes back as the quiet NaN of its sign: payload bits are not kept.
#ifndef MAV_PROTOBUF_MAV_JSON_H_
#define MAV_PROTOBUF_MAV_JSON_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "Mav.pb.h"

namespace Tarnwick {
namespace MavProtobuf {

struct JsonOptions {
  // Maps and lists one entry a line, indented by two spaces; a value (even a
  // large array) stays on one line. Otherwise no whitespace at all, which is
  // what JSON Lines needs.
  bool pretty = false;
};

// Why an import failed. Line and column count from 1; the column counts
// bytes.
struct MAV_PROTOBUF_EXPORT JsonError {
  size_t line = 0;
  size_t column = 0;
  std::string reason;
  // "line 3, column 14: <reason>"
  std::string ToString() const;
};

// The JSON of a tree or a value. Throws ValueError (MavValues.h) for a map key
// that is not valid UTF-8: such a tree could not be parsed back from its
// bytes either.
MAV_PROTOBUF_EXPORT std::string ToJson(const PropertyNode& node, const JsonOptions& options = {});
MAV_PROTOBUF_EXPORT std::string ToJson(const KVariant& value, const JsonOptions& options = {});

// Replaces `*node` (or `*value`) with the tree the JSON text describes. On
// failure returns false, fills `*error` when given, and leaves the target
// unchanged.
MAV_PROTOBUF_EXPORT bool FromJson(std::string_view json, PropertyNode* node, JsonError* error = nullptr);
MAV_PROTOBUF_EXPORT bool FromJson(std::string_view json, KVariant* value, JsonError* error = nullptr);

}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_MAV_JSON_H_

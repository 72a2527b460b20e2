// What the JSON writer and reader share: the names of the mapping and the
// text forms of time and non-finite numbers.
#ifndef MAV_PROTOBUF_SRC_JSON_JSON_INTERNAL_H_
#define MAV_PROTOBUF_SRC_JSON_JSON_INTERNAL_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Mav.pb.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace json_internal {

// Map keys that begin with this get one more of it, so that an object whose
// first key begins with a single one is always a tagged value.
inline constexpr char kTagMark = '$';

// Tags that are not kind names.
inline constexpr std::string_view kNodeTag = "$node";
inline constexpr std::string_view kMapTag = "$map";
inline constexpr std::string_view kListTag = "$list";
inline constexpr std::string_view kEmptyTag = "$empty";
inline constexpr std::string_view kScalarTag = "$scalar";
inline constexpr std::string_view kArrayTag = "$array";
inline constexpr std::string_view kBase64Tag = "$base64";

// Fields of a tagged object.
inline constexpr std::string_view kShapeField = "shape";
inline constexpr std::string_view kDimensionsField = "dimensions";
inline constexpr std::string_view kOrderField = "order";
inline constexpr std::string_view kDataField = "data";
inline constexpr std::string_view kWidenedField = "widened";
inline constexpr std::string_view kWellKnownTypeField = "wellknowntype";
inline constexpr std::string_view kUnknownField = "unknown";
// Keys of "unknown" inside a value: the KVariant, its union, the union's
// member message.
inline constexpr std::string_view kVariantLevel = "variant";
inline constexpr std::string_view kUnionLevel = "union";
inline constexpr std::string_view kMemberLevel = "member";

inline constexpr std::string_view kNaN = "NaN";
inline constexpr std::string_view kMinusNaN = "-NaN";
inline constexpr std::string_view kInfinity = "Infinity";
inline constexpr std::string_view kMinusInfinity = "-Infinity";

inline constexpr uint64_t kNanosPerSecond = 1000000000;

// "2024-05-01T12:00:00.25Z": only for a fraction below one second and a year
// from 1 to 9999; nothing otherwise.
std::optional<std::string> TimePointText(int64_t seconds, uint64_t nanos);
// "-0.25s" (seconds floored, fraction added): only for a fraction below one
// second.
std::optional<std::string> DurationText(int64_t seconds, uint64_t nanos);

struct Chrono {
  int64_t seconds;
  uint64_t nanos;
};
// The inverses; nothing for text that is not in the form written.
std::optional<Chrono> ParseTimePoint(std::string_view text);
std::optional<Chrono> ParseDuration(std::string_view text);

// Unknown fields of any message, as their wire bytes.
// The product of an array's extents; nothing for none, or past 64 bits.
inline std::optional<uint64_t> ExtentProduct(const protobuf::RepeatedField<uint32_t>& extents) {
  if (extents.empty()) return std::nullopt;
  uint64_t product = 1;
  for (uint32_t extent : extents)
    if (__builtin_mul_overflow(product, uint64_t{extent}, &product)) return std::nullopt;
  return product;
}

// The member of a scalar or array union's oneof when it is a message (the
// complex, time and array messages), which may hold unknown fields of its
// own.
inline const protobuf::FieldDescriptor* MessageMember(const protobuf::Message& holder) {
  const protobuf::FieldDescriptor* member = holder.GetReflection()->GetOneofFieldDescriptor(
      holder, holder.GetDescriptor()->FindOneofByName("content"));
  return member != nullptr && member->cpp_type() == protobuf::FieldDescriptor::CPPTYPE_MESSAGE ? member : nullptr;
}

inline const protobuf::UnknownFieldSet& Unknown(const protobuf::Message& message) {
  return message.GetReflection()->GetUnknownFields(message);
}
inline protobuf::UnknownFieldSet* MutableUnknown(protobuf::Message* message) {
  return message->GetReflection()->MutableUnknownFields(message);
}

}  // namespace json_internal
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_JSON_JSON_INTERNAL_H_

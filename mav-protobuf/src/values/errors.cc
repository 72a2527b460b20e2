// The wording of every refusal, and the checked ways into a value.
#include <cstdio>

#include "values_internal.h"

namespace Tarnwick {
namespace MavProtobuf {

ValueError::~ValueError() = default;

namespace values_internal {

std::string Where(std::string_view path) {
  if (path.empty()) return {};
  return "at '" + std::string(path) + "': ";
}

std::string Describe(Kind kind, Form form) {
  const std::string_view name = KindName(kind);
  return (name.front() == 'i' ? "an " : "a ") + std::string(name) +
         (form == Form::kArray ? " array" : " scalar");
}

std::string Describe(const KVariant& value) {
  const std::optional<Kind> kind = KindOf(value);
  return kind ? Describe(*kind, FormOf(value)) : "nothing";
}

std::string Describe(const PropertyNode& node) {
  switch (node.type_case()) {
    case PropertyNode::kMapType: return "a map";
    case PropertyNode::kListType: return "a list";
    case PropertyNode::kValueType: return "a value";
    case PropertyNode::TYPE_NOT_SET: break;
  }
  return "an empty node";
}

void Fail(const std::string& message) { throw ValueError(message); }

}  // namespace values_internal

namespace detail {

using values_internal::Fail;
using values_internal::Where;

void ThrowKindMismatch(std::string_view path, Kind expected, Form expected_form,
                       const KVariant& found) {
  Fail(Where(path) + "expected " + values_internal::Describe(expected, expected_form) + ", found " +
       values_internal::Describe(found));
}

void ThrowOutOfRange(std::string_view path, Kind kind, long double value,
                     std::optional<size_t> index) {
  char number[48];
  std::snprintf(number, sizeof(number), "%.0Lf", value);
  const std::string what = index ? "element " + std::to_string(*index) + " (" + number + ")"
                                 : "value " + std::string(number);
  Fail(Where(path) + what + " does not fit in " + std::string(KindName(kind)));
}

void ThrowBadFraction(std::string_view path, uint64_t fraction, uint64_t per_second) {
  Fail(Where(path) + "fraction " + std::to_string(fraction) + " is not below one second (" +
       std::to_string(per_second) + " per second)");
}

void ThrowTimeOutOfRange(std::string_view path, int64_t seconds) {
  Fail(Where(path) + std::to_string(seconds) +
       " seconds do not fit in the requested std::chrono type");
}

void ThrowBufferTooSmall(std::string_view path, size_t needed, size_t capacity) {
  Fail(Where(path) + "the array has " + std::to_string(needed) +
       " elements but the buffer holds " + std::to_string(capacity));
}

const KVariant& RequireValue(const PropertyNode& node, std::string_view path) {
  const PropertyNode& target = path.empty() ? node : At(node, path);
  if (!target.has_value_type()) {
    Fail(Where(path) + "expected a value, found " + values_internal::Describe(target));
  }
  return target.value_type();
}

const ScalarDataUnion& RequireScalar(const KVariant& value, Kind kind, std::string_view path) {
  if (FormOf(value) != Form::kScalar || KindOf(value) != kind) {
    ThrowKindMismatch(path, kind, Form::kScalar, value);
  }
  return value.scalar_data();
}

}  // namespace detail
}  // namespace MavProtobuf
}  // namespace Tarnwick

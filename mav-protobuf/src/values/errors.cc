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


std::string Describe(const PropertyNode& node) { return DescribeNode(node.type_case()); }

std::string DescribeNode(int member) {
  switch (member) {
    case PropertyNode::kMapType: return "a map";
    case PropertyNode::kListType: return "a list";
    case PropertyNode::kValueType: return "a value";
    default: break;
  }
  return "an empty node";
}

std::string Unescape(std::string_view raw) {
  std::string step;
  step.reserve(raw.size());
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] == '~' && i + 1 < raw.size() && (raw[i + 1] == '0' || raw[i + 1] == '1')) {
      step += raw[++i] == '0' ? '~' : '/';
    } else {
      step += raw[i];
    }
  }
  return step;
}

std::optional<size_t> ParseIndex(std::string_view text) {
  if (text.empty() || text.size() > 10 || (text.size() > 1 && text.front() == '0')) return std::nullopt;
  size_t index = 0;
  for (char digit : text) {
    if (digit < '0' || digit > '9') return std::nullopt;
    index = index * 10 + static_cast<size_t>(digit - '0');
  }
  return index;
}

void Fail(const std::string& message) { throw ValueError(message); }

}  // namespace values_internal

namespace detail {

using values_internal::Fail;
using values_internal::Where;

void ThrowKindMismatch(std::string_view path, Kind expected, Form expected_form,
                       const KVariant& found) {
  ThrowKindMismatch(path, expected, expected_form, KindOf(found), FormOf(found));
}

void ThrowKindMismatch(std::string_view path, Kind expected, Form expected_form,
                       std::optional<Kind> found, Form found_form) {
  Fail(Where(path) + "expected " + values_internal::Describe(expected, expected_form) + ", found " +
       (found ? values_internal::Describe(*found, found_form) : "nothing"));
}

void ThrowShapeMismatch(std::string_view path, const Shape& dimensions, size_t stored, Kind kind) {
  const bool complex = kind == Kind::kComplex64 || kind == Kind::kComplex128;
  Fail(Where(path) + "shape " + dimensions.ToString() + " does not match the " +
       std::to_string(stored) + " elements stored" +
       (complex ? " (complex arrays store two parts per element)" : ""));
}

void ThrowUnknownOrder(std::string_view path, std::string_view letter) {
  Fail(Where(path) + "unknown data order '" + std::string(letter) + "' (expected 'C' or 'F')");
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

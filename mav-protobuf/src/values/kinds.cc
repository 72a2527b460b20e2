// Kind names and the kind of a stored value.
#include <array>

#include "MavValues.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace {

constexpr std::array<std::string_view, 16> kNames = {
    "str",   "float32", "float64", "int8",   "int16",  "int32",     "int64",      "uint8",
    "uint16", "uint32", "uint64",  "bool",   "complex64", "complex128", "timedelta64", "datetime64"};

// The array union's numbering skips 15 and 16, which dataorder and
// dimensions hold.
constexpr int kFirstArrayTimeCase = ArrayDataUnion::kDurationContent;

}  // namespace

std::string_view KindName(Kind kind) { return kNames[static_cast<size_t>(kind) - 1]; }

std::optional<Kind> ParseKind(std::string_view name) {
  for (Kind kind : kAllKinds) {
    if (KindName(kind) == name) return kind;
  }
  return std::nullopt;
}

Form FormOf(const KVariant& value) {
  switch (value.data_case()) {
    case KVariant::kScalarData: return Form::kScalar;
    case KVariant::kArrayData: return Form::kArray;
    case KVariant::DATA_NOT_SET: break;
  }
  return Form::kEmpty;
}

std::optional<Kind> KindOf(const ScalarDataUnion& scalar) {
  if (scalar.content_case() == ScalarDataUnion::CONTENT_NOT_SET) return std::nullopt;
  return static_cast<Kind>(scalar.content_case());
}

std::optional<Kind> KindOf(const ArrayDataUnion& array) {
  const int number = array.content_case();
  if (number == ArrayDataUnion::CONTENT_NOT_SET) return std::nullopt;
  const int time_shift = kFirstArrayTimeCase - static_cast<int>(Kind::kDuration);
  return static_cast<Kind>(number >= kFirstArrayTimeCase ? number - time_shift : number);
}

std::optional<Kind> KindOf(const KVariant& value) {
  switch (FormOf(value)) {
    case Form::kScalar: return KindOf(value.scalar_data());
    case Form::kArray: return KindOf(value.array_data());
    case Form::kEmpty: break;
  }
  return std::nullopt;
}

}  // namespace MavProtobuf
}  // namespace Tarnwick

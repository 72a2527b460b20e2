// Shapes, orders and the element count of stored arrays.
#include <climits>

#include <algorithm>

#include "values_internal.h"

namespace Tarnwick {
namespace MavProtobuf {

using values_internal::Fail;
using values_internal::Where;

void Shape::Assign(const uint32_t* extents, size_t rank) {
  if (rank <= kInlineRank) {
    std::copy(extents, extents + rank, extents_.begin());
  } else {
    spilled_.assign(extents, extents + rank);
  }
  rank_ = rank;
}

uint64_t Shape::ElementCount() const {
  if (std::find(begin(), end(), 0u) != end()) return 0;
  uint64_t count = 1;
  for (uint32_t extent : *this) {
    if (__builtin_mul_overflow(count, uint64_t{extent}, &count)) {
      Fail("shape " + ToString() + " holds more than 2^64 elements");
    }
  }
  return count;
}

std::string Shape::ToString() const {
  if (empty()) return "()";
  std::string text;
  for (uint32_t extent : *this) {
    if (!text.empty()) text += 'x';
    text += std::to_string(extent);
  }
  return text;
}

size_t StoredElementCount(const ArrayDataUnion& array) {
  const std::optional<Kind> kind = KindOf(array);
  if (!kind) return 0;
  return VisitKind(*kind, [&](auto tag) -> size_t {
    using Tr = detail::Traits<typename decltype(tag)::type>;
    const size_t stored = static_cast<size_t>(Tr::Values(array).size());
    return Tr::storage == detail::Storage::kComplex ? stored / 2 : stored;
  });
}

std::optional<Order> ParseOrder(std::string_view letter) {
  if (letter == "C") return Order::kC;
  if (letter == "F") return Order::kF;
  return std::nullopt;
}

namespace values_internal {

Shape StoredShape(const ArrayDataUnion& array) {
  if (array.dimensions_size() == 0) return detail::OneAxis(StoredElementCount(array));
  return Shape(array.dimensions());
}

std::optional<Order> StoredOrder(const ArrayDataUnion& array) {
  if (array.dataorder().empty()) return Order::kC;
  return ParseOrder(array.dataorder());
}

}  // namespace values_internal

Shape ShapeOf(const KVariant& value) {
  if (FormOf(value) != Form::kArray) return Shape();
  return values_internal::StoredShape(value.array_data());
}

namespace {

// A complex array whose parts do not pair up.
bool HasHalfElement(const ArrayDataUnion& array) {
  if (array.has_complexfloat_content()) return array.complexfloat_content().float_content_size() % 2 != 0;
  if (array.has_complexdouble_content()) return array.complexdouble_content().double_content_size() % 2 != 0;
  return false;
}

}  // namespace

bool ShapeMatches(const KVariant& value) {
  if (FormOf(value) != Form::kArray) return true;
  const ArrayDataUnion& array = value.array_data();
  if (HasHalfElement(array)) return false;
  if (array.dimensions_size() == 0) return StoredElementCount(array) <= UINT32_MAX;
  if (std::find(array.dimensions().begin(), array.dimensions().end(), 0u) != array.dimensions().end()) {
    return StoredElementCount(array) == 0;
  }
  uint64_t count = 1;
  for (uint32_t extent : array.dimensions()) {
    if (__builtin_mul_overflow(count, uint64_t{extent}, &count)) return false;
  }
  return count == StoredElementCount(array);
}

namespace detail {

void CheckArrayCount(const Shape& shape, size_t count, size_t stored_per_element) {
  if (shape.empty()) Fail("an array needs at least one dimension");
  const uint64_t expected = shape.ElementCount();
  if (expected != count) {
    Fail("shape " + shape.ToString() + " holds " + std::to_string(expected) + " elements but " +
         std::to_string(count) + " were given");
  }
  if (count > static_cast<size_t>(INT_MAX) / stored_per_element) {
    Fail(std::to_string(count) + " elements exceed what one array can store");
  }
}

void WriteShape(ArrayDataUnion& array, const Shape& shape, Order order) {
  protobuf::RepeatedField<uint32_t>* dimensions = array.mutable_dimensions();
  dimensions->Clear();
  dimensions->Add(shape.begin(), shape.end());
  const char letter = OrderLetter(order);
  array.set_dataorder(&letter, 1);
}

const ArrayDataUnion& RequireArray(const KVariant& value, Kind kind, std::string_view path,
                                   Shape* shape, Order* order) {
  if (FormOf(value) != Form::kArray || KindOf(value) != kind) {
    ThrowKindMismatch(path, kind, Form::kArray, value);
  }
  const ArrayDataUnion& array = value.array_data();
  if (!ShapeMatches(value)) {
    ThrowShapeMismatch(path, Shape(array.dimensions()), StoredElementCount(array), kind);
  }
  const std::optional<Order> stored_order = values_internal::StoredOrder(array);
  if (!stored_order) ThrowUnknownOrder(path, array.dataorder());
  *shape = values_internal::StoredShape(array);
  *order = *stored_order;
  return array;
}

}  // namespace detail
}  // namespace MavProtobuf
}  // namespace Tarnwick

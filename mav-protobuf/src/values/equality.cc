// Equality of values and trees, NaN equal to NaN.
#include <cmath>

#include "values_internal.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace {

template <typename T>
bool Same(const T& a, const T& b) {
  if constexpr (std::is_floating_point_v<T>) {
    return a == b || (std::isnan(a) && std::isnan(b));
  } else {
    return a == b;
  }
}

bool Same(const ChronoData& a, const ChronoData& b) {
  return a.seconds_content() == b.seconds_content() &&
         a.fractional_content() == b.fractional_content();
}

template <typename Part>
bool Same(const std::complex<Part>& a, const std::complex<Part>& b) {
  return Same(a.real(), b.real()) && Same(a.imag(), b.imag());
}

template <typename Sequence>
bool SameElements(const Sequence& a, const Sequence& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const auto& x, const auto& y) { return Same(x, y); });
}

bool SameScalar(const ScalarDataUnion& a, const ScalarDataUnion& b, Kind kind) {
  return VisitKind(kind, [&](auto tag) {
    using Tr = detail::Traits<typename decltype(tag)::type>;
    return Same(Tr::Scalar(a), Tr::Scalar(b));
  });
}

bool SameArray(const ArrayDataUnion& a, const ArrayDataUnion& b, Kind kind) {
  if (values_internal::StoredShape(a) != values_internal::StoredShape(b)) return false;
  const std::optional<Order> order_a = values_internal::StoredOrder(a);
  const std::optional<Order> order_b = values_internal::StoredOrder(b);
  if (order_a != order_b || (!order_a && a.dataorder() != b.dataorder())) return false;
  return VisitKind(kind, [&](auto tag) {
    using Tr = detail::Traits<typename decltype(tag)::type>;
    return SameElements(Tr::Values(a), Tr::Values(b));
  });
}

}  // namespace

bool Equal(const KVariant& a, const KVariant& b) {
  if (a.wellknowntype() != b.wellknowntype()) return false;
  const Form form = FormOf(a);
  const std::optional<Kind> kind = KindOf(a);
  if (form != FormOf(b) || kind != KindOf(b)) return false;
  if (!kind) return true;
  return form == Form::kScalar ? SameScalar(a.scalar_data(), b.scalar_data(), *kind)
                               : SameArray(a.array_data(), b.array_data(), *kind);
}

bool Equal(const PropertyNode& a, const PropertyNode& b) {
  if (a.type_case() != b.type_case()) return false;
  switch (a.type_case()) {
    case PropertyNode::kMapType: {
      const auto& entries_a = a.map_type().map_data();
      const auto& entries_b = b.map_type().map_data();
      if (entries_a.size() != entries_b.size()) return false;
      for (const auto& [key, node] : entries_a) {
        const auto found = entries_b.find(key);
        if (found == entries_b.end() || !Equal(node, found->second)) return false;
      }
      return true;
    }
    case PropertyNode::kListType:
      return std::equal(a.list_type().list_data().begin(), a.list_type().list_data().end(),
                        b.list_type().list_data().begin(), b.list_type().list_data().end(),
                        [](const PropertyNode& x, const PropertyNode& y) { return Equal(x, y); });
    case PropertyNode::kValueType:
      return Equal(a.value_type(), b.value_type());
    case PropertyNode::TYPE_NOT_SET:
      break;
  }
  return true;
}

}  // namespace MavProtobuf
}  // namespace Tarnwick

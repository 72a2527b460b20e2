// Trees to Python objects: maps to dicts, lists to lists, values to Python or
// NumPy scalars and arrays, and a Value wherever that would lose something.

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/wire_format_lite.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "MavValues.h"
#include "convert.h"

namespace mavpy {

using namespace Tarnwick::MavProtobuf;

std::string DeterministicBytes(const google::protobuf::Message& message) {
  std::string bytes;
  {
    google::protobuf::io::StringOutputStream out(&bytes);
    google::protobuf::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(true);
    message.SerializeToCodedStream(&coded);
  }
  return bytes;
}

py::bytes DeterministicPyBytes(const google::protobuf::Message& message) {
  const size_t size = message.ByteSizeLong();
  if (size > static_cast<size_t>(std::numeric_limits<int>::max())) {
    throw py::value_error("the tree is over 2 GiB serialized");
  }
  auto bytes = py::reinterpret_steal<py::bytes>(
      PyBytes_FromStringAndSize(nullptr, static_cast<py::ssize_t>(size)));
  if (!bytes) throw py::error_already_set();
  auto* target = reinterpret_cast<uint8_t*>(PyBytes_AS_STRING(bytes.ptr()));
  {
    py::gil_scoped_release unlocked;
    google::protobuf::io::ArrayOutputStream out(target, static_cast<int>(size));
    google::protobuf::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(true);
    message.SerializeWithCachedSizes(&coded);
  }
  return bytes;
}

KVariant Value::Variant() const {
  KVariant variant;
  variant.ParseFromString(bytes);
  return variant;
}

namespace {


// Text as str, or as bytes where it is not UTF-8.
py::object Text(const std::string& text) {
  if (google::protobuf::internal::IsStructurallyValidUTF8(text.data(),
                                                         static_cast<int>(text.size()))) {
    return py::str(text);
  }
  return py::bytes(text);
}

// Nanoseconds of seconds plus a fraction, when they fit datetime64[ns].
std::optional<int64_t> Nanoseconds(const ChronoData& time) {
  if (time.fractional_content() >= 1000000000u) return std::nullopt;
  int64_t ns;
  if (__builtin_mul_overflow(time.seconds_content(), int64_t{1000000000}, &ns) ||
      __builtin_add_overflow(ns, static_cast<int64_t>(time.fractional_content()), &ns)) {
    return std::nullopt;
  }
  return ns;
}

template <typename Narrow, typename Wide>
std::optional<py::object> NarrowScalar(Wide value, py::handle type) {
  if (!detail::InRange<Narrow>(value)) return std::nullopt;
  return type(value);
}

std::optional<py::object> PlainScalar(const ScalarDataUnion& scalar) {
  using S = ScalarDataUnion;
  switch (scalar.content_case()) {
    case S::kStringContent:
      return Text(scalar.string_content());
    case S::kFloatContent:
      return Types().float32(scalar.float_content());
    case S::kDoubleContent:
      return py::float_(scalar.double_content());
    case S::kInt8Content:
      return NarrowScalar<int8_t>(scalar.int8_content(), Types().int8);
    case S::kInt16Content:
      return NarrowScalar<int16_t>(scalar.int16_content(), Types().int16);
    case S::kInt32Content:
      return Types().int32(scalar.int32_content());
    case S::kInt64Content:
      return py::int_(scalar.int64_content());
    case S::kUnsignedInt8Content:
      return NarrowScalar<uint8_t>(scalar.unsignedint8_content(), Types().uint8);
    case S::kUnsignedInt16Content:
      return NarrowScalar<uint16_t>(scalar.unsignedint16_content(), Types().uint16);
    case S::kUnsignedInt32Content:
      return Types().uint32(scalar.unsignedint32_content());
    case S::kUnsignedInt64Content:
      return Types().uint64(py::int_(scalar.unsignedint64_content()));
    case S::kBoolContent:
      return py::bool_(scalar.bool_content());
    case S::kComplexFloatContent: {
      const auto& c = scalar.complexfloat_content();
      return Types().complex64(
          py::reinterpret_steal<py::object>(PyComplex_FromDoubles(c.re_content(), c.im_content())));
    }
    case S::kComplexDoubleContent: {
      const auto& c = scalar.complexdouble_content();
      return py::reinterpret_steal<py::object>(
          PyComplex_FromDoubles(c.re_content(), c.im_content()));
    }
    case S::kDurationContent:
    case S::kTimePointContent: {
      const bool duration = scalar.content_case() == S::kDurationContent;
      const auto ns = Nanoseconds(duration ? scalar.duration_content() : scalar.timepoint_content());
      if (!ns) return std::nullopt;
      return (duration ? Types().timedelta64 : Types().datetime64)(*ns, "ns");
    }
    case S::CONTENT_NOT_SET:
      break;
  }
  return std::nullopt;
}

// An array's shape and strides (in bytes) for its order.
struct Layout {
  std::vector<py::ssize_t> shape, strides;
  size_t count = 1;
};

std::optional<Layout> LayoutOf(const ArrayDataUnion& array, size_t item_size, size_t elements) {
  const std::string& order = array.dataorder();
  if (array.dimensions_size() == 0 || (order != "C" && order != "F")) return std::nullopt;
  Layout layout;
  for (uint32_t extent : array.dimensions()) {
    layout.shape.push_back(extent);
    if (__builtin_mul_overflow(layout.count, size_t{extent}, &layout.count)) return std::nullopt;
  }
  if (layout.count != elements) return std::nullopt;
  const size_t rank = layout.shape.size();
  layout.strides.resize(rank);
  py::ssize_t stride = static_cast<py::ssize_t>(item_size);
  for (size_t axis = 0; axis < rank; ++axis) {
    const size_t at = order == "C" ? rank - 1 - axis : axis;
    layout.strides[at] = stride;
    stride *= layout.shape[at];
  }
  return layout;
}

// Elements in place (read-only, kept alive by the source's base) or copied.
template <typename T>
py::object Elements(const T* data, size_t count, const ArrayDataUnion& array,
                    const ArraySource& source, const char* dtype = nullptr) {
  const auto layout = LayoutOf(array, sizeof(T), count);
  if (!layout) return py::none();
  const py::dtype type = dtype ? py::dtype(dtype) : py::dtype::of<T>();
  if (source.base.is_none() || data == nullptr) {
    py::array copy(type, layout->shape, layout->strides);
    if (count > 0) std::memcpy(copy.mutable_data(), data, count * sizeof(T));
    return std::move(copy);
  }
  py::array view(type, layout->shape, layout->strides, data, source.base);
  py::detail::array_proxy(view.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return std::move(view);
}

template <typename T>
py::object Elements(const google::protobuf::RepeatedField<T>& values, const ArrayDataUnion& array,
                    const ArraySource& source) {
  return Elements(values.data(), static_cast<size_t>(values.size()), array, source);
}

// Elements that must be widened or narrowed on the way (16-bit kinds, times).
template <typename Out, typename Convert>
py::object Converted(size_t count, const ArrayDataUnion& array, const char* dtype,
                     Convert convert) {
  const auto layout = LayoutOf(array, sizeof(Out), count);
  if (!layout) return py::none();
  py::array out(py::dtype(dtype), layout->shape, layout->strides);
  Out* target = static_cast<Out*>(out.mutable_data());
  for (size_t at = 0; at < count; ++at) {
    if (!convert(at, &target[at])) return py::none();
  }
  return std::move(out);
}

template <typename Narrow, typename Wide>
py::object NarrowArray(const google::protobuf::RepeatedField<Wide>& values,
                       const ArrayDataUnion& array, const char* dtype) {
  const Wide* data = values.data();
  return Converted<Narrow>(values.size(), array, dtype, [data](size_t at, Narrow* out) {
    *out = static_cast<Narrow>(data[at]);
    return detail::InRange<Narrow>(data[at]);
  });
}

py::object TimeArray(const ArrayChronoData& times, const ArrayDataUnion& array, const char* dtype) {
  return Converted<int64_t>(times.chrono_content_size(), array, dtype,
                            [&times](size_t at, int64_t* out) {
                              const auto ns = Nanoseconds(times.chrono_content(static_cast<int>(at)));
                              if (!ns) return false;
                              *out = *ns;
                              return true;
                            });
}

py::object StringArray(const ArrayString& strings, const ArrayDataUnion& array) {
  const auto layout = LayoutOf(array, sizeof(PyObject*), strings.string_content_size());
  if (!layout) return py::none();
  py::array out(py::dtype("O"), layout->shape, layout->strides);
  auto** target = static_cast<PyObject**>(out.mutable_data());
  for (int at = 0; at < strings.string_content_size(); ++at) {
    py::object text = Text(strings.string_content(at));
    Py_XDECREF(target[at]);
    target[at] = text.release().ptr();
  }
  return std::move(out);
}

// The array as NumPy gives it, or None where the plain form cannot say it.
py::object PlainArray(const ArrayDataUnion& array, const ArraySource& source) {
  using A = ArrayDataUnion;
  switch (array.content_case()) {
    case A::kStringContent:
      return StringArray(array.string_content(), array);
    case A::kFloatContent:
      return Elements(array.float_content().float_content(), array, source);
    case A::kDoubleContent:
      return Elements(array.double_content().double_content(), array, source);
    case A::kInt8Content: {
      const std::string& bytes = array.int8_content().int8_content();
      return Elements(reinterpret_cast<const int8_t*>(bytes.data()), bytes.size(), array, source);
    }
    case A::kUnsignedInt8Content: {
      const std::string& bytes = array.unsignedint8_content().unsignedint8_content();
      return Elements(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), array, source);
    }
    case A::kInt16Content:
      return NarrowArray<int16_t>(array.int16_content().int16_content(), array, "int16");
    case A::kUnsignedInt16Content:
      return NarrowArray<uint16_t>(array.unsignedint16_content().unsignedint16_content(), array,
                                   "uint16");
    case A::kInt32Content:
      return Elements(array.int32_content().int32_content(), array, source);
    case A::kInt64Content:
      return Elements(array.int64_content().int64_content(), array, source);
    case A::kUnsignedInt32Content:
      return Elements(array.unsignedint32_content().unsignedint32_content(), array, source);
    case A::kUnsignedInt64Content:
      return Elements(array.unsignedint64_content().unsignedint64_content(), array, source);
    case A::kBoolContent:
      return Elements(array.bool_content().bool_content(), array, source);
    case A::kComplexFloatContent: {
      const auto& values = array.complexfloat_content().float_content();
      if (values.size() % 2 != 0) return py::none();
      return Elements(reinterpret_cast<const std::complex<float>*>(values.data()),
                      values.size() / 2, array, source);
    }
    case A::kComplexDoubleContent: {
      const auto& values = array.complexdouble_content().double_content();
      if (values.size() % 2 != 0) return py::none();
      return Elements(reinterpret_cast<const std::complex<double>*>(values.data()),
                      values.size() / 2, array, source);
    }
    case A::kDurationContent:
      return TimeArray(array.duration_content(), array, "timedelta64[ns]");
    case A::kTimePointContent:
      return TimeArray(array.timepoint_content(), array, "datetime64[ns]");
    case A::CONTENT_NOT_SET:
      break;
  }
  return py::none();
}

std::optional<py::object> Plain(const KVariant& value, const ArraySource& source) {
  if (value.has_scalar_data()) return PlainScalar(value.scalar_data());
  if (!value.has_array_data()) return std::nullopt;
  py::object array = PlainArray(value.array_data(), source);
  if (array.is_none()) return std::nullopt;
  return array;
}

}  // namespace

py::object ValueToPython(const KVariant& value, const ArraySource& source) {
  if (value.wellknowntype().empty()) {
    if (auto plain = Plain(value, source)) return *plain;
  }
  return py::cast(Value{DeterministicBytes(value)});
}

py::object PlainData(const KVariant& value) {
  KVariant untagged(value);
  untagged.clear_wellknowntype();
  if (auto plain = Plain(untagged, ArraySource{py::none()})) return *plain;
  return py::none();
}

py::object ToPython(const PropertyNode& node, const ArraySource& source) {
  switch (node.type_case()) {
    case PropertyNode::kMapType: {
      py::dict dict;
      for (const auto& [key, child] : node.map_type().map_data()) {
        dict[Text(key)] = ToPython(child, source);
      }
      return std::move(dict);
    }
    case PropertyNode::kListType: {
      const auto& items = node.list_type().list_data();
      py::list list(items.size());
      for (int at = 0; at < items.size(); ++at) {
        list[static_cast<size_t>(at)] = ToPython(items.Get(at), source);
      }
      return std::move(list);
    }
    case PropertyNode::kValueType:
      return ValueToPython(node.value_type(), source);
    case PropertyNode::TYPE_NOT_SET:
      break;
  }
  return py::none();
}

}  // namespace mavpy

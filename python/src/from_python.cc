// Python objects to trees. Every refusal names the path of the object it
// refuses: "settings.gain", "frame[3]".

#include <pybind11/numpy.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "convert.h"

namespace mavpy {

using namespace Tarnwick::MavProtobuf;
using namespace pybind11::literals;

namespace {


std::string Where(const std::string& path) { return path.empty() ? "the tree" : path; }

[[noreturn]] void Refuse(PyObject* type, const std::string& path, const std::string& what) {
  PyErr_SetString(type, (Where(path) + ": " + what).c_str());
  throw py::error_already_set();
}

std::string TypeName(py::handle object) {
  return py::str(py::type::handle_of(object).attr("__name__")).cast<std::string>();
}

// Seconds since the epoch (or in a duration) floored, and the nanoseconds
// past them.
struct Time {
  int64_t seconds = 0;
  uint64_t fraction = 0;
};
Time FromTicks(int64_t ticks, int64_t ticks_per_second, int64_t ns_per_tick) {
  int64_t seconds = ticks / ticks_per_second, rest = ticks % ticks_per_second;
  if (rest < 0) {
    rest += ticks_per_second;
    seconds -= 1;
  }
  return {seconds, static_cast<uint64_t>(rest * ns_per_tick)};
}
void SetTime(ChronoData* chrono, Time time) {
  chrono->set_seconds_content(time.seconds);
  chrono->set_fractional_content(time.fraction);
}

// NumPy's datetime64/timedelta64 units that are a fixed number of seconds or
// a fixed fraction of one, as ticks per second (or, negative, seconds per
// tick) and nanoseconds per tick.
Time FromNumpyTicks(int64_t ticks, const std::string& unit, const std::string& path) {
  struct Unit {
    const char* name;
    int64_t seconds_per_tick, ticks_per_second, ns_per_tick;
  };
  static const Unit units[] = {{"W", 604800, 1, 0}, {"D", 86400, 1, 0}, {"h", 3600, 1, 0},
                               {"m", 60, 1, 0},     {"s", 1, 1, 0},     {"ms", 0, 1000, 1000000},
                               {"us", 0, 1000000, 1000}, {"ns", 0, 1000000000, 1}};
  for (const Unit& u : units) {
    if (unit != u.name) continue;
    if (u.seconds_per_tick > 0) {
      int64_t seconds;
      if (__builtin_mul_overflow(ticks, u.seconds_per_tick, &seconds)) {
        Refuse(PyExc_OverflowError, path, "time out of range");
      }
      return {seconds, 0};
    }
    return FromTicks(ticks, u.ticks_per_second, u.ns_per_tick);
  }
  Refuse(PyExc_ValueError, path, "time unit '" + unit + "' is not a whole number of nanoseconds");
}

// The time of a NumPy datetime64/timedelta64 array, element by element.
template <typename Store>
void NumpyTimes(const py::array& array, const std::string& path, Store store) {
  const py::tuple data = Numpy().attr("datetime_data")(array.dtype());
  const std::string unit = data[0].cast<std::string>();
  const int64_t count = data[1].cast<int64_t>();
  // In memory order, which is the order the elements are stored in.
  const py::array ticks = array.attr("ravel")("K").attr("view")("int64");
  const auto* values = static_cast<const int64_t*>(ticks.data());
  for (py::ssize_t at = 0; at < ticks.size(); ++at) {
    if (values[at] == std::numeric_limits<int64_t>::min()) Refuse(PyExc_ValueError, path, "NaT");
    int64_t scaled;
    if (__builtin_mul_overflow(values[at], count, &scaled)) {
      Refuse(PyExc_OverflowError, path, "time out of range");
    }
    store(FromNumpyTicks(scaled, unit, path));
  }
}

void SetDimensions(ArrayDataUnion* array, const py::array& source, char order) {
  for (py::ssize_t axis = 0; axis < source.ndim(); ++axis) {
    const py::ssize_t extent = source.shape(axis);
    if (extent > static_cast<py::ssize_t>(std::numeric_limits<uint32_t>::max())) {
      throw std::length_error("extent");
    }
    array->add_dimensions(static_cast<uint32_t>(extent));
  }
  array->set_dataorder(&order, 1);
}

template <typename T, typename Field>
void CopyElements(const py::array& source, Field* field) {
  const auto* data = static_cast<const T*>(source.data());
  field->Resize(static_cast<int>(source.size()), T{});
  if (source.size() > 0) std::memcpy(field->mutable_data(), data, source.size() * sizeof(T));
}

template <typename Narrow, typename Field>
void WidenElements(const py::array& source, Field* field) {
  const auto* data = static_cast<const Narrow*>(source.data());
  field->Resize(static_cast<int>(source.size()), 0);
  auto* out = field->mutable_data();
  for (py::ssize_t at = 0; at < source.size(); ++at) out[at] = data[at];
}

void ArrayFromNumpy(py::array source, KVariant* value, const std::string& path) {
  if (!source.dtype().attr("isnative").cast<bool>()) {
    source = source.attr("astype")(source.dtype().attr("newbyteorder")("="));
  }
  // F order is kept for arrays that are Fortran-contiguous and not C-contiguous.
  const bool fortran = source.ndim() > 1 && (source.flags() & py::array::f_style) &&
                       !(source.flags() & py::array::c_style);
  const char order = fortran ? 'F' : 'C';
  source = Numpy().attr(fortran ? "asfortranarray" : "ascontiguousarray")(source);
  if (source.size() > std::numeric_limits<int>::max() / 2) {
    Refuse(PyExc_ValueError, path, "array too large");
  }
  ArrayDataUnion* array = value->mutable_array_data();
  try {
    SetDimensions(array, source, order);
  } catch (const std::length_error&) {
    Refuse(PyExc_ValueError, path, "an extent does not fit 32 bits");
  }
  const char kind = source.dtype().kind();
  const auto size = source.dtype().itemsize();
  switch (kind) {
    case 'f':
      if (size == 4) return CopyElements<float>(source, array->mutable_float_content()->mutable_float_content());
      if (size == 8) return CopyElements<double>(source, array->mutable_double_content()->mutable_double_content());
      break;
    case 'c':
      if (size == 8) {
        auto* field = array->mutable_complexfloat_content()->mutable_float_content();
        field->Resize(static_cast<int>(source.size() * 2), 0.0f);
        if (source.size() > 0) std::memcpy(field->mutable_data(), source.data(), source.size() * 8);
        return;
      }
      if (size == 16) {
        auto* field = array->mutable_complexdouble_content()->mutable_double_content();
        field->Resize(static_cast<int>(source.size() * 2), 0.0);
        if (source.size() > 0) std::memcpy(field->mutable_data(), source.data(), source.size() * 16);
        return;
      }
      break;
    case 'i':
      switch (size) {
        case 1:
          array->mutable_int8_content()->set_int8_content(source.data(), source.size());
          return;
        case 2:
          return WidenElements<int16_t>(source, array->mutable_int16_content()->mutable_int16_content());
        case 4:
          return CopyElements<int32_t>(source, array->mutable_int32_content()->mutable_int32_content());
        case 8:
          return CopyElements<int64_t>(source, array->mutable_int64_content()->mutable_int64_content());
      }
      break;
    case 'u':
      switch (size) {
        case 1:
          array->mutable_unsignedint8_content()->set_unsignedint8_content(source.data(), source.size());
          return;
        case 2:
          return WidenElements<uint16_t>(
              source, array->mutable_unsignedint16_content()->mutable_unsignedint16_content());
        case 4:
          return CopyElements<uint32_t>(
              source, array->mutable_unsignedint32_content()->mutable_unsignedint32_content());
        case 8:
          return CopyElements<uint64_t>(
              source, array->mutable_unsignedint64_content()->mutable_unsignedint64_content());
      }
      break;
    case 'b':
      return CopyElements<bool>(source, array->mutable_bool_content()->mutable_bool_content());
    case 'M':
    case 'm': {
      auto* times = kind == 'M' ? array->mutable_timepoint_content() : array->mutable_duration_content();
      NumpyTimes(source, path, [times](Time time) { SetTime(times->add_chrono_content(), time); });
      return;
    }
    case 'U':
    case 'S':
    case 'O': {
      auto* strings = array->mutable_string_content();
      const py::list items = source.attr("ravel")(py::str(std::string(1, order))).attr("tolist")();
      for (size_t at = 0; at < items.size(); ++at) {
        py::handle item = items[at];
        if (py::isinstance<py::str>(item)) {
          strings->add_string_content(item.cast<std::string>());
        } else if (py::isinstance<py::bytes>(item)) {
          strings->add_string_content(item.cast<std::string>());
        } else {
          Refuse(PyExc_TypeError, path,
                 "an object array holds only str or bytes, not " + TypeName(item));
        }
      }
      return;
    }
  }
  Refuse(PyExc_TypeError, path, "no kind for NumPy dtype " + py::str(source.dtype()).cast<std::string>());
}

// A NumPy scalar (or 0-d array) by its dtype.
void NumpyScalar(const py::array& source, KVariant* value, const std::string& path) {
  ScalarDataUnion* scalar = value->mutable_scalar_data();
  const char kind = source.dtype().kind();
  const auto size = source.dtype().itemsize();
  const py::object item = source.attr("item")();
  switch (kind) {
    case 'f':
      if (size == 4) return scalar->set_float_content(item.cast<float>());
      if (size == 8) return scalar->set_double_content(item.cast<double>());
      break;
    case 'c':
      if (size == 8 || size == 16) {
        const auto number = item.cast<std::complex<double>>();
        if (size == 8) {
          auto* c = scalar->mutable_complexfloat_content();
          c->set_re_content(static_cast<float>(number.real()));
          c->set_im_content(static_cast<float>(number.imag()));
        } else {
          auto* c = scalar->mutable_complexdouble_content();
          c->set_re_content(number.real());
          c->set_im_content(number.imag());
        }
        return;
      }
      break;
    case 'i':
      switch (size) {
        case 1: return scalar->set_int8_content(item.cast<int32_t>());
        case 2: return scalar->set_int16_content(item.cast<int32_t>());
        case 4: return scalar->set_int32_content(item.cast<int32_t>());
        case 8: return scalar->set_int64_content(item.cast<int64_t>());
      }
      break;
    case 'u':
      switch (size) {
        case 1: return scalar->set_unsignedint8_content(item.cast<uint32_t>());
        case 2: return scalar->set_unsignedint16_content(item.cast<uint32_t>());
        case 4: return scalar->set_unsignedint32_content(item.cast<uint32_t>());
        case 8: return scalar->set_unsignedint64_content(item.cast<uint64_t>());
      }
      break;
    case 'b':
      return scalar->set_bool_content(item.cast<bool>());
    case 'M':
    case 'm': {
      auto* chrono = kind == 'M' ? scalar->mutable_timepoint_content() : scalar->mutable_duration_content();
      NumpyTimes(source.attr("reshape")(1), path, [chrono](Time time) { SetTime(chrono, time); });
      return;
    }
    case 'U':
    case 'S':
      return scalar->set_string_content(item.cast<std::string>());
  }
  Refuse(PyExc_TypeError, path, "no kind for NumPy dtype " + py::str(source.dtype()).cast<std::string>());
}

// datetime.datetime: naive means UTC; aware is taken at its UTC offset.
Time FromDatetime(py::handle when) {
  py::object moment = py::reinterpret_borrow<py::object>(when);
  const py::object offset = moment.attr("utcoffset")();
  if (!offset.is_none()) moment = moment.attr("replace")("tzinfo"_a = py::none()) - offset;
  const int64_t days = moment.attr("toordinal")().cast<int64_t>() - 719163;  // 1970-01-01
  const int64_t seconds = days * 86400 + moment.attr("hour").cast<int64_t>() * 3600 +
                          moment.attr("minute").cast<int64_t>() * 60 +
                          moment.attr("second").cast<int64_t>();
  return {seconds, moment.attr("microsecond").cast<uint64_t>() * 1000};
}
Time FromTimedelta(py::handle span) {
  const int64_t seconds =
      span.attr("days").cast<int64_t>() * 86400 + span.attr("seconds").cast<int64_t>();
  return {seconds, span.attr("microseconds").cast<uint64_t>() * 1000};
}

}  // namespace

void ValueFromPython(py::handle object, KVariant* value, const std::string& path) {
  if (py::isinstance<Value>(object)) {
    if (!value->ParseFromString(object.cast<const Value&>().bytes)) {
      Refuse(PyExc_ValueError, path, "a Value whose bytes are not a value");
    }
    return;
  }
  ScalarDataUnion* scalar;
  if (py::isinstance<py::bool_>(object)) {
    return value->mutable_scalar_data()->set_bool_content(object.cast<bool>());
  }
  if (py::isinstance<py::int_>(object)) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(object.ptr(), &overflow);
    if (overflow != 0) {
      Refuse(PyExc_OverflowError, path,
             py::str(object).cast<std::string>() + " does not fit int64");
    }
    return value->mutable_scalar_data()->set_int64_content(number);
  }
  if (py::isinstance<py::float_>(object)) {
    return value->mutable_scalar_data()->set_double_content(object.cast<double>());
  }
  if (PyComplex_Check(object.ptr())) {
    scalar = value->mutable_scalar_data();
    scalar->mutable_complexdouble_content()->set_re_content(PyComplex_RealAsDouble(object.ptr()));
    scalar->mutable_complexdouble_content()->set_im_content(PyComplex_ImagAsDouble(object.ptr()));
    return;
  }
  if (py::isinstance<py::str>(object) || py::isinstance<py::bytes>(object)) {
    return value->mutable_scalar_data()->set_string_content(object.cast<std::string>());
  }
  if (py::isinstance(object, Datetime().attr("datetime"))) {
    return SetTime(value->mutable_scalar_data()->mutable_timepoint_content(), FromDatetime(object));
  }
  if (py::isinstance(object, Datetime().attr("timedelta"))) {
    return SetTime(value->mutable_scalar_data()->mutable_duration_content(), FromTimedelta(object));
  }
  if (py::isinstance<py::array>(object) || py::isinstance(object, Numpy().attr("generic"))) {
    const py::array array = py::array::ensure(object);
    if (array.ndim() == 0) return NumpyScalar(array, value, path);
    return ArrayFromNumpy(array, value, path);
  }
  Refuse(PyExc_TypeError, path, "cannot store a " + TypeName(object));
}

void FromPython(py::handle object, PropertyNode* node, std::string* path) {
  if (object.is_none()) return;
  if (py::isinstance<py::dict>(object)) {
    auto* map = node->mutable_map_type()->mutable_map_data();
    const size_t length = path->size();
    for (const auto& [key, child] : py::reinterpret_borrow<py::dict>(object)) {
      if (!py::isinstance<py::str>(key) && !py::isinstance<py::bytes>(key)) {
        Refuse(PyExc_TypeError, *path, "a map key must be str or bytes, not " + TypeName(key));
      }
      const std::string name = key.cast<std::string>();
      if (!path->empty()) path->push_back('.');
      path->append(name);
      FromPython(child, &(*map)[name], path);
      path->resize(length);
    }
    return;
  }
  if (py::isinstance<py::list>(object) || py::isinstance<py::tuple>(object)) {
    auto* list = node->mutable_list_type();
    const size_t length = path->size();
    size_t index = 0;
    for (py::handle item : object) {
      path->append("[" + std::to_string(index++) + "]");
      FromPython(item, list->add_list_data(), path);
      path->resize(length);
    }
    return;
  }
  ValueFromPython(object, node->mutable_value_type(), *path);
}

}  // namespace mavpy

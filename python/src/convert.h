// The mapping between trees and Python objects, both ways.
#ifndef MAV_PROTOBUF_PYTHON_CONVERT_H_
#define MAV_PROTOBUF_PYTHON_CONVERT_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "Mav.pb.h"

namespace mavpy {

namespace py = pybind11;
using Tarnwick::MavProtobuf::KVariant;
using Tarnwick::MavProtobuf::PropertyNode;

// Modules used on every call, imported once and kept for the process's life
// (never released: the interpreter may be gone when static objects die).
inline py::module_& Numpy() {
  static auto* numpy = new py::module_(py::module_::import("numpy"));
  return *numpy;
}
// The NumPy scalar types that values come back as, looked up once.
struct NumpyTypes {
  py::handle float32 = py::object(Numpy().attr("float32")).release();
  py::handle int8 = py::object(Numpy().attr("int8")).release();
  py::handle int16 = py::object(Numpy().attr("int16")).release();
  py::handle int32 = py::object(Numpy().attr("int32")).release();
  py::handle uint8 = py::object(Numpy().attr("uint8")).release();
  py::handle uint16 = py::object(Numpy().attr("uint16")).release();
  py::handle uint32 = py::object(Numpy().attr("uint32")).release();
  py::handle uint64 = py::object(Numpy().attr("uint64")).release();
  py::handle complex64 = py::object(Numpy().attr("complex64")).release();
  py::handle datetime64 = py::object(Numpy().attr("datetime64")).release();
  py::handle timedelta64 = py::object(Numpy().attr("timedelta64")).release();
};
inline const NumpyTypes& Types() {
  static const auto* types = new NumpyTypes();
  return *types;
}
inline py::module_& Datetime() {
  static auto* datetime = new py::module_(py::module_::import("datetime"));
  return *datetime;
}

// Bytes that are not a tree (raised in Python as mavprotobuf.DecodeError).
struct DecodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A value that the plain mapping cannot say (a wellknowntype tag, a narrow
// integer outside its kind, dimensions that do not match the elements, no
// member at all, a time outside datetime64[ns]): it keeps the value's bytes,
// so that writing it gives them back exactly.
struct Value {
  std::string bytes;  // the KVariant, deterministically serialized

  KVariant Variant() const;
};

// Where the arrays handed out by ToPython may point instead of being copied:
// into the elements of `tree`, which the base object keeps alive.
struct ArraySource {
  py::object base;  // None: copy every array
};

py::object ToPython(const PropertyNode& node, const ArraySource& source);
// The plain Python form of `value`, or a Value where the plain form would not
// give the same bytes back.
py::object ValueToPython(const KVariant& value, const ArraySource& source);
// The plain form of `value`, whatever it holds; None when it has no member.
py::object PlainData(const KVariant& value);

// Fills `node` from a Python tree; `path` ("settings.gain", "frame[3]") names
// the object being read in errors.
void FromPython(py::handle object, PropertyNode* node, std::string* path);
void ValueFromPython(py::handle object, KVariant* value, const std::string& path);

// The deterministic serialization of a message.
std::string DeterministicBytes(const google::protobuf::Message& message);
// The same as a Python bytes object, written straight into it.
py::bytes DeterministicPyBytes(const google::protobuf::Message& message);

}  // namespace mavpy

#endif  // MAV_PROTOBUF_PYTHON_CONVERT_H_

// The C++ half of the mavprotobuf package: bytes and JSON to Python trees and
// back. The package's __init__.py adds files, records and the documentation.

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include "MavJson.h"
#include "MavValues.h"
#include "convert.h"

namespace mavpy {
namespace {

using namespace Tarnwick::MavProtobuf;

// Parses with the GIL released; large inputs take a while.
std::shared_ptr<PropertyNode> Parse(const char* data, size_t size) {
  auto tree = std::make_shared<PropertyNode>();
  bool ok;
  {
    py::gil_scoped_release unlocked;
    ok = size <= static_cast<size_t>(std::numeric_limits<int>::max()) &&
         tree->ParseFromArray(data, static_cast<int>(size));
  }
  if (!ok) {
    throw DecodeError(size > static_cast<size_t>(std::numeric_limits<int>::max())
                          ? "input over 2 GiB"
                          : "not a valid tree (" + std::to_string(size) + " bytes)");
  }
  return tree;
}

py::object Loads(const py::buffer& data, bool copy) {
  const py::buffer_info info = data.request();
  if (!PyBuffer_IsContiguous(reinterpret_cast<Py_buffer*>(info.view()), 'C')) {
    throw py::value_error("loads needs contiguous bytes");
  }
  const auto tree = Parse(static_cast<const char*>(info.ptr),
                          static_cast<size_t>(info.size * info.itemsize));
  ArraySource source{py::none()};
  if (!copy) {
    // Arrays point into the parsed tree, which lives as long as any of them.
    auto* owner = new std::shared_ptr<const PropertyNode>(tree);
    source.base = py::capsule(owner, [](void* pointer) {
      delete static_cast<std::shared_ptr<const PropertyNode>*>(pointer);
    });
  }
  return ToPython(*tree, source);
}

PropertyNode TreeOf(py::handle tree) {
  PropertyNode node;
  std::string path;
  FromPython(tree, &node, &path);
  return node;
}

py::bytes Dumps(py::handle tree) { return DeterministicPyBytes(TreeOf(tree)); }

std::string ToJsonText(py::handle tree, bool pretty) {
  const PropertyNode node = TreeOf(tree);
  try {
    return ToJson(node, JsonOptions{pretty}) + "\n";
  } catch (const ValueError& error) {
    throw py::value_error(error.what());
  }
}

py::object FromJsonText(std::string_view text) {
  PropertyNode node;
  JsonError error;
  if (!FromJson(text, &node, &error)) throw py::value_error(error.ToString());
  return ToPython(node, ArraySource{py::none()});
}

Value MakeValue(py::handle data, const std::string& wellknowntype) {
  KVariant variant;
  if (!data.is_none()) ValueFromPython(data, &variant, "data");
  variant.set_wellknowntype(wellknowntype);
  return Value{DeterministicBytes(variant)};
}

Value ValueFromBytes(const py::bytes& bytes) {
  KVariant variant;
  if (!variant.ParseFromString(bytes)) throw DecodeError("not a valid value");
  return Value{DeterministicBytes(variant)};
}

py::object KindText(const Value& value) {
  const auto kind = KindOf(value.Variant());
  if (!kind) return py::none();
  return py::str(std::string(KindName(*kind)));
}

std::string Repr(const Value& value) {
  const KVariant variant = value.Variant();
  std::string text = "mavprotobuf.Value(";
  text += py::repr(PlainData(variant)).cast<std::string>();
  if (!variant.wellknowntype().empty()) {
    text += ", wellknowntype=" + py::repr(py::bytes(variant.wellknowntype())).cast<std::string>();
  }
  return text + ")";
}

// For bench/python_bench.py: the best of `repeats` C++ parses and
// deterministic serializations of `data`, in seconds, without Python objects.
py::dict CppTimings(const py::bytes& data, int repeats) {
  const std::string bytes = data;
  double parse = 1e300, serialize = 1e300;
  py::gil_scoped_release unlocked;
  for (int run = 0; run < repeats; ++run) {
    const auto start = std::chrono::steady_clock::now();
    PropertyNode tree;
    tree.ParseFromString(bytes);
    const auto parsed = std::chrono::steady_clock::now();
    std::string again(tree.ByteSizeLong(), '\0');
    {
      google::protobuf::io::ArrayOutputStream out(again.data(), static_cast<int>(again.size()));
      google::protobuf::io::CodedOutputStream coded(&out);
      coded.SetSerializationDeterministic(true);
      tree.SerializeWithCachedSizes(&coded);
    }
    const auto written = std::chrono::steady_clock::now();
    parse = std::min(parse, std::chrono::duration<double>(parsed - start).count());
    serialize = std::min(serialize, std::chrono::duration<double>(written - parsed).count());
  }
  py::gil_scoped_acquire locked;
  py::dict timings;
  timings["parse"] = parse;
  timings["serialize"] = serialize;
  return timings;
}

}  // namespace
}  // namespace mavpy

PYBIND11_MODULE(_mavprotobuf, module) {
  using namespace mavpy;
  module.doc() = "The compiled half of mavprotobuf; use the mavprotobuf package.";
  py::register_exception<DecodeError>(module, "DecodeError", PyExc_ValueError);

  py::class_<Value>(module, "Value", R"(A value the plain mapping cannot say.

It keeps the value's bytes, so writing it gives them back exactly: a
wellknowntype tag, an 8- or 16-bit value outside its kind's range, dimensions
that do not match the element count, an order other than 'C' or 'F', a value
with no member, a time outside datetime64[ns].

Value(data=None, wellknowntype=b'') makes one from plain data and a tag;
Value.from_bytes(b) from a value's serialized bytes.)")
      .def(py::init(&MakeValue), py::arg("data") = py::none(), py::arg("wellknowntype") = "")
      .def_static("from_bytes", &ValueFromBytes, py::arg("data"),
                  "The value serialized in `data` (a KVariant's bytes).")
      .def("to_bytes", [](const Value& value) { return py::bytes(value.bytes); },
           "The value's deterministic serialization.")
      .def_property_readonly("wellknowntype",
                             [](const Value& value) { return py::bytes(value.Variant().wellknowntype()); },
                             "The tag (bytes; empty when there is none).")
      .def_property_readonly("kind", &KindText, "The element kind ('float64', ...), or None.")
      .def_property_readonly("data", [](const Value& value) { return PlainData(value.Variant()); },
                             "The plain form of the value without its tag, or None where even "
                             "that cannot be said plainly.")
      .def_property_readonly(
          "dimensions",
          [](const Value& value) {
            const KVariant variant = value.Variant();
            py::list extents;
            for (uint32_t extent : variant.array_data().dimensions()) extents.append(extent);
            return py::tuple(extents);
          },
          "The stored dimensions of an array (a tuple; empty for a scalar).")
      .def_property_readonly("order", [](const Value& value) {
            return py::bytes(value.Variant().array_data().dataorder());
          }, "The stored dataorder of an array (bytes).")
      .def("__eq__", [](const Value& a, py::handle b) {
            return py::isinstance<Value>(b) && a.bytes == b.cast<const Value&>().bytes;
          })
      .def("__hash__", [](const Value& value) { return py::hash(py::bytes(value.bytes)); })
      .def("__repr__", &Repr)
      .def(py::pickle([](const Value& value) { return py::bytes(value.bytes); },
                      [](const py::bytes& bytes) { return Value{bytes}; }));

  module.def("loads", &Loads, py::arg("data"), py::kw_only(), py::arg("copy") = false);
  module.def("dumps", &Dumps, py::arg("tree"));
  module.def("to_json", &ToJsonText, py::arg("tree"), py::kw_only(), py::arg("pretty") = true);
  module.def("from_json", &FromJsonText, py::arg("text"));
  module.def("_cpp_timings", &CppTimings, py::arg("data"), py::arg("repeats"));
}

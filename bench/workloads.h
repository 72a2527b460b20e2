// The messages the benchmarks time: the four workloads the library's speed
// goals are stated for, and a detector-frame record of the kind the library
// was made to carry. Each builder fills the library's own classes; the
// reference implementations read the same bytes.
#ifndef MAV_PROTOBUF_BENCH_WORKLOADS_H_
#define MAV_PROTOBUF_BENCH_WORKLOADS_H_

#include <google/protobuf/struct.pb.h>

#include <cstdio>
#include <string>

#include "Mav.pb.h"

namespace mav_bench {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;

constexpr int kGridSide = 1024;                     // W1, W2: 1024 x 1024 elements
constexpr int kGroups = 100, kLeavesPerGroup = 100;  // W3
constexpr int kListLength = 10000;                  // W4
constexpr int kFrameSide = 512;                     // detector frame

inline std::string Numbered(const char* stem, int n) {
  char name[32];
  std::snprintf(name, sizeof(name), "%s-%02d", stem, n);
  return name;
}

// W1: an 8 MiB image of doubles.
inline KVariant DoubleGrid() {
  KVariant value;
  ArrayDataUnion* array = value.mutable_array_data();
  auto* elements = array->mutable_double_content()->mutable_double_content();
  elements->Reserve(kGridSide * kGridSide);
  for (int i = 0; i < kGridSide * kGridSide; ++i) elements->AddAlreadyReserved(i * 0.25);
  array->add_dimensions(kGridSide);
  array->add_dimensions(kGridSide);
  return value;
}

// W2: the same image as 16-bit counts, which travel as one- to three-byte
// varints. `side` may be raised for the memory probe.
inline KVariant UInt16Grid(int rows = kGridSide, int cols = kGridSide) {
  KVariant value;
  ArrayDataUnion* array = value.mutable_array_data();
  auto* elements = array->mutable_unsignedint16_content()->mutable_unsignedint16_content();
  elements->Reserve(rows * cols);
  for (int i = 0; i < rows * cols; ++i) elements->AddAlreadyReserved(static_cast<uint32_t>(i % 65536));
  array->add_dimensions(static_cast<uint32_t>(rows));
  array->add_dimensions(static_cast<uint32_t>(cols));
  return value;
}

// W3 leaves cycle through these five kinds.
inline void FillLeaf(int n, KVariant* leaf) {
  ScalarDataUnion* scalar = leaf->mutable_scalar_data();
  switch (n % 5) {
    case 0: scalar->set_double_content(n * 1.5); break;
    case 1: scalar->set_int32_content(n * 7); break;
    case 2: scalar->set_string_content("text-value-" + std::to_string(10000 + n)); break;  // 16 bytes
    case 3: scalar->set_bool_content(n % 2 == 0); break;
    default:
      scalar->mutable_duration_content()->set_seconds_content(n);
      scalar->mutable_duration_content()->set_fractional_content(500000000u + n);
      break;
  }
}

// W3: a map of parameter groups, each a map of scalar leaves.
inline PropertyNode GroupedParameters() {
  PropertyNode root;
  auto* groups = root.mutable_map_type()->mutable_map_data();
  for (int g = 0; g < kGroups; ++g) {
    auto* leaves = (*groups)[Numbered("group", g)].mutable_map_type()->mutable_map_data();
    for (int p = 0; p < kLeavesPerGroup; ++p) {
      FillLeaf(g * kLeavesPerGroup + p, (*leaves)[Numbered("param", p)].mutable_value_type());
    }
  }
  return root;
}

// W3 as a user would hold it in the runtime's own Struct: the same keys, the
// numbers as numbers, the duration as a struct of its two parts.
inline pb::Struct GroupedParametersStruct() {
  pb::Struct root;
  auto* groups = root.mutable_fields();
  for (int g = 0; g < kGroups; ++g) {
    auto* leaves = (*groups)[Numbered("group", g)].mutable_struct_value()->mutable_fields();
    for (int p = 0; p < kLeavesPerGroup; ++p) {
      const int n = g * kLeavesPerGroup + p;
      pb::Value& leaf = (*leaves)[Numbered("param", p)];
      switch (n % 5) {
        case 0: leaf.set_number_value(n * 1.5); break;
        case 1: leaf.set_number_value(n * 7); break;
        case 2: leaf.set_string_value("text-value-" + std::to_string(10000 + n)); break;
        case 3: leaf.set_bool_value(n % 2 == 0); break;
        default: {
          auto* parts = leaf.mutable_struct_value()->mutable_fields();
          (*parts)["seconds"].set_number_value(n);
          (*parts)["fractional"].set_number_value(500000000.0 + n);
        }
      }
    }
  }
  return root;
}

// W4: a list of small 4 x 4 float matrices.
inline PropertyNode FloatMatrixList() {
  PropertyNode root;
  PropertyList* list = root.mutable_list_type();
  for (int i = 0; i < kListLength; ++i) {
    ArrayDataUnion* array = list->add_list_data()->mutable_value_type()->mutable_array_data();
    ArrayFloat* elements = array->mutable_float_content();
    for (int k = 0; k < 16; ++k) elements->add_float_content(static_cast<float>(i + k) * 0.5f);
    array->add_dimensions(4);
    array->add_dimensions(4);
  }
  return root;
}

// One detector readout: a few scalars, a 512 x 512 frame of counts and a 3 x 3
// calibration matrix.
inline PropertyNode DetectorFrame() {
  PropertyNode root;
  auto* fields = root.mutable_map_type()->mutable_map_data();
  (*fields)["detector"].mutable_value_type()->mutable_scalar_data()->set_string_content("pixel-array-A");
  (*fields)["frame_number"].mutable_value_type()->mutable_scalar_data()->set_int64_content(123456);
  (*fields)["exposure_s"].mutable_value_type()->mutable_scalar_data()->set_double_content(0.004);
  (*fields)["temperature_k"].mutable_value_type()->mutable_scalar_data()->set_double_content(243.5);
  ArrayDataUnion* frame = (*fields)["frame"].mutable_value_type()->mutable_array_data();
  auto* counts = frame->mutable_unsignedint16_content()->mutable_unsignedint16_content();
  for (int i = 0; i < kFrameSide * kFrameSide; ++i) counts->Add(static_cast<uint32_t>((i * 2654435761u) >> 20));
  frame->add_dimensions(kFrameSide);
  frame->add_dimensions(kFrameSide);
  ArrayDataUnion* calibration = (*fields)["calibration"].mutable_value_type()->mutable_array_data();
  for (int i = 0; i < 9; ++i) calibration->mutable_double_content()->add_double_content(i == 0 || i == 4 || i == 8 ? 1.0 : 0.01 * i);
  calibration->add_dimensions(3);
  calibration->add_dimensions(3);
  return root;
}

}  // namespace mav_bench

#endif  // MAV_PROTOBUF_BENCH_WORKLOADS_H_

// Reading in place against parsing: each workload's bytes are read through
// MavView.h the way a reader who wants a part of them would, and parsed whole
// (a fresh PropertyNode each time) in the same process, so that the report can
// give each view operation as a ratio to the parse.
#include <benchmark/benchmark.h>

#include "MavView.h"
#include "workloads.h"

namespace mav_bench {
namespace {

const std::string& Bytes(const char* workload) {
  static const std::string w1 = [] {
    PropertyNode node;
    *node.mutable_value_type() = DoubleGrid();
    return node.SerializeAsString();
  }();
  static const std::string w2 = [] {
    PropertyNode node;
    *node.mutable_value_type() = UInt16Grid();
    return node.SerializeAsString();
  }();
  static const std::string w3 = GroupedParameters().SerializeAsString();
  static const std::string w4 = FloatMatrixList().SerializeAsString();
  switch (workload[1]) {
    case '1': return w1;
    case '2': return w2;
    case '3': return w3;
    default: return w4;
  }
}

void ParseFresh(benchmark::State& state, const char* workload) {
  const std::string& bytes = Bytes(workload);
  for (auto _ : state) {
    PropertyNode node;
    benchmark::DoNotOptimize(node.ParseFromString(bytes));
  }
}

// One leaf of W3 by its path.
void LookupOneLeaf(benchmark::State& state) {
  const std::string& bytes = Bytes("W3");
  for (auto _ : state) {
    benchmark::DoNotOptimize(NodeView(bytes).ValueAt("group-57/param-80").Get<double>());
  }
}

// Every leaf of W3, its scalar read as its kind.
void VisitEveryLeaf(benchmark::State& state) {
  const std::string& bytes = Bytes("W3");
  for (auto _ : state) {
    size_t read = 0;
    for (const EntryView& group : NodeView(bytes).map()) {
      for (const EntryView& leaf : group.node.map()) {
        const ValueView value = leaf.node.value();
        switch (*value.kind()) {
          case Kind::kFloat64: read += value.Get<double>() != 0; break;
          case Kind::kInt32: read += value.Get<int32_t>() != 0; break;
          case Kind::kString: read += value.Get<std::string_view>().size(); break;
          case Kind::kBool: read += value.Get<bool>(); break;
          default: read += value.Get<std::chrono::nanoseconds>().count() != 0; break;
        }
      }
    }
    benchmark::DoNotOptimize(read);
  }
}

// W1's 8 MiB of doubles where they lie.
void ArrayInPlace(benchmark::State& state) {
  const std::string& bytes = Bytes("W1");
  for (auto _ : state) {
    benchmark::DoNotOptimize(NodeView(bytes).value().ArrayBytes(Kind::kFloat64).data());
  }
}

// W2's varints decoded into a buffer the caller keeps.
void DecodeIntoBuffer(benchmark::State& state) {
  const std::string& bytes = Bytes("W2");
  std::vector<uint16_t> buffer(size_t{kGridSide} * kGridSide);
  for (auto _ : state) {
    benchmark::DoNotOptimize(NodeView(bytes).value().CopyArray(buffer.data(), buffer.size()).data());
  }
}

// Every matrix of W4 copied out.
void CopyEveryMatrix(benchmark::State& state) {
  const std::string& bytes = Bytes("W4");
  float matrix[16];
  for (auto _ : state) {
    float sum = 0;
    for (const NodeView& item : NodeView(bytes).list()) {
      item.value().CopyArray(matrix, 16);
      sum += matrix[15];
    }
    benchmark::DoNotOptimize(sum);
  }
}

BENCHMARK_CAPTURE(ParseFresh, W3, "W3")->Name("view/W3/parse_fresh");
BENCHMARK(LookupOneLeaf)->Name("view/W3/lookup_one_leaf");
BENCHMARK(VisitEveryLeaf)->Name("view/W3/visit_every_leaf");
BENCHMARK_CAPTURE(ParseFresh, W1, "W1")->Name("view/W1/parse_fresh");
BENCHMARK(ArrayInPlace)->Name("view/W1/array_in_place");
BENCHMARK_CAPTURE(ParseFresh, W2, "W2")->Name("view/W2/parse_fresh");
BENCHMARK(DecodeIntoBuffer)->Name("view/W2/decode_into_buffer");
BENCHMARK_CAPTURE(ParseFresh, W4, "W4")->Name("view/W4/parse_fresh");
BENCHMARK(CopyEveryMatrix)->Name("view/W4/copy_every_matrix");

}  // namespace
}  // namespace mav_bench

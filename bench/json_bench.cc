// The natural JSON form: W1, a 1024x1024 float64 image as one KVariant, in ns
// per element; W3, a map of 100 groups of 100 leaves, in ns per leaf.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <vector>

#include "MavJson.h"
#include "MavValues.h"

namespace {

using namespace Tarnwick::MavProtobuf;

constexpr size_t kSide = 1024;
constexpr int kGroups = 100;
constexpr int kLeaves = 100;

KVariant Image() {
  std::vector<double> pixels(kSide * kSide);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = 0.001 * static_cast<double>(i % 65536) + 1.0 / 3.0;
  KVariant image;
  SetArray(image, pixels, Shape{kSide, kSide});
  return image;
}

// Leaves cycle through float64, int32, 16-byte text, bool and duration.
PropertyNode Tree() {
  PropertyNode root;
  char name[16];
  for (int g = 0; g < kGroups; ++g) {
    std::snprintf(name, sizeof(name), "group-%02d", g);
    PropertyNode& group = Child(root, name);
    for (int l = 0; l < kLeaves; ++l) {
      std::snprintf(name, sizeof(name), "param-%02d", l);
      switch (l % 5) {
        case 0: SetLeaf(group, name, 0.5 * l + g); break;
        case 1: SetLeaf(group, name, int32_t{l * 1000 - g}); break;
        case 2: SetLeaf(group, name, "sixteen-byte-txt"); break;
        case 3: SetLeaf(group, name, l % 2 == 0); break;
        case 4: SetLeaf(group, name, std::chrono::microseconds(1500 * l + g)); break;
      }
    }
  }
  return root;
}

// Writes `message` to JSON, or reads it back, once per iteration, counting
// `units` per pass.
template <typename Message>
void ToJsonPasses(benchmark::State& state, const Message& message, size_t units, const char* counter) {
  for (auto _ : state) benchmark::DoNotOptimize(ToJson(message));
  state.counters[counter] = benchmark::Counter(static_cast<double>(state.iterations() * units),
                                               benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <typename Message>
void FromJsonPasses(benchmark::State& state, const Message& message, size_t units, const char* counter) {
  const std::string json = ToJson(message);
  Message read;
  for (auto _ : state) {
    if (!FromJson(json, &read)) state.SkipWithError("the JSON does not read back");
    benchmark::DoNotOptimize(read);
  }
  state.counters[counter] = benchmark::Counter(static_cast<double>(state.iterations() * units),
                                               benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void W1ToJson(benchmark::State& state) { ToJsonPasses(state, Image(), kSide * kSide, "ns_per_element"); }
void W1FromJson(benchmark::State& state) { FromJsonPasses(state, Image(), kSide * kSide, "ns_per_element"); }
void W3ToJson(benchmark::State& state) { ToJsonPasses(state, Tree(), kGroups * kLeaves, "ns_per_leaf"); }
void W3FromJson(benchmark::State& state) { FromJsonPasses(state, Tree(), kGroups * kLeaves, "ns_per_leaf"); }

BENCHMARK(W1ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W1FromJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3FromJson)->Unit(benchmark::kMillisecond);

}  // namespace

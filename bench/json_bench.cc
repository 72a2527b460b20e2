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

void W1ToJson(benchmark::State& state) {
  const KVariant image = Image();
  for (auto _ : state) benchmark::DoNotOptimize(ToJson(image));
  state.counters["ns_per_element"] = benchmark::Counter(
      static_cast<double>(state.iterations() * kSide * kSide), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void W1FromJson(benchmark::State& state) {
  const std::string json = ToJson(Image());
  KVariant image;
  for (auto _ : state) {
    if (!FromJson(json, &image)) state.SkipWithError("the image does not read back");
    benchmark::DoNotOptimize(image);
  }
  state.counters["ns_per_element"] = benchmark::Counter(
      static_cast<double>(state.iterations() * kSide * kSide), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void W3ToJson(benchmark::State& state) {
  const PropertyNode tree = Tree();
  for (auto _ : state) benchmark::DoNotOptimize(ToJson(tree));
  state.counters["ns_per_leaf"] = benchmark::Counter(static_cast<double>(state.iterations() * kGroups * kLeaves),
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void W3FromJson(benchmark::State& state) {
  const std::string json = ToJson(Tree());
  PropertyNode tree;
  for (auto _ : state) {
    if (!FromJson(json, &tree)) state.SkipWithError("the tree does not read back");
    benchmark::DoNotOptimize(tree);
  }
  state.counters["ns_per_leaf"] = benchmark::Counter(static_cast<double>(state.iterations() * kGroups * kLeaves),
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(W1ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W1FromJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3FromJson)->Unit(benchmark::kMillisecond);

}  // namespace

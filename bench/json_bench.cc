// The natural JSON form: W1, a 1024x1024 float64 image as one KVariant, in ns
// per element; W3, a map of 100 groups of 100 leaves, in ns per leaf.
#include <benchmark/benchmark.h>

#include "MavJson.h"
#include "workloads.h"

namespace {

using namespace mav_bench;

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

void W1ToJson(benchmark::State& state) { ToJsonPasses(state, DoubleGrid(), kGridSide * kGridSide, "ns_per_element"); }
void W1FromJson(benchmark::State& state) { FromJsonPasses(state, DoubleGrid(), kGridSide * kGridSide, "ns_per_element"); }
void W3ToJson(benchmark::State& state) { ToJsonPasses(state, GroupedParameters(), kGroups * kLeavesPerGroup, "ns_per_leaf"); }
void W3FromJson(benchmark::State& state) { FromJsonPasses(state, GroupedParameters(), kGroups * kLeavesPerGroup, "ns_per_leaf"); }

BENCHMARK(W1ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W1FromJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3ToJson)->Unit(benchmark::kMillisecond);
BENCHMARK(W3FromJson)->Unit(benchmark::kMillisecond);

}  // namespace

// The cost of building arrays through MavValues.h: the 8 MiB double image
// against a memcpy of its payload, and a 512x512 uint16 frame, whose storage
// must be allocated once, counted through a malloc that tallies while a
// measurement window is open.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

#include "MavValues.h"

namespace {

using namespace Tarnwick::MavProtobuf;

struct AllocationTally {
  bool counting = false;
  size_t at_least = 0;  // only allocations of this size or more count
  size_t count = 0;
};
AllocationTally tally;

// Allocations of at least `at_least` bytes made by `code`.
template <typename Code>
size_t CountAllocations(size_t at_least, Code code) {
  tally = AllocationTally{true, at_least, 0};
  code();
  tally.counting = false;
  return tally.count;
}

constexpr uint32_t kImageSide = 1024;
constexpr uint32_t kFrameSide = 512;

const std::vector<double>& Image() {
  static const std::vector<double> image = [] {
    std::vector<double> values(size_t{kImageSide} * kImageSide);
    std::iota(values.begin(), values.end(), 0.5);
    return values;
  }();
  return image;
}

const std::vector<uint16_t>& Frame() {
  static const std::vector<uint16_t> frame = [] {
    std::vector<uint16_t> values(size_t{kFrameSide} * kFrameSide);
    for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<uint16_t>(i * 7);
    return values;
  }();
  return frame;
}

void SetImageBytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Image().size() * sizeof(double)));
}

// Fresh storage each time: what building a new tree costs.
void BM_ImageMemcpyFresh(benchmark::State& state) {
  const std::vector<double>& image = Image();
  for (auto _ : state) {
    std::unique_ptr<double[]> copy(new double[image.size()]);
    std::memcpy(copy.get(), image.data(), image.size() * sizeof(double));
    benchmark::DoNotOptimize(copy.get());
    benchmark::ClobberMemory();
  }
  SetImageBytes(state);
}
BENCHMARK(BM_ImageMemcpyFresh);

void BM_ImageThroughLayerFresh(benchmark::State& state) {
  const std::vector<double>& image = Image();
  for (auto _ : state) {
    PropertyNode root;
    SetArray(Child(root, "image"), image, {kImageSide, kImageSide});
    benchmark::DoNotOptimize(root);
  }
  SetImageBytes(state);
}
BENCHMARK(BM_ImageThroughLayerFresh);

// Storage kept between frames: what an acquisition loop costs.
void BM_ImageMemcpyReused(benchmark::State& state) {
  const std::vector<double>& image = Image();
  std::vector<double> copy(image.size());
  for (auto _ : state) {
    std::memcpy(copy.data(), image.data(), image.size() * sizeof(double));
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
  SetImageBytes(state);
}
BENCHMARK(BM_ImageMemcpyReused);

void BM_ImageThroughLayerReused(benchmark::State& state) {
  const std::vector<double>& image = Image();
  KVariant variant;
  for (auto _ : state) {
    SetArray(variant, image, {kImageSide, kImageSide});
    benchmark::DoNotOptimize(variant);
  }
  SetImageBytes(state);
}
BENCHMARK(BM_ImageThroughLayerReused);

void ReportFrameAllocations(benchmark::State& state, size_t payload_allocations, size_t allocations) {
  state.counters["payload_allocations"] = static_cast<double>(payload_allocations);
  state.counters["allocations"] = static_cast<double>(allocations);
}

void BM_Uint16FrameThroughLayer(benchmark::State& state) {
  const std::vector<uint16_t>& frame = Frame();
  const auto build = [&] {
    KVariant variant;
    SetArray(variant, frame, {kFrameSide, kFrameSide});
    benchmark::DoNotOptimize(variant);
  };
  for (auto _ : state) build();
  // The widened storage takes 4 bytes per element.
  ReportFrameAllocations(state, CountAllocations(frame.size() * 4, build), CountAllocations(1, build));
}
BENCHMARK(BM_Uint16FrameThroughLayer);

// The same frame appended element by element through the message classes,
// for comparison: the field grows each time it is full.
void BM_Uint16FrameElementByElement(benchmark::State& state) {
  const std::vector<uint16_t>& frame = Frame();
  const auto build = [&] {
    KVariant variant;
    ArrayDataUnion* array = variant.mutable_array_data();
    ArrayUnsignedInt16* values = array->mutable_unsignedint16_content();
    for (uint16_t value : frame) values->add_unsignedint16_content(value);
    array->add_dimensions(kFrameSide);
    array->add_dimensions(kFrameSide);
    benchmark::DoNotOptimize(variant);
  };
  for (auto _ : state) build();
  ReportFrameAllocations(state, CountAllocations(frame.size() * 4, build), CountAllocations(1, build));
}
BENCHMARK(BM_Uint16FrameElementByElement);

void BM_Uint16FrameRead(benchmark::State& state) {
  KVariant variant;
  SetArray(variant, Frame(), {kFrameSide, kFrameSide});
  std::vector<uint16_t> buffer(Frame().size());
  for (auto _ : state) {
    ArrayView<uint16_t> view = CopyArray(variant, buffer.data(), buffer.size());
    benchmark::DoNotOptimize(view.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Uint16FrameRead);

}  // namespace

// Every allocation of the process passes here (operator new calls malloc);
// sanitizers bring their own malloc, so the tally is off there.
#ifndef __SANITIZE_ADDRESS__
extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) {
  if (tally.counting && size >= tally.at_least) ++tally.count;
  return __libc_malloc(size);
}
#endif

// The main of every benchmark program. `--heap` prints the peak and retained
// heap of each registered parse instead of timing anything, so the counting
// never runs while a benchmark is timed.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "suite.h"

int main(int argc, char** argv) {
  // glibc gives the top of its heap back to the kernel whenever a free leaves
  // more than the trim threshold unused there. A loop that destroys a large
  // tree and builds the next one would then time the kernel unmapping and
  // refaulting those pages on every iteration (ten times the parse of W4),
  // which a process that keeps its heap never pays. Fixing the threshold
  // turns off glibc's own adjustment of when large blocks get their own
  // mapping, so that is fixed too, at the ceiling the adjustment reaches.
  // Both apply to every implementation alike.
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  if (argc > 1 && std::strcmp(argv[1], "--heap") == 0) {
    // The counter sees the global allocator only; no message exists yet, so
    // the library still takes this choice.
    setenv("MAV_PROTOBUF_MESSAGE_ALLOCATOR", "system", 1);
    for (const mav_bench::HeapProbe& probe : mav_bench::HeapProbes()) {
      const mav_bench::HeapUse use = probe.measure();
      std::printf("heap\t%s\t%zu\t%zu\n", probe.name.c_str(), use.peak, use.retained);
    }
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

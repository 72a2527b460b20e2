// The main of every benchmark program. `--heap` prints the peak and retained
// heap of each registered parse instead of timing anything, so the counting
// never runs while a benchmark is timed.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include "suite.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--heap") == 0) {
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

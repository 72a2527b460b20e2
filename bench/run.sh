#!/usr/bin/env bash
# Builds the benchmark programs in Release (in build-release), runs each one in
# three separate processes, measures the heap of every parse in a further run,
# and prints one table of medians. Extra arguments go to every program, e.g.
#   bench/run.sh --benchmark_filter='W2/'
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MAV_BENCH_BUILD:-build-release}
runs=${MAV_BENCH_RUNS:-3}

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DMAV_PROTOBUF_BUILD_TESTS=OFF \
  -DMAV_PROTOBUF_BUILD_EXAMPLES=OFF -DMAV_PROTOBUF_BUILD_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 >/dev/null

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for program in "$build"/bench/*_bench; do
  name=$(basename "$program")
  for run in $(seq "$runs"); do
    "$program" --benchmark_format=json --benchmark_min_time=0.2 "$@" >"$results/$name.$run.json"
  done
  "$program" --heap >"$results/$name.heap"
done
python3 bench/report.py "$results"

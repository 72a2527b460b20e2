#!/usr/bin/env bash
# Builds the benchmark programs in Release (in build-release), runs each one in
# three separate processes, measures the heap of every parse in a further run,
# and prints one table of medians. Extra arguments go to every program, e.g.
#   bench/run.sh --benchmark_filter='W2/'
# MAV_BENCH_MALLOC=mimalloc times the programs with mimalloc as the whole
# process's allocator (as a program has it that links mimalloc first); the
# library allocates its message objects with mimalloc either way.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MAV_BENCH_BUILD:-build-release}
runs=${MAV_BENCH_RUNS:-3}
preload=
case ${MAV_BENCH_MALLOC:-system} in
  system) ;;
  mimalloc)
    preload=$(ldconfig -p | awk '/libmimalloc\.so\.2 / { print $NF; exit }')
    [ -n "$preload" ] || { echo "bench/run.sh: libmimalloc.so.2 is not installed" >&2; exit 1; } ;;
  *) echo "bench/run.sh: MAV_BENCH_MALLOC is system or mimalloc, not '$MAV_BENCH_MALLOC'" >&2; exit 1 ;;
esac

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DMAV_PROTOBUF_BUILD_TESTS=OFF \
  -DMAV_PROTOBUF_BUILD_EXAMPLES=OFF -DMAV_PROTOBUF_BUILD_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 >/dev/null

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for program in "$build"/bench/*_bench; do
  name=$(basename "$program")
  for run in $(seq "$runs"); do
    LD_PRELOAD=$preload "$program" --benchmark_format=json --benchmark_min_time=0.2 "$@" >"$results/$name.$run.json"
  done
  "$program" --heap >"$results/$name.heap"
done
python3 bench/report.py "$results"

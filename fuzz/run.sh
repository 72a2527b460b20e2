#!/usr/bin/env bash
# Runs every fuzzer that is built for SECONDS seconds each, from the seed
# corpus and what earlier runs found interesting. Fails (non-zero) when any
# fuzzer reports a finding; the input that caused it is kept under
# $BUILD/findings/. Builds with clang first when needed.
#   fuzz/run.sh SECONDS        (BUILD defaults to build-fuzz)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:?usage: fuzz/run.sh SECONDS}
build=${BUILD:-build-fuzz}

if [ ! -f "$build/CMakeCache.txt" ]; then
  CXX=${CXX:-clang++} cmake -S . -B "$build" -DMAV_PROTOBUF_BUILD_FUZZERS=ON \
    -DMAV_PROTOBUF_BUILD_TESTS=OFF -DMAV_PROTOBUF_BUILD_EXAMPLES=OFF \
    -DMAV_PROTOBUF_BUILD_BENCHMARKS=OFF -DMAV_PROTOBUF_BUILD_TOOLS=OFF -DMAV_PROTOBUF_INSTALL=OFF
fi
cmake --build "$build" -j2

seeds="$build/fuzz/seeds"
rm -rf "$seeds"
"$build/fuzz/mav_fuzz_seed_writer" "$seeds"
mkdir -p "$build/fuzz/findings" "$build/fuzz/logs"

export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1:suppressions=$PWD/scripts/ubsan.supp"
failed=0
for fuzzer in "$build"/fuzz/*_fuzzer; do
  [ -x "$fuzzer" ] || continue
  name=$(basename "$fuzzer")
  corpus="$build/fuzz/corpus/$name"
  log="$build/fuzz/logs/$name.log"
  mkdir -p "$corpus"
  echo "== $name: $seconds s"
  if "$fuzzer" -max_total_time="$seconds" -max_len=4096 -timeout=25 -print_final_stats=1 \
       -artifact_prefix="$build/fuzz/findings/$name-" "$corpus" "$seeds" >"$log" 2>&1; then
    grep -E '^#[0-9]+[[:space:]]+DONE' "$log" | tail -1 || true
    grep -E 'stat::(number_of_executed_units|average_exec_per_sec)' "$log" || true
    grep -E '^differential:' "$log" | tail -1 || true
  else
    echo "$name: FINDING, see $log"
    grep -E 'FINDING|ERROR: |SUMMARY: |Test unit written to' "$log" | head -5 || true
    failed=1
  fi
done
exit $failed

#!/usr/bin/env python3
"""Folds the JSON of several benchmark processes into one table of medians.

Benchmarks are named workload/implementation/operation and carry the
workload's element count as the counter "items". Heap lines come from the
programs' --heap mode: heap<TAB>workload/implementation/op<TAB>peak<TAB>retained.
"""
import glob
import json
import os
import statistics
import sys
from collections import defaultdict

UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
OPERATIONS = ["byte_size", "size_serialize_array", "serialize_string", "serialize_deterministic",
              "parse_fresh", "parse_reused", "copy_from", "destroy"]


def load_times(folder):
    times = defaultdict(list)  # (workload, implementation, op) -> [ns per iteration]
    items = {}
    for path in sorted(glob.glob(os.path.join(folder, "*.json"))):
        with open(path) as handle:
            report = json.load(handle)
        for run in report["benchmarks"]:
            if run.get("error_occurred"):
                continue
            workload, implementation, op = run["name"].split("/")[:3]
            times[(workload, implementation, op)].append(run["cpu_time"] * UNIT_NS[run["time_unit"]])
            items[workload] = run.get("items", 1)
    return {key: statistics.median(values) for key, values in times.items()}, items


def load_heap(folder):
    heap = {}
    for path in glob.glob(os.path.join(folder, "*.heap")):
        with open(path) as handle:
            for line in handle:
                _, name, peak, retained = line.rstrip("\n").split("\t")
                heap[tuple(name.split("/")[:2])] = (int(peak), int(retained))
    return heap


def mib(size):
    return "%.1f MiB" % (size / 1048576.0)


def main(folder):
    times, items = load_times(folder)
    heap = load_heap(folder)
    workloads = sorted({key[0] for key in times}, key=lambda w: (not w.startswith("W"), w))
    print("| workload | op | ours ns/item | memcpy time / ours | speed-up over DynamicMessage | speed-up over Struct | peak heap (ours / dynamic / struct) |")
    print("|---|---|---|---|---|---|---|")
    for workload in workloads:
        memcpy = times.get((workload, "memcpy", "copy"))
        if memcpy is not None:
            print("| %s | memcpy of the wire bytes (%d items) | %.2f | 1.00x | | | |" % (workload, items[workload], memcpy / items[workload]))
        for op in OPERATIONS:
            ours = times.get((workload, "ours", op))
            if ours is None:
                continue
            row = [workload, op, "%.2f" % (ours / items[workload])]
            row.append("%.2fx" % (memcpy / ours) if memcpy else "")
            for other in ("dynamic", "struct"):
                theirs = times.get((workload, other, op))
                row.append("%.2fx" % (theirs / ours) if theirs else "")
            peaks = [heap.get((workload, impl)) for impl in ("ours", "dynamic", "struct")] if op == "parse_fresh" else []
            row.append(" / ".join(mib(p[0]) for p in peaks if p) if peaks else "")
            print("| " + " | ".join(row) + " |")
    print()
    print("| parse | peak heap | kept after the parse |")
    print("|---|---|---|")
    for (workload, implementation), (peak, retained) in sorted(heap.items()):
        print("| %s %s | %s | %s |" % (workload, implementation, mib(peak), mib(retained)))


if __name__ == "__main__":
    main(sys.argv[1])

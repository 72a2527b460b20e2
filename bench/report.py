#!/usr/bin/env python3
"""Folds the JSON of several benchmark processes into one table of medians.

Benchmarks of the suite are named workload/implementation/operation and carry
the workload's element count as the counter "items"; any other benchmark (the
value-layer and JSON programs) is listed on its own with its median CPU time
and counters. Heap lines come from the
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
    others = defaultdict(list)  # name -> [(ns per iteration, counters)]
    for path in sorted(glob.glob(os.path.join(folder, "*.json"))):
        if os.path.getsize(path) == 0:
            continue  # the program has no benchmark that the filter selects
        with open(path) as handle:
            report = json.load(handle)
        for run in report["benchmarks"]:
            if run.get("error_occurred"):
                continue
            parts = run["name"].split("/")
            if len(parts) < 3 or "items" not in run:
                counters = {k: v for k, v in run.items() if isinstance(v, float) and k not in
                            ("real_time", "cpu_time", "iterations", "repetitions", "repetition_index",
                             "threads", "family_index", "per_family_instance_index")}
                others[run["name"]].append((run["cpu_time"] * UNIT_NS[run["time_unit"]], counters))
                continue
            workload, implementation, op = parts[:3]
            # A benchmark that times itself reports its own time as real time.
            clock = "real_time" if parts[-1] == "manual_time" else "cpu_time"
            times[(workload, implementation, op)].append(run[clock] * UNIT_NS[run["time_unit"]])
            items[workload] = run.get("items", 1)
    medians = {key: statistics.median(values) for key, values in times.items()}
    return medians, items, others


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
    times, items, others = load_times(folder)
    heap = load_heap(folder)
    workloads = sorted({key[0] for key in times}, key=lambda w: (not w.startswith("W"), w))
    if workloads:
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
    if heap:
        print("| parse | peak heap | kept after the parse |")
        print("|---|---|---|")
        for (workload, implementation), (peak, retained) in sorted(heap.items()):
            print("| %s %s | %s | %s |" % (workload, implementation, mib(peak), mib(retained)))
        print()
    views = {name: statistics.median(ns for ns, _ in runs) for name, runs in others.items()
             if name.startswith("view/")}
    if views:
        print("| workload | reading in place | time | fresh parse | time / parse | parse / time |")
        print("|---|---|---|---|---|---|")
        for name in sorted(views):
            _, workload, op = name.split("/")
            parse = views.get("view/%s/parse_fresh" % workload)
            if op == "parse_fresh" or parse is None:
                continue
            ns = views[name]
            speed_up = parse / ns
            print("| %s | %s | %.3f us | %.1f us | %.4fx | %s |" % (
                workload, op, ns / 1e3, parse / 1e3, ns / parse,
                ("%.0fx" if speed_up >= 10 else "%.2fx") % speed_up))
    others = {name: runs for name, runs in others.items() if not name.startswith("view/")}
    if others:
        print()
        print("| benchmark | median CPU time | counters (median) |")
        print("|---|---|---|")
        for name, runs in sorted(others.items()):
            cpu = statistics.median(ns for ns, _ in runs)
            keys = sorted({k for _, counters in runs for k in counters})
            # Inverted rate counters (ns_per_*) come in seconds.
            scale = lambda k: 1e9 if k.startswith("ns_per") else 1.0
            shown = ", ".join("%s=%.4g" % (k, scale(k) * statistics.median(c[k] for _, c in runs if k in c))
                              for k in keys)
            print("| %s | %.0f ns | %s |" % (name, cpu, shown))


if __name__ == "__main__":
    main(sys.argv[1])

"""Times mavprotobuf.loads/dumps against pickle, the runtime's Python messages
(+ MessageToDict), msgpack and cbor2 on the detector frame, W1 (a 1024x1024
float64 array) and W3 (100 groups of 100 leaves), and prints the medians of
three processes as a table.

    PYTHONPATH=build-release/python /usr/bin/python3 bench/python/python_bench.py
"""

import datetime
import json
import os
import pickle
import statistics
import subprocess
import sys
import time

import numpy as np

import mavprotobuf as mav
from mavprotobuf import _mavprotobuf as core

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


def w3():
    groups = {}
    for g in range(100):
        leaves = {}
        for p in range(100):
            n = g * 100 + p
            leaves[f"param{p:03d}"] = [n * 1.5, n * 7, f"text-value-{10000 + n}", n % 2 == 0,
                                       datetime.timedelta(seconds=n, microseconds=500000)][n % 5]
        groups[f"group{g:03d}"] = leaves
    return groups


def inputs():
    with open(os.path.join(ROOT, "examples", "data", "detector-frame.mav"), "rb") as file:
        frame = file.read()
    grid = np.arange(1024 * 1024, dtype="float64").reshape(1024, 1024) / 7
    return {"frame": frame, "W1": mav.dumps(grid), "W3": mav.dumps(w3())}


def best(action, repeats):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return min(times)


def runtime_messages():
    from google.protobuf import descriptor_pb2, descriptor_pool, json_format, message_factory
    descriptor_set = subprocess.run(
        ["protoc", "-I", os.path.join(ROOT, "mav-protobuf", "proto"), "--include_imports",
         "--descriptor_set_out=/dev/stdout", "Mav.proto"], check=True, capture_output=True).stdout
    files = descriptor_pb2.FileDescriptorSet.FromString(descriptor_set)
    pool = descriptor_pool.DescriptorPool()
    for file in files.file:
        pool.Add(file)
    node = message_factory.MessageFactory(pool).GetPrototype(
        pool.FindMessageTypeByName("Tarnwick.MavProtobuf.PropertyNode"))

    def loads(data):
        message = node.FromString(data)
        return json_format.MessageToDict(message)
    return loads


def packed(tree):
    if isinstance(tree, dict):
        return {key: packed(value) for key, value in tree.items()}
    if isinstance(tree, list):
        return [packed(value) for value in tree]
    if isinstance(tree, np.ndarray):
        return {"__nd__": [tree.dtype.str, list(tree.shape), tree.tobytes()]}
    if isinstance(tree, (np.datetime64, np.timedelta64)):
        return {"__t__": [tree.dtype.str, int(tree.astype("int64"))]}
    if isinstance(tree, np.generic):
        return {"__s__": [tree.dtype.str, tree.tobytes()]}
    if isinstance(tree, complex):
        return {"__c__": [tree.real, tree.imag]}
    return tree


def unpacked(tree):
    if isinstance(tree, dict):
        if "__nd__" in tree:
            dtype, shape, data = tree["__nd__"]
            return np.frombuffer(data, dtype=dtype).reshape(shape)
        return {key: unpacked(value) for key, value in tree.items()}
    if isinstance(tree, list):
        return [unpacked(value) for value in tree]
    return tree


def once():
    import cbor2
    import msgpack
    parse_messages = runtime_messages()
    results = {}
    for name, data in inputs().items():
        tree = mav.loads(data, copy=True)
        repeats = 5 if name != "W3" else 20
        row = {"bytes": len(data)}
        row["memcpy"] = best(lambda: bytearray(data), repeats)
        row["loads"] = best(lambda: mav.loads(data), repeats)
        row["dumps"] = best(lambda: mav.dumps(tree), repeats)
        cpp = core._cpp_timings(data, repeats)
        row["cpp_parse"], row["cpp_serialize"] = cpp["parse"], cpp["serialize"]
        pickled = pickle.dumps(tree, protocol=5)
        row["pickle_loads"] = best(lambda: pickle.loads(pickled), repeats)
        row["pickle_dumps"] = best(lambda: pickle.dumps(tree, protocol=5), repeats)
        row["runtime_loads"] = best(lambda: parse_messages(data), max(1, repeats // 5))
        plain = packed(tree)
        packed_msgpack = msgpack.packb(plain, default=str)
        row["msgpack_loads"] = best(lambda: unpacked(msgpack.unpackb(packed_msgpack)), repeats)
        packed_cbor = cbor2.dumps(plain, default=lambda encoder, value: encoder.encode(str(value)))
        row["cbor2_loads"] = best(lambda: unpacked(cbor2.loads(packed_cbor)), repeats)
        results[name] = row
    return results


def main():
    if "--once" in sys.argv:
        print(json.dumps(once()))
        return
    runs = [json.loads(subprocess.run([sys.executable, __file__, "--once"], check=True,
                                      capture_output=True, text=True).stdout) for _ in range(3)]
    print("| input | bytes | loads ms | dumps ms | memcpy/loads | memcpy/dumps | loads/C++ parse "
          "| dumps/C++ serialize | pickle loads/loads | msgpack loads/loads | cbor2 loads/loads "
          "| runtime+MessageToDict/loads |")
    print("|---|---|---|---|---|---|---|---|---|---|---|---|")
    for name in runs[0]:
        m = {key: statistics.median(run[name][key] for run in runs) for key in runs[0][name]}
        print(f"| {name} | {int(m['bytes'])} | {m['loads'] * 1e3:.3f} | {m['dumps'] * 1e3:.3f} "
              f"| {m['memcpy'] / m['loads']:.2f} | {m['memcpy'] / m['dumps']:.2f} "
              f"| {m['loads'] / m['cpp_parse']:.2f} | {m['dumps'] / m['cpp_serialize']:.2f} "
              f"| {m['pickle_loads'] / m['loads']:.2f} | {m['msgpack_loads'] / m['loads']:.2f} "
              f"| {m['cbor2_loads'] / m['loads']:.2f} | {m['runtime_loads'] / m['loads']:.1f} |")


if __name__ == "__main__":
    main()

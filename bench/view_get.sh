#!/usr/bin/env bash
# `mav get` of one scalar that follows a 1 GiB array: a map whose first entry
# `a` is 2^27 float64 values and whose second entry `b` is a float64 scalar.
# Prints the wall time and the peak resident memory of `mav get FILE b`, and
# for comparison those of `mav check`, which parses the whole tree. Needs
# 1 GiB free in TMPDIR.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MAV_BENCH_BUILD:-build-release}
if [ ! -x "$build/bin/mav" ]; then
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$build" -j2 --target mav_protobuf_mav >/dev/null
fi
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

python3 - "$dir/big.mav" <<'PY'
import struct, sys

def varint(n):
    out = bytearray()
    while n >= 0x80:
        out.append(n & 0x7F | 0x80)
        n >>= 7
    out.append(n)
    return bytes(out)

def field(number, payload_size):  # tag and length of a length-delimited field
    return varint(number << 3 | 2) + varint(payload_size)

array_bytes = 8 << 27                                          # ArrayDouble's packed run
array = field(1, array_bytes)                                  # ArrayDouble
union = field(3, len(array) + array_bytes)                     # ArrayDataUnion.double_content
value = field(2, len(union) + len(array) + array_bytes)        # KVariant.array_data
node_a = field(3, len(value) + len(union) + len(array) + array_bytes)  # PropertyNode.value_type
head_a = node_a + value + union + array
entry_a_body = field(1, 1) + b"a" + field(2, len(head_a) + array_bytes)
scalar = b"\x19" + struct.pack("<d", 0.125)                    # ScalarDataUnion.double_content
node_b = field(3, len(scalar) + 2) + field(1, len(scalar)) + scalar
entry_b_body = field(1, 1) + b"b" + field(2, len(node_b)) + node_b
entry_a = field(1, len(entry_a_body) + len(head_a) + array_bytes)
entry_b = field(1, len(entry_b_body)) + entry_b_body
map_size = len(entry_a) + len(entry_a_body) + len(head_a) + array_bytes + len(entry_b)
with open(sys.argv[1], "wb") as out:
    out.write(field(1, map_size) + entry_a + entry_a_body + head_a)
    block = struct.pack("<d", 1.5) * (1 << 17)                # 1 MiB of doubles
    for _ in range(array_bytes // len(block)):
        out.write(block)
    out.write(entry_b)
PY

echo "file: $(du -h "$dir/big.mav" | cut -f1)"
value=$(/usr/bin/time -o "$dir/time" -f '%e s, %M KiB resident' "$build/bin/mav" get "$dir/big.mav" b)
echo "mav get FILE b: $value in $(cat "$dir/time")"
printf 'mav check FILE: '
/usr/bin/time -f '%e s, %M KiB resident' "$build/bin/mav" check "$dir/big.mav" 2>&1 >/dev/null | tail -1

#!/usr/bin/env bash
# The mav tool end to end, through the real binary: exit codes, the one-line
# messages, -o that leaves nothing behind on failure, and pipes.
# Usage: cli_test.sh MAV SAMPLE WORK_DIR
set -uo pipefail
mav=$(realpath "$1") sample=$(realpath "$2") work=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
failures=0

# expect STATUS STDERR_PATTERN COMMAND...: the exit status is STATUS and the
# standard error matches the pattern (is empty for an empty pattern, and is
# one line when the status is 1).
expect() {
  local status=$1 pattern=$2
  shift 2
  "$@" >stdout 2>stderr
  local got=$?
  if [ "$got" -ne "$status" ] || { [ -n "$pattern" ] && ! grep -qE -- "$pattern" stderr; } ||
     { [ -z "$pattern" ] && [ -s stderr ]; } ||
     { [ "$status" -eq 1 ] && [ "$(wc -l <stderr)" -ne 1 ]; }; then
    echo "FAILED: $* -> status $got, stderr: $(cat stderr)"
    failures=$((failures + 1))
  fi
}
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

expect 1 "^mav: missing.mav: No such file or directory$" "$mav" show missing.mav
expect 1 "^mav: \.: is a directory" "$mav" show .
: >empty.mav
expect 0 "" "$mav" show empty.mav
grep -q "empty tree" stdout || fail "an empty input shows as an empty tree"
head -c 200 "$sample" >truncated.mav
expect 1 "^mav: truncated.mav: .*not a valid property tree" "$mav" check truncated.mav
cat "$sample" "$sample" >joined.mav
expect 1 "^mav: joined.mav: holds several trees" "$mav" show joined.mav
truncate -s 3G huge.mav  # sparse: nothing is written
expect 1 "^mav: huge.mav: 3.0 GiB is over the 2 GiB limit" "$mav" show huge.mav
rm -f huge.mav
expect 2 "FILE is required" "$mav" show
expect 2 "A subcommand is required" "$mav"
expect 2 "^mav: --depth: expected a whole number from 1" "$mav" show "$sample" --depth 0
expect 2 "^mav: unknown command 'foo'" "$mav" foo
expect 2 "^mav: unexpected arguments: a b$" "$mav" json "$sample" a b
grep -q "^Usage: mav json" stderr || fail "a command's usage names the tool"
expect 0 "" "$mav" --help
grep -q "Subcommands" stdout || fail "--help prints the usage"
expect 0 "" "$mav" --version
grep -q "^mav [0-9]" stdout || fail "--version prints the version"

# Failures with -o leave neither the target nor a temporary file.
printf '{"a": [1,\n  2' >malformed.json
expect 1 "^mav: malformed.json: line 2, column [0-9]+: " "$mav" encode malformed.json -o out.mav
printf '{"a": {"$uint8": 256}}' >range.json
expect 1 "^mav: range.json: line 1, column 18: 256 is out of range for uint8" "$mav" encode range.json -o out.mav
[ -z "$(ls -A | grep -E '^(out\.mav|\.out)')" ] || fail "a failed -o left a file behind"
echo old >kept.mav
expect 1 "truncated.mav" "$mav" json truncated.mav -o kept.mav
[ "$(cat kept.mav)" = old ] || fail "a failed -o changed the existing target"

# -o replaces a regular file through a symbolic link, keeping its mode, and
# writes anything else (here a FIFO of our own) in place. The test never aims
# at a system node: a broken -o run as root would replace it.
echo old >private.mav && chmod 600 private.mav && ln -s private.mav link.mav
"$mav" json "$sample" -o sample.json && "$mav" encode sample.json -o link.mav || fail "-o through a link"
[ -L link.mav ] && cmp -s private.mav "$sample" || fail "-o replaces the file a link points to"
[ "$(stat -c %a private.mav)" = 600 ] || fail "-o keeps the replaced file's mode"
chmod 4755 private.mav && "$mav" encode sample.json -o private.mav &&
  [ "$(stat -c %a private.mav)" = 4755 ] || fail "-o keeps the set-user bit"
mkfifo pipe && { cat pipe >from-pipe & } && "$mav" json "$sample" -o pipe && wait
[ -p pipe ] && cmp -s from-pipe sample.json || fail "-o writes a FIFO in place"

# show prints UTF-8 as it is, 64-bit extremes exactly, NaN as nan.
printf '{"ключ": "значение", "u": {"$array": "uint64", "data": [18446744073709551615, 1]}, "f": {"$array": "float64", "data": ["Infinity", "-Infinity"]}}' >show.json
"$mav" encode show.json -o show.mav && "$mav" show show.mav >shown || fail "show of UTF-8 and extremes"
grep -q '^ключ: str "значение"$' shown || fail "show prints UTF-8 text as it is"
grep -q 'max 18446744073709551615 ' shown || fail "show prints 64-bit extremes exactly"
grep -q 'mean nan$' shown || fail "show prints NaN as nan"

# check lists values the model cannot read as warnings; --strict fails on them.
printf '{"a": {"$int8": 300, "widened": true}, "b": {"$empty": null}, "ok": 1.0}' >odd.json
"$mav" encode odd.json -o odd.mav || fail "encode odd.json"
expect 0 "" "$mav" check odd.mav
[ "$(grep '^warning: ' stdout)" = $'warning: a: int8 value outside its range\nwarning: b: a value with no member' ] ||
  fail "check lists unreadable values: $(cat stdout)"
expect 1 "^mav: odd.mav: 2 value\(s\) cannot be read as the model says; the first at a: " "$mav" check --strict odd.mav

# Pipes: binary to JSON to binary through stdin and stdout, byte for byte.
"$mav" json - <"$sample" | "$mav" encode - | cmp -s - "$sample" || fail "json | encode does not give the sample back"
"$mav" json "$sample" -o sample.json && "$mav" encode sample.json -o again.mav && cmp -s again.mav "$sample" ||
  fail "json -o then encode -o does not give the sample back"

# Records: two trees as JSON Lines, encoded delimited, then read back.
printf '{"n": 1.0}\n\n{"n": {"$int32": 2}}\n' >records.jsonl
"$mav" encode --delimited records.jsonl -o records.mav || fail "encode --delimited"
[ "$("$mav" json --delimited records.mav)" = $'{"n":1.0}\n{"n":{"$int32":2}}' ] || fail "json --delimited writes JSON Lines"
[ "$("$mav" show --delimited records.mav | grep -c '^record ')" = 2 ] || fail "show --delimited shows each record"
printf '\x80\x80\x80\x80\x10' >huge-prefix.mav
expect 1 "^mav: huge-prefix.mav: record 0: length prefix 4294967296 is over the 2 GiB limit" "$mav" check --delimited huge-prefix.mav
expect 1 "^mav: records.mav: record 0: nothing at the path \"m\"" "$mav" get --delimited records.mav m
printf '{"n": 1.0}\n{"n": }\n' >bad.jsonl
expect 1 "^mav: bad.jsonl: line 2, column" "$mav" encode --delimited bad.jsonl

# get: plain values for scripts, exit 1 for a missing path.
[ "$("$mav" get "$sample" gain)" = 4 ] || fail "get prints a scalar plainly"
expect 1 "^mav: .*: nothing at the path \"no/such\"$" "$mav" get "$sample" no/such
expect 0 "" "$mav" check "$sample"
grep -q "valid" stdout && grep -q "uint16" stdout || fail "check reports the kinds"
[ "$("$mav" get --delimited records.mav n)" = $'1\n2' ] || fail "get --delimited reads each record"
# get and show --path read only the bytes on their way: a tree whose entry b
# holds an overlong varint still gives entry a, and check --quick sees it.
printf '\x0a\x2e\x0a\x12\x0a\x01a\x12\x0d\x1a\x0b\x0a\x09\x19\x00\x00\x00\x00\x00\x00\xf8\x3f'\
'\x0a\x18\x0a\x01b\x12\x13\x1a\x11\x12\x0f\x3a\x0d\x0a\x0b\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\x01' >bad-b.mav
[ "$("$mav" get bad-b.mav a)" = 1.5 ] || fail "get reads a value beside a malformed one"
expect 1 "^mav: bad-b.mav: the input is not a valid property tree" "$mav" get bad-b.mav b
expect 1 "^mav: bad-b.mav: the input is not a valid property tree" "$mav" check --quick bad-b.mav
expect 1 "^mav: bad-b.mav: the input is not a valid property tree" "$mav" check bad-b.mav
"$mav" encode <(echo '{"a":1.5}') -o two.mav
expect 0 "" "$mav" check --quick two.mav
[ "$(cat stdout)" = "two.mav: valid" ] || fail "check --quick says valid"

# show picks a part of the tree and a depth; text is the runtime's format.
[ "$("$mav" show "$sample" --depth 1 | grep -c '^ ')" = 0 ] || fail "show --depth 1 shows one level"
"$mav" show "$sample" --path frame | grep -q "^uint16 array 512x512 order C" || fail "show --path shows that node"
expect 1 "^mav: .*: nothing at the path \"calibration/x\"$" "$mav" show "$sample" --path calibration/x
"$mav" text "$sample" | grep -q 'key: "gain"' || fail "text prints the runtime's text format"

[ "$failures" -eq 0 ] || { echo "$failures failure(s)"; exit 1; }
echo "all passed"

#!/usr/bin/env bash
# The Win64 build killed hard (as TerminateProcess or a crash would end it)
# while 7-Zip runs: the unpacker must end with it, since the converter's job
# object closes with the converter, instead of filling TMP for minutes. The
# unpacker here is the test double told to sleep.
#
# windows_hard_kill.sh <bin-dir> <wine> <e2e_windows_helper.exe>
#
# The helper serves as the unpacker's test double only.
set -eEuo pipefail
trap 'echo "FAILED: $BASH_COMMAND (line $LINENO)"' ERR
bin=$(cd "$1" && pwd) wine=$2 helper=$(realpath "$3")
fail() { echo "FAIL: $*"; exit 1; }

scratch=$(mktemp -d "${TMPDIR:-/tmp}/odb2vrn_hard_kill.XXXXXX")
mark=$(basename "$scratch")  # in the command line of every process of this test
finish() {
    pkill -9 -f "$mark" 2>/dev/null || true
    rm -rf "$scratch"
}
trap finish EXIT
native() { local path=${1//\//\\}; echo "Z:$path"; }
mkdir -p "$scratch/double" "$scratch/tmp" "$scratch/work"
cp "$helper" "$scratch/double/qx7za.exe"
echo "unpack sleep" >"$scratch/double/behaviour"
echo "not read: the unpacker sleeps" >"$scratch/work/board.tgz"

# Started through cmd, not the e2e helper: the helper's own job object would
# end the unpacker too, and the test could not tell.
(cd "$scratch/work" && "$wine" cmd /c "set TMP=$(native "$scratch/tmp")&& set RQT32=$(native "$scratch/double")&& \
$(native "$bin/Odb2vrn_64.exe") $(native "$scratch/work/board.tgz")" >"$scratch/wine" 2>&1) &
runner=$!

# The double notes its call before it sleeps.
for _ in $(seq 600); do
    grep -q '^\[x\]' "$scratch/double/calls.log" 2>/dev/null && break
    sleep 0.1
done
grep -q '^\[x\]' "$scratch/double/calls.log" 2>/dev/null || fail "the unpacker was not called within 60 s"
unpackers() { pgrep -f "qx7za.exe.*$mark" || true; }
[ -n "$(unpackers)" ] || fail "no unpacker process to watch"

# Wine shows a Windows process by its own command line; cmd's names the
# program too, further on.
converter=$(pgrep -f "^Z:.*Odb2vrn_64\.exe .*$mark" || true)
[ -n "$converter" ] || fail "the converter's process was not found"
[ "$(echo "$converter" | wc -l)" -eq 1 ] || fail "more than one converter process: $converter"
kill -9 "$converter"
wait "$runner" 2>/dev/null || true

for _ in $(seq 100); do
    [ -z "$(unpackers)" ] && break
    sleep 0.1
done
[ -z "$(unpackers)" ] || fail "the unpacker still runs 10 s after the converter was killed"
echo "PASS: the unpacker ended with the converter killed hard"

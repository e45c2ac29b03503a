#!/usr/bin/env bash
# Faults of the disk, each on a small tmpfs that this test mounts (so it runs
# as root only): the output folder full at the start of the VRN file, in its
# middle and at its last bytes; the output folder read-only; TMP full in
# either pass of the unpack. An older output stands in the output folder each
# time. A VRN file that exists afterwards is complete; the exit code and the
# console are those of the same run without the fault, and TMP is empty.
#
# disk_faults.sh <bin-dir> <odbgen>
set -euo pipefail
bin=$1 odbgen=$2
skip() { echo "SKIP: $*"; exit 77; }
fail() { echo "FAIL: $*"; exit 1; }
"$bin/qx7za.exe" >/dev/null 2>&1 || skip "no 7-Zip console for qx7za.exe to run"
[ "$(id -u)" -eq 0 ] || skip "mounting a small tmpfs needs root"

scratch=$(mktemp -d)
mounts=()
finish() {
    for mount in "${mounts[@]}"; do umount "$mount" 2>/dev/null || true; done
    rm -rf "$scratch"
}
trap finish EXIT
# tmpfs <folder> <pages>: a file system of that many 4 KiB pages.
tmpfs() {
    mkdir -p "$1" && mount -t tmpfs -o "size=$(($2 * 4))k,mode=0755" tmpfs "$1" && mounts+=("$1")
}
tmpfs "$scratch/probe" 1 || skip "this machine refuses to mount a tmpfs"
export PATH="$bin:$PATH"
unset TEMP RQT32 VOSKARDIR
"$odbgen" -c 3000 -s 5 --tgz "$scratch/board.tgz" "$scratch/gen" >/dev/null
older="older output"

# convert <case> <output folder>: a run with its own TMP; sets status.
convert() {
    mkdir -p "$1/tmp"
    status=0
    (cd "$2" && TMP="$1/tmp" "$bin/Odb2vrn_64" "$scratch/board.tgz" >"$1/console" 2>"$1/errors") || status=$?
    [ ! -s "$1/errors" ] || fail "$1: standard error holds: $(cat "$1/errors")"
    [ -z "$(ls -A "$1/tmp")" ] || fail "$(basename "$1"): left in TMP: $(ls -A "$1/tmp")"
}

mkdir -p "$scratch/whole/out"
convert "$scratch/whole" "$scratch/whole/out"
[ $status -eq 0 ] || fail "the run without a fault ended with $status"
size=$(stat -c %s "$scratch/whole/out/board.vrn")
pages=$(((size + 4095) / 4096))

# The output folder fills up: one page holds the older output, the new file
# gets the rest.
for fault in "start 0" "middle $((pages / 2))" "end $((pages - 1))"; do
    read -r name free <<<"$fault"
    case=$scratch/full-$name
    tmpfs "$case/out" $((free + 1))
    echo "$older" >"$case/out/board.vrn"
    convert "$case" "$case/out"
    [ $status -eq 0 ] || fail "output full at the $name: exit code $status"
    cmp -s "$scratch/whole/console" "$case/console" || fail "output full at the $name: the console differs"
    [ ! -e "$case/out/board.vrn" ] || fail "output full at the $name: a board.vrn of $(stat -c %s "$case/out/board.vrn") bytes is left"
    [ "$(cat "$case/out/board.!rn")" = "$older" ] || fail "output full at the $name: board.!rn is not the older output"
done

# The output folder read-only: nothing can be written or moved.
case=$scratch/read-only
tmpfs "$case/out" 4
echo "$older" >"$case/out/board.vrn"
mount -o remount,ro "$case/out"
convert "$case" "$case/out"
[ $status -eq 0 ] || fail "read-only output folder: exit code $status"
cmp -s "$scratch/whole/console" "$case/console" || fail "read-only output folder: the console differs"
[ "$(cat "$case/out/board.vrn")" = "$older" ] || fail "read-only output folder: the older board.vrn changed"

# TMP full in the first pass (the tar doesn't fit) and in the second (the
# tar fits, the tree beside it doesn't): 7-Zip reports the full disk, the run
# ends as a failed unpack with its reason, and nothing is written.
tar_pages=$(($(gzip -dc "$scratch/board.tgz" | wc -c) / 4096))
for fault in "first 2" "second $((tar_pages + 2))"; do
    read -r name pages <<<"$fault"
    case=$scratch/tmp-full-$name
    tmpfs "$case/disk" "$pages"
    mkdir -p "$case/disk/tmp" "$case/out"
    echo "$older" >"$case/out/board.vrn"
    ln -s "$case/disk/tmp" "$case/tmp"
    convert "$case" "$case/out"
    [ $status -eq 1 ] || fail "TMP full in the $name pass: exit code $status"
    printf 'Using unzip from search path\nError, unzip failed: No space left on device\n' | cmp -s - "$case/console" ||
        fail "TMP full in the $name pass: the console holds: $(cat "$case/console")"
    [ "$(cat "$case/out/board.vrn")" = "$older" ] && [ ! -e "$case/out/board.!rn" ] || fail "TMP full in the $name pass: the older output was touched"
done
echo "PASS: full output folder at 3 places, read-only output folder, TMP full in either pass: no partial file, nothing left"

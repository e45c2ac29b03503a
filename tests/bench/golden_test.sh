#!/usr/bin/env bash
# Generates the 5000-component board (fixed seed), packs it as exporters do,
# converts it with the real program and the real 7-Zip, and compares the VRN
# file and the console text (after the "Using unzip" line) with the expected
# ones. The board is made twice, with LF and with CR LF line ends: both must
# give the same bytes. Each conversion gets its own empty TMP, which must be
# empty again afterwards.
#
# golden_test.sh <odbgen> <bin-dir> <expected.vrn> <expected.console>
set -euo pipefail
odbgen=$1 bin=$2 expected_vrn=$3 expected_console=$4

fail() { echo "FAIL: $*"; exit 1; }

if ! "$bin/qx7za.exe" >/dev/null 2>&1; then
    echo "SKIP: no 7-Zip console for qx7za.exe to run"
    exit 77
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The first line of a difference, with its number, instead of two 2 MB files.
first_difference() {
    diff "$1" "$2" | head -n 4 || true
}

for line_ends in lf crlf; do
    case=$scratch/$line_ends
    mkdir -p "$case/work" "$case/tmp"
    options=(-c 5000 -s 7)
    [ "$line_ends" = crlf ] && options+=(--crlf)
    "$odbgen" "${options[@]}" --tgz "$case/bench_5k.tgz" "$case/job" >/dev/null ||
        fail "odbgen failed ($line_ends)"

    status=0
    (cd "$case/work" &&
        env -u RQT32 -u VOSKARDIR TMP="$case/tmp" TEMP="$case/tmp" PATH="$bin:$PATH" \
            "$bin/Odb2vrn_64" ../bench_5k.tgz >"$case/console" </dev/null) || status=$?
    [ "$status" -eq 0 ] || fail "exit code $status ($line_ends)"

    cmp -s "$expected_vrn" "$case/work/bench_5k.vrn" ||
        fail "VRN file differs ($line_ends):"$'\n'"$(first_difference "$expected_vrn" "$case/work/bench_5k.vrn")"
    tail -n +2 "$case/console" >"$case/console.rest"
    cmp -s "$expected_console" "$case/console.rest" ||
        fail "console differs ($line_ends):"$'\n'"$(first_difference "$expected_console" "$case/console.rest")"
    [ -z "$(ls -A "$case/tmp")" ] || fail "TMP not empty after the run ($line_ends): $(ls -A "$case/tmp")"
done
echo "bench_5k: VRN file and console match for LF and CR LF"

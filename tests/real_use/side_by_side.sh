#!/usr/bin/env bash
# Many conversions at once with one TMP, as build servers and xargs -P run
# them: each must write exactly what it writes alone, and TMP must be empty
# after every round. Runs started in the same second once drew the same
# temporary folder and unpacked into, read from and removed each other's
# trees.
#
# side_by_side.sh <bin-dir> <odbgen> [<wine> <e2e_windows_helper.exe>]
#
# With the last two it runs the Win64 build under Wine (16 at once, 3
# rounds, boards of the source tree instead of generated ones).
# ODB2VRN_RUNS_AT_ONCE and ODB2VRN_ROUNDS change the load (24 and 5 here).
set -eEuo pipefail
trap 'echo "FAILED: $BASH_COMMAND (line $LINENO)"' ERR
bin=$(cd "$1" && pwd) odbgen=$2 wine=${3-} helper=${4:+$(realpath "$4")}
width=${ODB2VRN_RUNS_AT_ONCE:-$([ -n "$wine" ] && echo 16 || echo 24)}
rounds=${ODB2VRN_ROUNDS:-$([ -n "$wine" ] && echo 3 || echo 5)}
fail() { echo "FAIL: $*"; exit 1; }
[ -n "$wine" ] || "$bin/qx7za.exe" >/dev/null 2>&1 || { echo "SKIP: no 7-Zip console for qx7za.exe to run"; exit 77; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/archives" "$scratch/tmp"
export PATH="$bin:$PATH" TMP="$scratch/tmp"
unset TEMP RQT32 VOSKARDIR

# Real jobs when the shared samples are there, and boards of several sizes,
# so that runs end at different moments.
here=$(cd "$(dirname "$0")" && pwd)
for sample in "$here"/../../../shared/samples/*.tgz; do [ -f "$sample" ] && cp "$sample" "$scratch/archives/"; done
if [ -n "$wine" ]; then
    for board in "$here/../../demo/demo_board" "$here/../e2e/jobs/small_board"; do
        mkdir -p "$scratch/boards/odb" && cp -R "$board/." "$scratch/boards/odb"
        tar -czf "$scratch/archives/$(basename "$board").tgz" -C "$scratch/boards" odb && rm -rf "$scratch/boards"
    done
else
    for components in 300 2000 6000; do
        "$odbgen" -c $components -s $components --tgz "$scratch/archives/gen$components.tgz" "$scratch/gen$components" >/dev/null
    done
fi
archives=("$scratch"/archives/*.tgz)

# The program's view of a path: under Wine, / is drive Z:.
native() { if [ -n "$wine" ]; then local path=${1//\//\\}; echo "Z:$path"; else echo "$1"; fi; }

# convert <archive> <folder>: one run in its own working folder. Under Wine
# the helper sets the variables (Wine keeps a TMP of its own) and opens the
# program's standard files.
convert() {
    mkdir -p "$2" && (
        cd "$2"
        status=0
        if [ -n "$wine" ]; then
            "$wine" "$helper" NUL "$(native "$2/console")" "$(native "$2/errors")" TEMP RQT32 VOSKARDIR \
                "TMP=$(native "$TMP")" -- "$(native "$bin/Odb2vrn_64.exe")" "$(native "$1")" >wine 2>&1 || status=$?
        else
            "$bin/Odb2vrn_64" "$1" >console 2>errors || status=$?
        fi
        echo $status >status
    )
}

# What a run left in its folder, for a failure's message.
left_by() {
    echo "exit code $(cat "$1/status" 2>/dev/null || echo none)," \
        "console: $(tail -c 400 "$1/console" 2>/dev/null || true), wine: $(tail -c 400 "$1/wine" 2>/dev/null || true)"
}

# What each archive gives alone.
for archive in "${archives[@]}"; do
    name=$(basename "$archive" .tgz)
    convert "$archive" "$scratch/alone/$name"
    [ "$(cat "$scratch/alone/$name/status")" = 0 ] && [ -s "$scratch/alone/$name/$name.vrn" ] ||
        fail "$name alone: $(left_by "$scratch/alone/$name")"
done

for round in $(seq "$rounds"); do
    for run in $(seq "$width"); do
        archive=${archives[$(((run + round) % ${#archives[@]}))]}
        convert "$archive" "$scratch/round$round/$run/$(basename "$archive" .tgz)" &
    done
    wait
    for folder in "$scratch/round$round"/*/*; do
        name=$(basename "$folder") alone=$scratch/alone/$(basename "$folder")
        for file in status console errors "$name.vrn"; do
            cmp -s "$alone/$file" "$folder/$file" ||
                fail "round $round, $name: $file differs from the run alone ($(left_by "$folder"))"
        done
    done
    left=$(ls -A "$TMP")
    [ -z "$left" ] || fail "round $round left in TMP: $left"
done
echo "PASS: $rounds rounds of $width conversions at once, every file as alone, TMP empty"

#!/usr/bin/env bash
# Many conversions at once with one TMP, as build servers and xargs -P run
# them: each must write exactly what it writes alone, and TMP must be empty
# after every round. Runs started in the same second once drew the same
# temporary folder and unpacked into, read from and removed each other's
# trees.
#
# side_by_side.sh <bin-dir> <odbgen> [runs at once] [rounds]
set -euo pipefail
bin=$1 odbgen=$2 width=${3:-24} rounds=${4:-5}
fail() { echo "FAIL: $*"; exit 1; }
command -v 7zz >/dev/null || { echo "SKIP: no 7-Zip console (7zz)"; exit 77; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/archives" "$scratch/tmp"
export PATH="$bin:$PATH" TMP="$scratch/tmp"
unset TEMP RQT32 VOSKARDIR

# Real jobs when the shared samples are there, and generated boards of
# several sizes, so that runs end at different moments.
samples=$(dirname "$0")/../../../shared/samples
for sample in "$samples"/*.tgz; do [ -f "$sample" ] && cp "$sample" "$scratch/archives/"; done
for components in 300 2000 6000; do
    "$odbgen" -c $components -s $components --tgz "$scratch/archives/gen$components.tgz" "$scratch/gen$components" >/dev/null
done
archives=("$scratch"/archives/*.tgz)

# convert <archive> <folder>: one run in its own working folder.
convert() {
    mkdir -p "$2" && (cd "$2" && "$bin/Odb2vrn_64" "$1" >console 2>errors; echo $? >status)
}

# What each archive gives alone.
for archive in "${archives[@]}"; do convert "$archive" "$scratch/alone/$(basename "$archive" .tgz)"; done

for round in $(seq "$rounds"); do
    for run in $(seq "$width"); do
        archive=${archives[$(((run + round) % ${#archives[@]}))]}
        convert "$archive" "$scratch/round$round/$run/$(basename "$archive" .tgz)" &
    done
    wait
    for folder in "$scratch/round$round"/*/*; do
        name=$(basename "$folder") alone=$scratch/alone/$(basename "$folder")
        for file in status console errors "$name.vrn"; do
            cmp -s "$alone/$file" "$folder/$file" || fail "round $round, $name: $file differs from the run alone"
        done
    done
    left=$(ls -A "$TMP")
    [ -z "$left" ] || fail "round $round left in TMP: $left"
done
echo "PASS: $rounds rounds of $width conversions at once, every file as alone, TMP empty"

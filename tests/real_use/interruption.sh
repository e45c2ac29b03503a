#!/usr/bin/env bash
# Interrupted conversions of a board large enough to be caught in each stage:
# SIGINT, SIGTERM and SIGHUP sent while the archive is unpacked, while the job
# is read and while the VRN file is written, then SIGINT at random moments,
# then SIGKILL while unpacking. An interrupted run ends by its signal (a shell
# sees 128 + the signal), leaves TMP empty and no 7-Zip running, and never a
# half-written VRN file: an older output is where it was (board.vrn before the
# output stage, board.!rn once it was moved aside).
#
# interruption.sh <bin-dir> <odbgen> [random interrupts]
# ODB2VRN_BOARD_COMPONENTS sets the board's size (100000 here).
set -euo pipefail
bin=$1 odbgen=$2 randoms=${3:-10} components=${ODB2VRN_BOARD_COMPONENTS:-100000}
fail() { echo "FAIL: $*"; exit 1; }
"$bin/qx7za.exe" >/dev/null 2>&1 || { echo "SKIP: no 7-Zip console for qx7za.exe to run"; exit 77; }
[ -d /proc/self/fd ] || { echo "SKIP: no /proc to see the run's stage"; exit 77; }
# Job control: a background run of a script ignores SIGINT otherwise, and
# the converter leaves an ignored signal ignored, as nohup expects.
set -m

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PATH="$bin:$PATH"
unset TEMP RQT32 VOSKARDIR
"$odbgen" -c "$components" -s 11 --tgz "$scratch/board.tgz" "$scratch/gen" >/dev/null
rm -rf "$scratch/gen"
older="older output"

# start <case>: a run in the case's own working folder and TMP, with an older
# output present. Sets pid.
start() {
    mkdir -p "$1/work" "$1/tmp"
    echo "$older" >"$1/work/board.vrn"
    (cd "$1/work" && TMP="$1/tmp" exec "$bin/Odb2vrn_64" "$scratch/board.tgz" >../console 2>../errors) &
    pid=$!
}
# in_stage <case> <stage>: true while the run is in that stage.
in_stage() {
    case $2 in
    unpack) pgrep -f -- "-o$1/tmp/" >/dev/null ;;
    read) ls -l "/proc/$pid/fd" 2>/dev/null | grep -q -e '/eda/data$' -e '/components$' ;;
    write) ls -l "/proc/$pid/fd" 2>/dev/null | grep -q -- "$1/work/board.vrn$" ;;
    esac
}
# wait_for_stage <case> <stage>: false when the run ended first.
wait_for_stage() {
    until in_stage "$1" "$2"; do
        kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.002
    done
}
# no_unpacker_left <case>: within a second, no 7-Zip of this run runs.
no_unpacker_left() {
    for _ in $(seq 100); do
        pgrep -f -- "$1/tmp/" >/dev/null || return 0
        sleep 0.01
    done
    return 1
}
# check_end <case> <status> <what>: what an ended run must leave.
check_end() {
    local status=$2 left
    left=$(ls -A "$1/tmp")
    [ -z "$left" ] || fail "$3: left in TMP: $left"
    no_unpacker_left "$1" || fail "$3: 7-Zip still runs"
    [ ! -s "$1/errors" ] || fail "$3: standard error holds: $(cat "$1/errors")"
    if [ "$status" -eq 0 ]; then
        cmp -s "$scratch/whole/work/board.vrn" "$1/work/board.vrn" || fail "$3: ended with 0, but board.vrn is not whole"
    elif [ -e "$1/work/board.!rn" ]; then
        [ "$(cat "$1/work/board.!rn")" = "$older" ] || fail "$3: board.!rn is not the older output"
        # A VRN file that exists is complete.
        [ ! -e "$1/work/board.vrn" ] || cmp -s "$scratch/whole/work/board.vrn" "$1/work/board.vrn" ||
            fail "$3: a half-written board.vrn was left"
    else
        [ "$(cat "$1/work/board.vrn")" = "$older" ] || fail "$3: the older board.vrn was changed"
    fi
}

start "$scratch/whole"
wait "$pid" || fail "the uninterrupted run ended with $?"

for stage in unpack read write; do
    for signal in INT TERM HUP; do
        [ $signal = HUP ] && [ $stage != read ] && continue
        case=$scratch/$signal-$stage
        caught=
        for _ in 1 2 3; do
            rm -rf "$case" && start "$case"
            if wait_for_stage "$case" $stage; then
                caught=1
                break
            fi
            wait "$pid" || true
        done
        [ -n "$caught" ] || fail "SIG$signal: the run never stayed long enough in the $stage stage to be caught"
        kill -s $signal "$pid" 2>/dev/null || true
        status=0 && wait "$pid" || status=$?
        [ $status -eq $((128 + $(kill -l $signal))) ] || fail "SIG$signal while $stage: exit status $status"
        check_end "$case" $status "SIG$signal while $stage"
        [ $stage != write ] || [ ! -e "$case/work/board.vrn" ] || fail "SIG$signal while writing: board.vrn is there"
    done
done

# At random moments of a whole run: the run ends by SIGINT, or it had
# finished and ends with 0.
for round in $(seq "$randoms"); do
    case=$scratch/random$round
    start "$case"
    sleep "0.$(printf '%03d' $((RANDOM % 1000)))"
    kill -s INT "$pid" 2>/dev/null || true
    status=0 && wait "$pid" || status=$?
    [ $status -eq 130 ] || [ $status -eq 0 ] || fail "SIGINT at random, round $round: exit status $status"
    check_end "$case" $status "SIGINT at random, round $round"
done

# Killed hard while unpacking: 7-Zip dies with the converter. The tree it
# leaves is the user's to remove.
case=$scratch/KILL-unpack
start "$case"
wait_for_stage "$case" unpack || fail "SIGKILL: the unpack stage was not caught"
kill -s KILL "$pid"
wait "$pid" || true
no_unpacker_left "$case" || fail "SIGKILL while unpacking: 7-Zip went on"
echo "PASS: interrupted in every stage and at $randoms random moments, nothing left behind"

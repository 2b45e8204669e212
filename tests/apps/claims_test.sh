#!/bin/bash
# Several processes over one folder: each frame is made once, and what a killed one held is taken over.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

"$veloxa" plate -o shot --size 480x360 || fail "no plate"
for n in $(seq 24); do ln -s fg.exr shot/fg.$n.exr; done
key=(key --fg shot/fg.%d.exr --frames 1-24 --pick 0,240,60,360 --threads 1)
expect 0 "24 made" "${key[@]}" -o serial.%d.exr

# share NAME: keys what is free of the folder "out" in the background, and tells in NAME.txt.
share() {
    "$veloxa" "${key[@]}" -o out/f.%d.exr --claim 2>"$1.txt" &
}
# counted WHAT NAME...: the sum over these processes.
counted() {
    local what=$1
    shift
    grep -ohE "[0-9]+ $what" "${@/%/.txt}" | awk '{ sum += $1 } END { print sum + 0 }'
}
# whole: all frames are there, as one process makes them, and nothing else.
whole() {
    for n in $(seq 24); do cmp serial.$n.exr out/f.$n.exr || fail "frame $n"; done
    [ "$(ls -A out | wc -l)" -eq 24 ] || fail "left over: $(ls -A out)"
    rm -rf out
}

mkdir out
for name in a b c; do share $name; done
wait
[ "$(counted made a b c)" -eq 24 ] || fail "frames made twice, or not: $(cat a.txt b.txt c.txt)"
whole

# One stands still with what it claimed, which the others leave alone. Killed, it leaves that to who comes next.
mkdir out
share a
still=$!
for _ in $(seq 1000); do [ -e out/f.3.exr ] && break || sleep 0.01; done
kill -STOP $still
made=$(ls out | wc -l)
share b
second=$!
share c
wait $second $! || fail "those that share with one that stands still: $(cat b.txt c.txt)"
left=$((24 - $(ls out | wc -l)))
[ "$left" -gt 0 ] && [ "$left" -le 4 ] || fail "$left frames left to who stands still"
[ "$(counted 'left to other' b)" -ge "$left" ] || fail "fewer than $left frames left to others: $(cat b.txt)"
[ $((made + $(counted made b c))) -eq $((24 - left)) ] || fail "$made made before, not once each: $(cat b.txt c.txt)"
kill -KILL $still
wait $still 2>/dev/null
[ -n "$(find out -name '.*.claim')" ] || fail "nothing was claimed by who was killed"
share d
wait
[ "$(counted made d)" -eq "$left" ] || fail "not $left taken over: $(cat d.txt)"
whole

# Taken over by one that has passed them already, too.
mkdir out
share a
still=$!
for _ in $(seq 1000); do [ -e out/f.3.exr ] && break || sleep 0.01; done
kill -STOP $still
share b
for _ in $(seq 1000); do [ -e out/f.12.exr ] && break || sleep 0.01; done
kill -KILL $still
wait $still 2>/dev/null
wait
whole

# What programs read of it: a line a frame, whatever becomes of it.
mkdir out
ln -s "$(realpath shot/alpha_true.exr)" out/f.7.exr
rm shot/fg.9.exr
: >shot/fg.9.exr
expect 1 "" key --fg shot/fg.%d.exr --pick 0,240,60,360 --frames 5-10 -o out/f.%d.exr --resume --progress json --quiet
grep '^{' err.txt | python3 -c '
import json, sys
lines = [json.loads(line) for line in sys.stdin]
states = {line["frame"]: line["state"] for line in lines}
assert states == {5: "made", 6: "made", 7: "stale", 8: "made", 9: "failed", 10: "made"}, states
for line in lines:
    assert (line["error"] is not None and "fg.9.exr" in line["error"]) == (line["frame"] == 9), line
    assert (line["read_ms"] > 0 and line["key_ms"] > 0 and line["write_ms"] > 0) == (line["frame"] != 9), line
    assert line["peak_mb"] > 10, line
' || fail "lines of JSON: $(cat err.txt)"
expect 1 "" key --fg shot/fg.%d.exr --pick 0,240,60,360 --frames 6-9 -o out/f.%d.exr --resume --progress openjd
[ "$(cut -d' ' -f1 out.txt | sort | uniq -c | tr -s ' \n' ' ')" = " 1 openjd_fail: 4 openjd_progress: 4 openjd_status: " ] &&
    grep -qx 'openjd_progress: 75.0' out.txt && grep -qx 'openjd_status: 4 of 4 frames, 1 failed' out.txt ||
    fail "lines of a job: $(cat out.txt)"
expect 1 "openjd_fail: shot/fg.9.exr: is empty" key --fg shot/fg.9.exr -o out/g.exr --progress openjd
expect 2 "--progress openjd: standard output carries the stream" key --fg shot/fg.1.exr -o - --progress openjd

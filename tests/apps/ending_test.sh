#!/bin/bash
# How the program ends before its time, and when another try is worth it.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

"$veloxa" plate -o shot --size 64x48 || fail "no plate"
mkdir cut
for n in $(seq 400); do ln -s fg.exr shot/fg.$n.exr; done
key=(key --fg shot/fg.%d.exr --frames 1-400 --pick 0,40,8,48)

# end OUTPUT PAUSES STATUS TEXT OPTIONS...: runs until OUTPUT is there, then sends $signal after each pause.
signal=TERM
end() {
    local output=$1 signals=$2 status=$3 text=$4 start
    "$veloxa" "${key[@]}" "${@:5}" >$out 2>err.txt &
    local program=$!
    for _ in $(seq 500); do [ -e "$output" ] && break || sleep 0.02; done
    start=$SECONDS
    for pause in $signals; do sleep "$pause" && kill -$signal $program 2>/dev/null; done
    wait $program
    local got=$?
    [ $got -eq "$status" ] || fail "status $got, not $status, after SIG$signal: ${*:5} ($(cat err.txt))"
    grep -q "$text" err.txt || fail "no '$text': $(cat err.txt)"
    [ $((SECONDS - start)) -lt 15 ] || fail "took $((SECONDS - start)) s to end: ${*:5}"
    [ -z "$(find cut -name '.*' -type f)" ] || fail "temporary files are left: $(ls -A cut)"
}

# Each frame is done or counted as left, so those under way were finished; what sends the signal twice means it once.
end cut/f.3.exr "0 0.001" 75 "^veloxa: ended by SIGTERM$" -o cut/f.%d.exr
left=$(grep -oP '[0-9]+(?= not begun)' err.txt)
[ "$(find cut -name 'f.*.exr' | wc -l)" -eq $((400 - left)) ] || fail "$left frames left, but $(ls cut | wc -l) made"
for file in $(ls -t cut | head -n 4); do expect 0 "" compare "cut/$file" "cut/$file"; done
rm cut/*
signal=INT end cut/f.3.exr 0 130 "" -o cut/f.%d.exr
[ -e cut/f.400.exr ] && fail "SIGINT came too late to show anything"
for file in $(ls -t cut | head -n 5); do expect 0 "" compare "cut/$file" "cut/$file"; done
rm cut/*
end cut/f.3.exr 0 75 "dropped" -o cut/f.%d.exr --grace 0

# Frames that never end, as nobody reads the pipe: dropped when their time is over, or at the second signal.
mkfifo pipe
exec 3<>pipe
out=pipe
end cut/h.1.exr 0.5 75 "dropped" -o cut/h.%d.exr -o - --grace 1
end cut/i.1.exr "0.5 1.2" 75 "dropped" -o cut/i.%d.exr -o -
out=out.txt

# A file that the system cannot read now is another matter than a broken one, or none.
ln -s /proc/self/mem shot/fg.401.exr
echo "no picture" >shot/fg.402.exr
for frames in 401:75 402:1 403:1 400-402:75 402-404:1; do
    expect ${frames#*:} "" key --fg shot/fg.%d.exr --frames ${frames%:*} -o cut/g.%d.exr --set screen_color=0,0,0 --overwrite
done

# Disks that are full or cannot be written, where a user may mount one.
full_disk() {
    mount -t tmpfs -o size=16k tmpfs full || fail "no small file system"
    for type in exr png tif jpg dpx tga sgi iff rla; do
        expect 75 "full/a.$type: " key --fg big/fg.exr -o full/a.$type --set screen_color=0,0,0
        expect_files full ""
    done
    expect 75 "full/a.exr: No space left" key --fg big/fg.exr -o full/a.exr --set screen_color=0,0,0
    mount -o remount,ro full
    expect 75 "full/a.exr: cannot write to its folder: Read-only" key --fg big/fg.exr -o full/a.exr
    umount full
    exit $failures
}
mkdir full
"$veloxa" plate -o big --size 256x192
if unshare -rm true 2>/dev/null; then
    export -f full_disk expect expect_files fail
    export veloxa in out limit failures
    unshare -rm bash -c full_disk || fail "a full disk"
else
    echo "No disk is filled: no user may mount one here."
fi

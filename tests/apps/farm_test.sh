#!/bin/bash
# Keys that several processes make parts of.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

expect 0 "" plate -o p --size 64x48 --frames 1-7
mkdir out part
plate=(--fg p/fg.%04d.exr --frames 1-7)

expect_rows key --fg p/fg.%04d.exr --pick 0,40,8,48 <<'TABLE'
2|needs --frames|-o out/a.exr --chunk 0/3
2|counted from 0|-o out/a.%d.exr --frames 1-7 --chunk 3/3
2|several frames need a frame pattern|-o out/a.exr --frames 1-7 --chunk 0/7
2|has no chunks|-o - --frames 1-7 --chunk 0/3
2|--save-script|-o out/a.%d.exr --frames 1-7 --chunk 0/3 --save-script out/a.script
TABLE
out=out.nut expect 2 "has no chunks" key --fg - -o out/a.%d.exr --frames 1-7 --chunk 0/3
expect_files out ""

# What is set up and measured is that of the whole shot, so that parts are the bytes of one run.
for chunk in 2 0 1; do
    expect 0 "" key "${plate[@]}" --auto --set unmix_method=unmix -o part/a.%04d.exr --chunk $chunk/3
done
expect 0 "" key "${plate[@]}" --auto --set unmix_method=unmix -o out/a.%04d.exr
diff -r out part >err.txt || fail "chunks differ from one run: $(cat err.txt)"
expect 0 "this one has none" key "${plate[@]}" -o out/b.%04d.exr --chunk 0/8
expect_files part "$(printf 'a.%04d.exr ' 1 2 3 4 5 6 7)"
SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_MIN=0 SLURM_ARRAY_TASK_COUNT=3 SLURM_ARRAY_TASK_STEP=1 \
    expect 0 'part/c.%04d.exr, 2 files: part/c.0003.exr to part/c.0004.exr' \
    key "${plate[@]}" -o part/c.%04d.exr --chunk slurm --dry-run

# What is asked for otherwise, or read of another file, is stale; of these frames alone. Nothing is read where all
# is kept.
counts() { grep -qF "$1 made, $2 kept, $3 stale and made again, $4 failed" err.txt || fail "$5, not $*: $(cat err.txt)"; }
cp p/fg.0002.exr fg2.exr
blank() { # plates as before, but for what is in them
    cp -a p kept
    for file in p/fg.*; do
        head -c "$(stat -c %s "$file")" /dev/zero >"$file"
        touch -r "kept/${file#p/}" "$file"
    done
}
for format in exr png jpg; do
    cp fg2.exr p/fg.0002.exr
    printf 'Veloxa {\n  brights 90\n}\n' >a.script
    frames=1-4
    key=(key --fg p/fg.%04d.exr --pick 0,40,8,48 --script a.script --resume)
    to=(-o "$format.%d.$format")
    [ $format = exr ] && to+=(-o matte=m.%d.exr)
    expect 0 "4 made" "${key[@]}" "${to[@]}" --frames 1-4
    while IFS='|' read -r what change made kept stale arguments; do
        eval "$change"
        # shellcheck disable=SC2086
        expect 0 "" "${key[@]}" "${to[@]}" --frames $frames $arguments
        counts "$made" "$kept" "$stale" 0 "$format, $what"
    done <<TABLE
nothing||0|4|0|
nothing, and no plate is read|blank|0|4|0|
other frames|rm -r p; mv kept p; frames=1-2|0|2|0|
a script that sets the same|frames=1-4; sed -i 's/ 90/ 90.0/' a.script|0|4|0|
another script|sed -i 's/ 90.0/ 80/' a.script|0|0|4|
a knob||0|0|4|--set brights=70
depth||0|0|4|--set brights=70 --depth $([ $format = exr ] && echo float || echo uint8)
a plate's time|touch p/fg.0003.exr|0|0|4|
that plate again|touch p/fg.0003.exr|0|3|1|
the plate that the screen colour is of|touch p/fg.0001.exr|0|0|4|
another plate|cp p/fg.0004.exr p/fg.0002.exr|0|3|1|
a whole file that somebody put there|cp $format.1.$format other && mv other $format.3.$format|0|3|1|
a file cut off|truncate -s -9 $format.4.$format|1|3|0|
a file that is gone|rm $format.2.$format|1|3|0|
by content||0|0|4|--fingerprint content
touched|touch p/fg.000?.exr|0|4|0|--fingerprint content
moved|mkdir q; mv p/fg.* q; ln -s ../q/fg.000{1,2,3,4}.exr p|0|4|0|--fingerprint content
other content|cp q/fg.0001.exr other; cat other >q/fg.0003.exr|0|3|1|--fingerprint content
without provenance||0|0|4|--no-provenance
without provenance again||0|4|0|--no-provenance
TABLE
    rm p/fg.* && mv q/fg.* p && rmdir q && cp fg2.exr p/fg.0003.exr
done

# What is left to do of a key, without its plates.
rm -rf p out && mkdir out
expect 0 "" plate -o p --size 64x48 --frames 1-12
key=(--fg p/fg.%04d.exr --frames 1-12 --pick 0,40,8,48 -o out/a.%d.exr -o matte=out/m.%d.jpg)
expect 1 "24 outputs: 0 whole, 0 stale, 0 broken, 24 missing, 0 left over" farm check "${key[@]}"
expect 1 "0-3" farm check "${key[@]}" --array --chunks 4
expect 0 "" key "${key[@]}"
blank
expect 0 "24 outputs: 24 whole, 0 stale, 0 broken, 0 missing, 0 left over" farm check "${key[@]}"
expect 0 "" farm check "${key[@]}" --array
[ -s out.txt ] && fail "chunks to run again: $(cat out.txt)"
expect 0 "8 outputs: 8 whole" farm check "${key[@]}" --chunk 0/3
rm out/a.2.exr && truncate -s -9 out/m.9.jpg && touch p/fg.0010.exr out/m.12.jpg
expect 1 "24 outputs: 19 whole, 3 stale, 1 broken, 1 missing, 0 left over" farm check "${key[@]}"
expect_lines "out/a.2.exr: missing" "out/m.9.jpg: broken" "out/a.10.exr: stale" "out/m.10.jpg: stale" "out/m.12.jpg: stale"
expect_rows farm check "${key[@]}" <<'TABLE'
2|has no such option|--arary
2|excludes|--array --json
2|requires --array|--chunks 3
2|--array looks at all|--array --chunk 0/3
1|24 outputs: 0 whole, 22 stale|--set brights=70
1|"stale": []|--chunk 0/4 --json
TABLE
for list in 4:0,2-3 6:0,4-5 12:1,8-9,11 100:1,8-9,11; do
    expect 1 "" farm check "${key[@]}" --array --chunks ${list%:*}
    [ "$(cat out.txt)" = ${list#*:} ] || fail "chunks of ${list%:*} to run again: $(cat out.txt)"
done

# A key that is killed leaves a temporary file; it is no more than left over.
rm -rf p out kept && mkdir out
expect 0 "" plate -o p --size 1920x1080 --frames 1-1
key=(--fg p/fg.%04d.exr --frames 1-1 --pick 0,40,8,48 -o out/a.%d.exr --compression zip:9 --depth float)
"$veloxa" key "${key[@]}" 2>err.txt &
until [ -n "$(ls -A out)" ]; do sleep 0.01; done
expect 1 "1 output: 0 whole, 0 stale, 0 broken, 1 missing, 0 left over" farm check "${key[@]}"
kill -KILL $! && wait $! 2>err.txt
file=out/$(ls -A out)
expect 1 "1 output: 0 whole, 0 stale, 0 broken, 1 missing, 1 left over" farm check "${key[@]}"
grep -q "^$file: left over by process $! on " out.txt || fail "$file, $!: $(cat out.txt)"
expect 1 '"kind": "temporary"' farm check "${key[@]}" --json
python3 -c 'import json, sys; assert json.load(sys.stdin)["missing"] == [{"frame": 1, "file": "out/a.1.exr"}]' <out.txt ||
    fail "JSON: $(cat out.txt)"

#!/bin/bash
# What the program says of itself, of what it would do, and as JSON.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

# Help in either way; the version at length.
for command in "" key help; do
    "$veloxa" ${command:+"$command"} --help >long.txt
    expect 0 "Usage: veloxa${command:+ $command} [OPTIONS]" help ${command:+"$command"}
    cmp -s long.txt out.txt || fail "help $command is not $command --help"
done
expect 2 "nonsense: there is no such command; there are key, analyse," help nonsense
expect 2 "kye: there is no such command; did you mean 'key'?" help kye
VELOXA_LANES=scalar expect 0 "" --version --verbose
expect_lines "$("$veloxa" --version)" "arithmetic   scalar"
grep -qE '^writes .*openexr.*png' out.txt || fail "no formats: $(cat out.txt)"
expect 2 "--verbose" --verbose knobs

# Tooltips without markup in the table, as they are in JSON.
expect 0 "<li><b>off</b>: no overlay.</li>" knobs --json
expect 0 "" knobs
expect_lines "Select overlay rendering:" "- off: no overlay."
! grep -E '<[a-z/]+>|&[a-z]+;' out.txt || fail "markup in the table of knobs"

# What would be done; nothing comes into being, and what is in the way is named.
"$veloxa" plate -o shot --size 64x48 --frames 1-5
"$veloxa" plate -o small --size 32x24
mkdir out
shot=(--fg shot/fg.%04d.exr --bg shot/bg.0001.exr --frames 1-5 --dry-run)
expect 0 "" key "${shot[@]}" -o out/a.%04d.exr --set brights=120 --auto --stroke addmatte=1,2,3,4 --save-script out/a.vlx
expect_lines "fg  shot/fg.%04d.exr, 5 files: shot/fg.0001.exr to shot/fg.0005.exr, 64x48, linear, as half" "bg  shot/bg.0001.exr, 64x48, linear, as half" \
    "brights 120" "screen_color, as the foreground's backing is found to be" "what the stroke addmatte=1,2,3,4 asks" \
    "what --auto finds fit for the foreground; it is not tried here" "out/a.vlx" \
    "out/a.%04d.exr, 5 files: out/a.0001.exr to out/a.0005.exr"
expect 0 "screen_color, the mean of the box 0,0,9,9" analyse "${shot[@]}" --pick 0,0,9,9 -o out/shot.txt
expect 0 "out/tuned.vlx" tune "${shot[@]}" -o out/tuned.vlx
expect 0 "out/clean.exr" cleanplate --fg shot/fg.%04d.exr --frames 1-5 -o out/clean.exr --dry-run
expect 1 "shot/gm.0009.exr: does not exist" key "${shot[@]}" --gm shot/gm.0009.exr -o out/a.%04d.exr
expect 1 "shot/fg.0007.exr: does not exist" key --fg shot/fg.%04d.exr --frames 4-7 -o out/a.%04d.exr --dry-run
expect_lines "fg  shot/fg.%04d.exr, 2 of 4 files: shot/fg.0004.exr to shot/fg.0007.exr, 64x48, linear, as half"
[ "$(wc -l <err.txt)" -eq 2 ] || fail "not the two frames that are missing: $(cat err.txt)"
expect 1 "small/bg.exr: is 32x24, but the foreground is 64x48" key "${shot[@]:0:2}" --frames 1-5 --dry-run \
    --bg small/bg.exr -o out/a.%04d.exr
expect 0 "" key --fg shot/fg.0001.exr --bg small/bg.exr --fit crop -o out/a.exr --dry-run
expect 1 "none/a.0001.exr: there is no folder none" key "${shot[@]}" -o none/a.%04d.exr
[ "$(wc -l <err.txt)" -eq 1 ] || fail "the folder is missing more than once: $(cat err.txt)"
expect_files out ""
touch out/a.0002.exr out/a.0005.exr
expect 1 "out/a.0005.exr: exists" key "${shot[@]}" -o out/a.%04d.exr
[ "$(wc -l <err.txt)" -eq 2 ] || fail "not the two files in the way: $(cat err.txt)"
expect 0 "" key "${shot[@]}" -o out/a.%04d.exr --overwrite
[ ! -s out/a.0002.exr ] || fail "a dry run wrote a frame"
expect 2 "is an input too" key --fg shot/fg.0001.exr -o shot/fg.0001.exr --overwrite --dry-run
expect 1 "uint8" key --fg shot/fg.0001.exr -o out/b.exr --depth uint8 --dry-run
expect 1 "out/b.none: " key --fg shot/fg.0001.exr -o out/b.none --dry-run

# Tables as JSON; what is infinite is null.
expect 0 '"psnr": null' compare shot/bg.0001.exr shot/bg.0001.exr --json
expect 1 '"largest": ' compare shot/bg.0001.exr shot/fg.0001.exr --json --max-diff 0
tr -d ' \n' <out.txt | grep -qE '^\{"channels":\{"R":\{"largest":[0-9.]+,"mean":[0-9.]+,"psnr":[0-9.]+\},.*"overall":' ||
    fail "the comparison as JSON: $(cat out.txt)"
expect 0 "" controls --json --set darks=7
tr -d ' \n' <out.txt | grep -qE '^\[\{"index":0,"name":"Algorithm","value":0\},.*"MatteDensityDarks","value":-7\}.*\{"index":249,' ||
    fail "the controls as JSON: $(head -c 300 out.txt)"
expect 2 "--trace" controls --json --trace
expect 0 '"seen": ' cleanplate --fg shot/fg.%04d.exr --frames 1-5 -o out/clean.exr --json --quiet
grep -q '"compared": [0-9]' out.txt || grep -q '"shift": null' out.txt || fail "no shift: $(cat out.txt)"
expect 0 "" key --fg shot/fg.0001.exr -o out/c.exr --stats --json --quiet
tr -d ' \n' <err.txt | grep -qE '^\{"operators":\[\{"name":"[^"]+","class":"[^"]+","rows":[0-9]+,.*"frames":1,"made":1,"kept":0,"stale":0,"failed":0,"read_ms":.*\}$' ||
    fail "the statistics as JSON: $(head -c 300 err.txt)"
expect 2 "--stats" key --fg shot/fg.0001.exr -o out/d.exr --json

#!/bin/bash
# Runs the program as a user does: exit statuses, messages, and what is left on the disk.
data=$(realpath "$(dirname "$0")/../controls/data")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
lines() { tr -d '\n' <"$1" | tr '|' '\n'; } # of a text that has bars for line ends

pick=(--pick 0,40,8,48)

expect 0 "veloxa " --version
expect 0 "--save-script" key --help
expect 0 "" plate -o shot --size 64x48 --frames 1-5
mkdir out

# Bad usage. The outputs must not come into being.
expect_rows <<'TABLE'
2|key, analyse, knobs, controls, spaces, cleanplate, tune, view, plate, compare, score|
2|--threads|key --fg shot/fg.0001.exr -o out/a.exr --threads 0
2|--frames|key --fg shot/fg.%04d.exr -o out/a.%04d.exr
2|frame pattern|key --fg shot/fg.%04d.exr -o out/a.exr --frames 1-5
2|frame pattern|key --fg shot/fg.0001.exr -o out/a.%04d.exr --frames 1-5
2|--pick|key --fg shot/fg.0001.exr -o out/a.exr --pick 1,2,3
2|--spill|plate -o out/p --spill 2
2|--composite-truth|score shot/alpha_true.0001.exr shot/alpha_true.0001.exr --composite shot/fg.0001.exr
2|frame pattern|score shot/alpha_true.%04d.exr shot/alpha_true.0001.exr
1|shot/fg.0001.exr: has no alpha|score shot/fg.0001.exr shot/alpha_true.0001.exr
1|which is no region|score shot/gm.0001.exr shot/gm.0001.exr --regions shot/alpha_true.0001.exr
1|out/none.exr: does not exist|score shot/gm.0001.exr shot/gm.0001.exr --exclude out/none.exr
2|--veil-colour|plate -o out/p --veil-colour pink
2|--screen|key --fg shot/fg.0001.exr -o out/a.exr --screen green --pick 0,40,8,48
1|shot/bg.0001.exr: no backing stands out|key --fg shot/bg.0001.exr -o out/a.exr
1|--pick X,Y,R,T|key --fg shot/fg.0001.exr -o out/a.exr --screen blue
2|--frames|cleanplate --fg shot/fg.%04d.exr -o out/a.exr
2|frame pattern|cleanplate --fg shot/fg.0001.exr -o out/a.exr --frames 1-5
2|is an input too|cleanplate --fg shot/fg.%04d.exr -o shot/fg.0002.exr --frames 1-5 --overwrite
1|does not exist|cleanplate --fg out/none.%d.exr -o out/a.exr --frames 1-2
2|64x48|key --fg shot/fg.0001.exr -o out/a.exr --pick 0,0,65,48
2|KNOB=VALUE|key --fg shot/fg.0001.exr -o out/a.exr --set brights
2|removeoverlay, addmatte|key --fg shot/fg.0001.exr -o out/a.exr --stroke erase=1,2,3,4
2|TOOL=X,Y,R,T|tune --fg shot/fg.0001.exr -o out/a.script --stroke screen
2|64x48|tune --fg shot/fg.0001.exr -o out/a.script --stroke screen=0,0,65,48
2|area 2 of 2: the box reaches outside|tune --fg shot/fg.0001.exr -o out/a.script --stroke screen=0,0,5,5+0,0,65,48
2|area 3 of 3: 1,2,3: expected|tune --fg shot/fg.0001.exr -o out/a.script --stroke screen=0,0,5,5+0,9,5,48+1,2,3
2|@FRAME needs --frames|tune --fg shot/fg.0001.exr -o out/a.script --stroke screen@1=0,0,5,5
2|number after @|tune --fg shot/fg.%d.exr --frames 1-5 -o out/a.script --stroke screen@one=0,0,5,5
1|shot/fg.0009.exr: does not exist|tune --fg shot/fg.%04d.exr --frames 1-5 -o out/a.script --stroke screen@9=0,0,5,5
1|shot/fg.0001.exr: exists; use --overwrite|tune --fg shot/fg.0001.exr -o shot/fg.0001.exr
2|computeMatte|key --fg shot/fg.0001.exr -o out/a.exr --stage nothing
1|out/none.exr: does not exist|key --fg out/none.exr -o out/a.exr
1|out: is a folder|key --fg shot/fg.0001.exr -o out
1|uint8|key --fg shot/fg.0001.exr -o out/a.exr --depth uint8
1|none.script|key --fg shot/fg.0001.exr -o out/a.exr --script none.script
1|shot/fg.0001.exr: exists; use --overwrite|key --fg shot/fg.0002.exr -o shot/fg.0001.exr
2|is an input too|key --fg shot/fg.0001.exr -o shot/fg.0001.exr --overwrite
1|shot/fg.0001.exr: exists; use --overwrite|controls -o shot/fg.0001.exr
TABLE
expect_files out ""

# Stills: knobs by hand equal knobs by script, whatever the number of threads.
expect 0 "passes through" key --fg shot/fg.0001.exr -o out/plain.exr --depth float --set screen_color=0,0,0
expect 0 "" compare shot/fg.0001.exr out/plain.exr --channel G --max-diff 0
inputs=(--fg shot/fg.0001.exr --cp shot/cp.0001.exr --bg shot/bg.0001.exr)
expect 0 "" key "${inputs[@]}" -o out/a.exr "${pick[@]}" --set brights=120 --save-script out/a.script --quiet
[ -s err.txt ] && fail "messages in spite of --quiet: $(cat err.txt)"
grep -q 'brights 120' out/a.script || fail "script without brights: $(cat out/a.script)"
expect 0 "" key "${inputs[@]}" -o out/b.exr --script out/a.script --threads 1
expect 0 "" compare out/a.exr out/b.exr --max-diff 0
expect 0 "" key "${inputs[@]}" -o out/c.exr --script out/a.script --set brights=20
expect 1 "overall" compare out/a.exr out/c.exr --max-diff 0.001
expect 0 "computeMatte" key "${inputs[@]}" -o out/stage.exr --script out/a.script --stage computeMatte --stats
expect 0 "VlxShrinkV " key "${inputs[@]}" -o out/stats.exr --script out/a.script --stats
grep -q '[0-9]VlxShrinkV' err.txt && fail "a class name that is not readable: $(grep VlxShrinkV err.txt)"
expect 1 "" compare out/stage.exr out/a.exr --max-diff 100
expect 0 '"name": "screen_color"' knobs --json
printf 'Veloxa {\n  brights 5\n  nonsense 1\n}\n' >bad.script
expect 1 "bad.script:3: " key "${inputs[@]}" -o out/d.exr --script bad.script

# The backing by itself, on the first frame that can be read.
expect 0 "shot/fg.0001.exr: green screen, screen_color " key --fg shot/fg.%04d.exr -o out/auto.%04d.exr \
    --frames 1-2 --save-script out/auto.script
grep -q 'screen_color {0.1' out/auto.script || fail "no estimate in $(cat out/auto.script)"
expect 0 "" key --fg shot/fg.0001.exr -o out/again.exr --script out/auto.script
expect 0 "" compare out/auto.0001.exr out/again.exr --max-diff 0
expect 0 "" plate -o blue --size 64x48 --screen blue
expect 0 "" key --fg blue/fg.exr -o out/blue.exr --screen auto --quiet
[ -s err.txt ] && fail "messages in spite of --quiet: $(cat err.txt)"

# What is given beats what the seed draws, and the rest is drawn the same.
for spill in 0 0.4; do expect 0 "" plate -o spill$spill --size 64x48 --vary --spill $spill; done
expect 0 "" compare spill0/alpha_true.exr spill0.4/alpha_true.exr --max-diff 0
expect 1 "" compare spill0/fg.exr spill0.4/fg.exr --max-diff 0.01
expect 1 "" compare spill0/alpha_true.exr shot/alpha_true.0001.exr --max-diff 0.1

# Strokes: keying and tuning do the same, a second time nothing is left to do.
strokes=(--stroke screen=0,40,8,48 --stroke add_overlay@3=0,0,20,10+0,5,12,20 --stroke toolbar_removenoise=50,30,60,40)
shot=(--fg shot/fg.%04d.exr --frames 2-4)
expect 0 "toolbar_addoverlay @3 0,0,20,20: " tune "${shot[@]}" "${strokes[@]}" -o out/tuned.script
grep -q "screen, screen_color" err.txt && fail "the screen was estimated in spite of a stroke: $(cat err.txt)"
expect 0 "" key "${shot[@]}" "${strokes[@]}" -o out/stroked.%04d.exr --save-script out/keyed.script
cmp out/tuned.script out/keyed.script || fail "scripts of key and tune differ"
expect 0 "" key "${shot[@]}" --script out/tuned.script -o out/tuned.%04d.exr
expect 0 "" compare out/stroked.0004.exr out/tuned.0004.exr --max-diff 0
expect 0 "no knob changed" tune "${shot[@]}" "${strokes[@]}" --script out/tuned.script
expect 0 '"name": "screen_color"' tune "${shot[@]}" "${strokes[@]}" --json

# Mattes drawn in a script count, in what is keyed and in what is saved.
drawn='Matte {|kind garbage|feather 4|points {-9 -9 40 -9 40 90 -9 90}|}|'
{ cat out/tuned.script && lines <(echo "$drawn"); } >out/drawn.script
expect 0 "" tune "${shot[@]}" --script out/drawn.script -o out/kept.script
grep -q "out/drawn.script: 1 drawn matte$" err.txt || fail "the drawn matte is not told of: $(cat err.txt)"
for script in drawn kept; do
    expect 0 "" key "${shot[@]}" --script out/$script.script -o out/$script.%04d.exr
done
expect 1 "" compare out/tuned.0003.exr out/drawn.0003.exr --max-diff 0.1
expect 0 "" compare out/kept.0003.exr out/drawn.0003.exr --max-diff 0
sed -i 's/garbage/soft/' out/drawn.script
expect 1 ": kind is garbage or holdout; got soft" key "${shot[@]}" --script out/drawn.script -o out/soft.%04d.exr

# A shot that is measured: by key or by analyse, and a frame alone is what it is among the others.
unmix=(--fg shot/fg.%04d.exr --frames 1-5 --set unmix_method=unmix "${pick[@]}")
expect 0 "the shot is measured on 5 frames of 1-5" key "${unmix[@]}" -o out/u.%04d.exr --save-script out/u.script
expect 0 "frame 5 of the shot" analyse "${unmix[@]}" -o out/measured.txt
cmp out/u.shot out/measured.txt || fail "key and analyse measure differently"
expect 0 "out/u.shot: the shot is keyed by it" key --fg shot/fg.0003.exr --script out/u.script -o out/u3.exr
expect 0 "" compare out/u3.exr out/u.0003.exr --max-diff 0
expect 0 "" key --fg shot/fg.0003.exr "${unmix[@]:4}" --shot out/measured.txt -o out/m3.exr
expect 0 "" compare out/m3.exr out/u.0003.exr --max-diff 0
expect 0 "" key --fg shot/fg.0003.exr "${unmix[@]:4}" -o out/alone.exr
expect 1 "" compare out/alone.exr out/u.0003.exr --max-diff 0
expect 0 "measured on 3 frames of 1-5" key --fg shot/fg.%04d.exr "${unmix[@]:4}" \
    --frames 2-3 -o out/t.%04d.exr --shot-frames 1-5x2
expect 1 "out/measured.txt: it was measured with another screen" key "${unmix[@]}" -o out/s.%04d.exr \
    --set unmix_encoding=sRGB --shot out/measured.txt
sed 's/^spill 0.*/spill none/' out/measured.txt >out/bad.txt
expect 1 "out/bad.txt: line 13: a finite number is expected" key "${unmix[@]}" -o out/s.%04d.exr --shot out/bad.txt

# What is set stays when the rest sets itself up, after a stroke that picks the screen.
expect 0 "veloxa: auto: merge stays at multiply, as set" key --fg shot/fg.0001.exr -o out/set.exr --auto \
    --set merge=multiply
expect 0 '"merge stays at multiply, as set"' tune --fg shot/fg.0001.exr --auto --set merge=multiply --json
expect 0 "" plate -o solid --size 160x120
printf 'Veloxa {\n darks 1\n}\n' >darks.script
expect 0 "brights stays at 100, as the script sets darks" tune --fg solid/fg.exr --auto --script darks.script
expect 0 "the stroke addoverlay is one of the colour difference" tune "${shot[@]}" --auto "${strokes[@]}"
head -1 out.txt | grep -q '^toolbar_screen' || fail "set up without a screen colour: $(head -1 out.txt)"

# By itself it unmixes, in the light that the file's values stand for; its script tells all of that.
expect 0 "" key --fg solid/fg.exr -o out/plate.jpg --set screen_color=0,0,0
by_itself=(--fg out/plate.jpg --bg solid/bg.exr --depth float)
expect 0 "unmix_encoding sRGB: out/plate.jpg is uint8" key "${by_itself[@]}" -o out/by.exr --auto --save-script out/by.script
grep -q 'unmix_method unmix' out/by.script || fail "no method in $(cat out/by.script)"
expect 0 "" key "${by_itself[@]}" -o out/by_script.exr --script out/by.script
expect 0 "" compare out/by.exr out/by_script.exr --max-diff 0
expect 0 "toolbar_addoverlay: it counts once the method is colour difference" key "${by_itself[@]}" -o out/by2.exr \
    --script out/by.script --stroke addoverlay=0,0,9,9
expect 0 "unmix_encoding stays at logarithmic, as set" key "${by_itself[@]}" -o out/by_log.exr --auto \
    --set unmix_encoding=logarithmic
expect 0 "" tune --fg out/plate.jpg --auto --set merge=multiply --json
grep -q unmix_encoding out.txt && fail "an encoding without unmixing: $(cat out.txt)"

# A clean plate, near the true one.
expect 0 "truly seen" cleanplate --fg shot/fg.%04d.exr --frames 1-5 -o out/clean.exr
expect 0 "" compare out/clean.exr shot/cp.0001.exr --channel R --max-diff 0.1

# The controls: of a new node, and of one with knobs.
expect 0 "" controls
lines "$data/fresh_listing.txt" | cmp -s out.txt - || fail "the listing of a new node"
expect 0 "" controls --trace -o out/trace.txt
lines "$data/fresh_trace.txt" | cmp -s out/trace.txt - || fail "the trace of a new node"
expect 0 "setMatteDensity 120" controls --trace --script out/a.script
expect 0 "" controls --set darks=7 -o out/trace.txt --overwrite
grep -q -P '^-7\tMatte Density Darks $' out/trace.txt || fail "no darks in the listing"

# Another size.
expect 0 "" plate -o small --size 32x24
expect 1 "small/bg.exr: is 32x24, but the foreground is 64x48" key --fg shot/fg.0001.exr --bg small/bg.exr -o out/d.exr
for fit in resize crop none; do
    expect 0 "" key --fg shot/fg.0001.exr --bg small/bg.exr -o out/$fit.exr --fit $fit "${pick[@]}"
done

expect 1 "small/bg.exr: is 32x24, but shot/alpha_true.0001.exr is 64x48" score shot/alpha_true.0001.exr \
    shot/alpha_true.0001.exr --composite small/bg.exr --composite-truth shot/bg.0001.exr

# Scores: nothing is wrong with the truth itself; a sequence has more lines.
true=(score shot/alpha_true.%04d.exr shot/alpha_true.%04d.exr --regions shot/regions.%04d.exr --frames 1-3)
expect 0 "3 frames: dtSSD 0.000000" "${true[@]}" --exclude shot/gm.%04d.exr
[ "$(grep -cE '^(all|mixed|backing|core|edge|hair|veil) .* 0\.0000 +0 +0\.0000 +0\.0000$' out.txt)" -eq 7 ] ||
    fail "the truth's scores: $(cat out.txt)"
expect 0 '"psnr": null' score shot/gm.0001.exr shot/gm.0001.exr --composite shot/bg.0001.exr \
    --composite-truth shot/bg.0002.exr --json
expect 0 "3 frames: dtSSD 0.0" score shot/alpha_true.%04d.exr shot/alpha_true.0001.exr --frames 1-3
grep -qE '^mixed +[0-9]+ +0\.0000' out.txt && fail "frames that differ score as if they did not"

# A sequence with a broken frame, mended and resumed.
cp shot/fg.0003.exr whole.exr
truncate -s 1000 shot/fg.0003.exr
mkdir seq
sequence=(--fg shot/fg.%04d.exr --cp shot/cp.0001.exr --bg shot/bg.####.exr -o seq/f.####.exr --frames 1-5)
expect 1 "shot/fg.0003.exr: " key "${sequence[@]}" "${pick[@]}"
expect_files seq "f.0001.exr f.0002.exr f.0004.exr f.0005.exr "
expect 1 "shot/fg.0004.exr: green screen" key --fg shot/fg.%04d.exr -o out/late.%04d.exr --frames 3-4
expect 1 "frames       4" cleanplate --fg shot/fg.%04d.exr -o out/late.exr --frames 1-5
cp whole.exr shot/fg.0003.exr
truncate -s -10 seq/f.0005.exr
touch -d '2001-01-01' seq/*.exr
expect 0 "" key "${sequence[@]}" "${pick[@]}" --resume
expect_files seq "f.0001.exr f.0002.exr f.0003.exr f.0004.exr f.0005.exr "
[ "$(find seq -newermt 2002-01-01 | grep -c exr)" -eq 2 ] || fail "--resume rendered more than frames 3 and 5"
expect 0 "" key --fg shot/fg.0005.exr --cp shot/cp.0001.exr --bg shot/bg.0005.exr -o out/still.exr "${pick[@]}"
expect 0 "" compare out/still.exr seq/f.0005.exr --max-diff 0

# What is not as a user may think is told once an input or sequence, in spite of --quiet; no library prints.
oiiotool -i shot/fg.0001.exr --ch R,G,B,A=1 -d uint8 -o opaque.png
oiiotool --create 64x48 1 -d uint8 -o grey.png
oiiotool -i shot/fg.0001.exr --attrib oiio:subimagename left shot/fg.0002.exr --attrib oiio:subimagename right \
    --siappend -o parts.exr
oiiotool --pattern constant:color=0.1,0.6,0.2 64x48 3 --attrib:type='uint8[4]' ICCProfile 1,2,3,4 -d uint8 -o odd.tif
oiiotool --pattern constant:color=0.1,0.6,0.2 64x48 3 --attrib ImageDescription "$(head -c 80000 /dev/zero | tr '\0' x)" -d uint8 -o long.tif
while IFS='|' read -r told arguments; do
    # shellcheck disable=SC2086
    OPENIMAGEIO_DEBUG=1 expect 0 "$told" key $arguments --overwrite --quiet "${pick[@]}"
    [ "$(wc -l <err.txt)" -eq "$([ -n "$told" ]; echo $((1 - $?)))" ] || fail "$arguments: $(cat err.txt)"
done <<'TABLE'
opaque.png: warning: its alpha, channel A, is 1 everywhere, so the holdout matte holds|--fg shot/fg.%04d.exr --hm opaque.png -o out/w.%d.exr --frames 1-3
opaque.png: warning: its alpha, channel A, is 1 everywhere, so the garbage matte drops|--fg shot/fg.0001.exr --gm opaque.png -o out/w.exr
|--fg shot/fg.0001.exr --hm grey.png -o out/w.exr
|--fg shot/fg.0001.exr --bg opaque.png -o out/w.exr
parts.exr: warning: R, G, B of part left alone is read; it has parts left, right: choose with parts.exr#part=right|--fg shot/fg.%04d.exr --cp parts.exr -o out/w.%d.exr --frames 1-3
|--fg odd.tif -o out/w.exr
out/w.1.jpg: warning: metadata of the foreground is left out|--fg long.tif --bg shot/bg.%04d.exr -o out/w.%d.jpg --frames 1-3
TABLE
expect 0 "parts.exr: warning: R, G, B of part left" compare parts.exr shot/fg.0001.exr
"$veloxa" compare parts.exr parts.exr >/dev/full 2>err.txt && fail "compare into a full disk: $(cat err.txt)"
expect 0 "" key --fg shot/fg.0001.exr -o damaged.dpx --set screen_color=0,0,0
printf '\321\321\321\321' | dd of=damaged.dpx bs=1 seek=32 conv=notrunc status=none
expect 1 "damaged.dpx: has a damaged header" key --fg damaged.dpx -o out/w.exr --overwrite
expect 0 "" key --fg shot/fg.0001.exr -o damaged.png --set screen_color=0,0,0
printf x | dd of=damaged.png bs=1 seek=$(($(stat -c %s damaged.png) / 2)) conv=notrunc status=none
expect 1 "damaged.png: " key --fg damaged.png -o out/w.exr --overwrite
[ "$(wc -l <err.txt)" -eq 1 ] || fail "not one line: $(cat err.txt)"

# A limit on the size of files.
mkdir full
(trap '' XFSZ; ulimit -f 4; "$veloxa" key "${inputs[@]}" -o full/a.exr "${pick[@]}" --depth float 2>err.txt)
[ $? -eq 1 ] && grep -q 'full/a.exr: File too large' err.txt || fail "file size limit: $(cat err.txt)"
expect_files full ""

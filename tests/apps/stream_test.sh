#!/bin/bash
# Frames through pipes, from ffmpeg and to it, as a user sends them.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

in=in.nut out=out.nut limit=60 # frames go in and out

# nut FORMAT [OPTION...]: a stream of the three frames in this pixel format.
nut() {
    ffmpeg -nostdin -v error -r 24000/1001 -i fg.%d.png "${@:2}" -f nut -c:v rawvideo -pix_fmt "$1" -
}
# What ffmpeg makes of a stream's frames: times and sums of bytes in a format.
sums() { ffmpeg -nostdin -v error -i "$1" -pix_fmt "${2-rgba64le}" -c:v rawvideo -f framehash -hash md5 - | sed 's/ //g'; }
pixels() { sums "$@" | grep ^0, | cut -d, -f6; }

pass=(--set screen_color=0,0,0)
"$veloxa" plate -o shot --size 64x48 --frames 1-3 2>err.txt || fail plate
for n in 1 2 3; do
    "$veloxa" key --fg shot/fg.000$n.exr "${pass[@]}" -o fg.$n.png --depth uint16 2>err.txt || fail "fg.$n.png"
done

# Formats that ffmpeg turns into each other exactly pass through with their bits, frames, times, rate and aspect. NUT
# has no name for floats.
while read -r format depth back; do
    nut "$format" -vf setsar=4/3 >in.nut 2>err.txt || fail "ffmpeg $format"
    expect 0 "" key --fg - "${pass[@]}" --depth "$depth" -o -
    cmp <(sums in.nut "$back") <(sums out.nut "$back") 2>err.txt || fail "$format comes out otherwise"
    [ "$(sums out.nut | grep -c ^0,)" = 3 ] || fail "$format: not three frames"
    ffprobe -v error -show_entries stream=r_frame_rate,sample_aspect_ratio -of csv=p=0 out.nut >rate.txt
    grep -qx '4:3,24000/1001' rate.txt || fail "$format: $(cat rate.txt)"
done <<'TABLE'
rgb24 uint8 rgb24
rgba uint8 rgba
bgra uint8 rgba
abgr uint8 rgba
bgr0 uint8 rgb24
gbrp uint8 rgb24
gbrap uint8 rgba
ya8 uint8 rgba
rgb48be uint16 rgb48le
rgba64le uint16 rgba64le
gbrp16le uint16 rgb48le
gbrap16le uint16 rgba64le
TABLE
nut gbrp10le >in.nut
expect 0 "" key --fg - "${pass[@]}" -o -
cmp <(sums in.nut gbrp10le) <(sums out.nut gbrp10le) || fail "gbrp10le comes out otherwise"
while IFS='|' read -r format text; do
    nut "$format" >in.nut 2>err.txt
    expect 1 "standard input: $text" key --fg - "${pass[@]}" -o -
done <<'TABLE'
yuv420p|the stream's pixels are yuv420p, which is no RGB; add -pix_fmt rgb48le
yuva444p10le|the stream's pixels are yuva444p10le, which is no RGB; add -pix_fmt rgba64le
gbrpf32le|frame 1: is no rgb555le, as the stream says; add -pix_fmt rgb48le
TABLE

# Really keyed: a pipe in and out, files in, files out, the stream as a background or a matte.
nut rgba64le -metadata:s:v timecode=01:00:00:00 >in.nut
key=(--pick 0,40,8,48 --bg shot/bg.0001.exr --set cleanup=1)
"$veloxa" key --fg fg.#.png --frames 1-3 "${key[@]}" -o cut=file.#.png 2>err.txt || fail "files"
expect 0 "" key --fg - "${key[@]}" -o cut=- -o matte=m.#.png
ffmpeg -nostdin -v error -i file.%d.png -f nut -c:v rawvideo -pix_fmt rgba64le files.nut
cmp <(pixels files.nut) <(pixels out.nut) || fail "the stream is keyed otherwise"
ffprobe -v error -show_entries stream_tags=timecode -of csv=p=0 out.nut | grep -q 01:00:00:00 || fail "no timecode"
expect 0 "" key --fg - "${key[@]}" --frames 7-8 -o part.#.exr
[ "$(echo part.*)" = "part.7.exr part.8.exr" ] || fail "frames are numbered otherwise: $(echo part.*)"
"$veloxa" key --fg fg.2.png "${key[@]}" -o two.exr 2>err.txt
"$veloxa" compare part.8.exr two.exr --max-diff 0 >/dev/null || fail "part.8.exr is another frame"
expect 0 "" key --fg shot/fg.%04d.exr --frames 1-3 "${key[@]}" -o -
[ "$(ffprobe -v error -count_frames -show_entries stream=r_frame_rate,nb_read_frames -of csv=p=0 out.nut)" = 24/1,3 ] ||
    fail "files make another stream"
expect 0 "" key --fg - --bg shot/bg.0001.exr --auto -o auto.#.png --set "unmix_method=unmix"
grep -q "standard input is read once, so the shot is not measured" err.txt || fail "not told of the shot"
nut gray16le >in.nut
for input in gm bg; do
    expect 0 "" key --fg shot/fg.%04d.exr "--$input" - --pick 0,40,8,48 --frames 1-3 -o $input.#.png
    "$veloxa" key --fg shot/fg.0002.exr "--$input" fg.2.png --pick 0,40,8,48 -o one.png --overwrite 2>err.txt
done
ffmpeg -nostdin -v error -y -i fg.2.png -pix_fmt gray16 gray.png
"$veloxa" key --fg shot/fg.0002.exr --bg gray.png --pick 0,40,8,48 -o gray_bg.png 2>err.txt
"$veloxa" compare bg.2.png gray_bg.png --max-diff 0 >/dev/null || fail "the stream as --bg is another"

# What goes wrong is told, with the frames before it done, and nothing hangs.
nut rgba64le >whole.nut
head -c $(($(stat -c %s whole.nut) * 8 / 10)) whole.nut >in.nut
expect 1 "standard input: frame 3: is cut off" key --fg - "${pass[@]}" -o -
cmp <(sums whole.nut | grep ^0 | head -2) <(sums out.nut | grep ^0) || fail "the frames before the cut"
head -c 100000 /dev/urandom >in.nut
expect 1 "standard input: is no NUT stream" key --fg - "${pass[@]}" -o -
cp whole.nut in.nut
expect 1 "standard input: ends after 3 frames" key --fg - "${pass[@]}" --frames 1-5 -o -
expect 1 "cannot hold half samples" key --fg - "${pass[@]}" -o - --depth half
expect_rows <<'TABLE'
2|--bg -: standard input is --fg already|key --fg - --bg - -o -
2|of its first frame|key --fg - --frames 1-3 --stroke screen@2=0,40,8,48 -o -
2|--resume|key --fg - -o a.#.exr --resume
2|--resume|key --fg shot/fg.0001.exr -o - --resume
2|--shot-frames|key --fg - --shot-frames 1-3 -o -
2|analyse|analyse --fg - -o a.shot
2|is given twice|key --fg - -o - -o matte=-
TABLE
expect 0 "screen_color" tune --fg - --stroke screen=0,40,8,48
for n in $(seq 40); do cat fg.1.png; done >many.png
(
    set -o pipefail
    ffmpeg -nostdin -v error -f image2pipe -c:v png -i many.png -f nut -c:v rawvideo -pix_fmt rgba64le - 2>/dev/null |
        { timeout 60 "$veloxa" key --fg - "${pass[@]}" -o - 2>err.txt; echo $? >status.txt; } | head -c 100 >/dev/null
)
[ "$(cat status.txt)" = 1 ] || fail "status $(cat status.txt) where nobody reads"
grep -q "standard output: nobody reads it any more" err.txt || fail "nobody reads, and nobody says so"

# Movies as files: the commands that are told work as they are.
nut rgb48le | ffmpeg -v error -f nut -i - -c:v ffv1 "a movie's.mkv"
expect 1 "is a movie; give its frames: ffmpeg" key --fg "a movie's.mkv" -o a.png
command=$(sed -n 's/.*give its frames: \(.*\) | veloxa.*/\1/p' err.txt)
eval "$command" >in.nut
expect 0 "" key --fg - "${pass[@]}" -o -
[ "$(pixels out.nut | wc -l)" = 3 ] && cmp <(pixels in.nut rgb48le) <(pixels out.nut rgb48le) || fail "the movie's frames"
expect 1 "veloxa key --bg - ..." key --fg fg.1.png --bg "a movie's.mkv" "${pass[@]}" -o a.png
expect 1 "'out put.mov'" key --fg fg.1.png "${pass[@]}" -o "out put.mov"
grep -qF -- "-o - | ffmpeg -v error -f nut -i - 'out put.mov'" err.txt || fail "no command for a movie"
ffmpeg -v error -i fg.%d.png moving.gif
expect 0 "" key --fg moving.gif "${pass[@]}" -o gif.png

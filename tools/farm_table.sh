#!/usr/bin/env bash
# What cutting a key into chunks costs: the table of docs/farm.md. WORKERS processes of one thread run side by side;
# nothing else should run meanwhile.
#
#   tools/farm_table.sh [WORKERS] [SIZE]
set -euo pipefail
cd "$(dirname "$0")/.."
workers=${1-$(nproc)}
size=${2-320x180}
veloxa=$PWD/build/bin/veloxa
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$veloxa" plate -o p --size "$size" --frames 1-24 2>/dev/null
# 240 frames out of 24: keying costs the same for each.
mkdir fg
for n in {1..240}; do ln "p/fg.$(printf %04d $(((n - 1) % 24 + 1))).exr" "fg/$n.exr"; done

# run FRAMES CHUNKS OPTIONS... : sets wall and cpu, in seconds.
run() {
    local count=$1 chunks=$2 times
    shift 2
    rm -rf out
    mkdir out
    "$veloxa" farm make --fg fg/%d.exr --frames "1-$count" --chunks "$chunks" --threads 1 --quiet --screen green \
        -o out/%d.exr "$@" >job.mk 2>/dev/null
    times=$({ TIMEFORMAT='%R %U %S' && time make -s "-j$workers" -f job.mk; } 2>&1 | tail -n 1)
    read -r wall cpu < <(awk '{ print $1, $2 + $3 }' <<<"$times")
}

run 24 24
run 240 1
one=$cpu
run 240 240
read -r start frame < <(awk -v one="$one" -v all="$cpu" 'BEGIN { s = (all - one) / 239; print s, (one - s) / 240 }')
printf '%s, %d processes of one thread: s = %.3f s, f = %.4f s\n\n' "$size" "$workers" "$start" "$frame"
echo '| Frames | Chunks | Time | Reckoned | Processor time | of it starting |'
echo '|---:|---:|---:|---:|---:|---:|'
for row in '1: 1' '4: 1 2 4' '12: 1 2 3 4 6 12' '48: 1 2 4 6 8 12 16 24 48' '240: 1 2 4 6 8 12 16 24 48 120 240'; do
    for chunks in ${row#*:}; do
        run "${row%:*}" "$chunks"
        awk -v n="${row%:*}" -v c="$chunks" -v w="$workers" -v s="$start" -v f="$frame" -v wall="$wall" -v cpu="$cpu" '
            BEGIN { rounds = int((c + w - 1) / w)
                    printf "| %d | %d | %.2f s | %.2f s | %.2f s | %.0f %% |\n", n, c, wall,
                           rounds * (s + n / c * f), cpu, 100 * c * s / (c * s + n * f) }'
    done
done
# One process alone, with all processors: while a frame is keyed the next is read and the last written, but for the
# first and the last of a chunk.
alone() {
    local times
    rm -rf out
    mkdir out
    times=$({ TIMEFORMAT='%R %U %S' &&
        time "$veloxa" key --fg "$1" --frames "1-$2" --quiet --screen green -o out/%d.exr 2>/dev/null; } 2>&1 | tail -n 1)
    read -r wall cpu < <(awk '{ print $1, $2 + $3 }' <<<"$times")
}
large=960x540
"$veloxa" plate -o q --size "$large" --frames 1-8 2>/dev/null
"$veloxa" plate -o r --size 16x16 --frames 1-1 2>/dev/null
mkdir large
for n in {1..240}; do ln "q/fg.$(printf %04d $(((n - 1) % 8 + 1))).exr" "large/$n.exr"; done
alone large/%d.exr 12 # so that files are in memory
alone r/fg.%04d.exr 1
start=$wall
alone large/%d.exr 48
some=$wall
alone large/%d.exr 240
frame=$(awk -v some="$some" -v all="$wall" 'BEGIN { print (all - some) / 192 }')
printf '\n%s, one process: s = %.2f s, f = %.3f s\n\n' "$large" "$start" "$frame"
echo '| Frames of a chunk | Time | Processor time | of it starting | Overlap lost | Time of a frame |'
echo '|---:|---:|---:|---:|---:|---:|'
for count in 1 2 4 12 48 240; do
    alone large/%d.exr $count
    awk -v n=$count -v wall="$wall" -v cpu="$cpu" -v s="$start" -v f="$frame" 'BEGIN {
        printf "| %d | %.2f s | %.2f s | %.2f s | %.2f s | %.3f s |\n", n, wall, cpu, s, wall - s - n * f, wall / n }'
done

# Chunks that measure the shot each by itself, and those that are given it.
"$veloxa" analyse --fg fg/%d.exr --frames 1-48 --screen green --set unmix_method=unmix -o job.shot --quiet
run 48 8 --set unmix_method=unmix
printf '\nunmix, 48 frames in 8 chunks: each measures the shot: %.1f s, %.1f s of processor time; ' "$wall" "$cpu"
run 48 8 --set unmix_method=unmix --shot "$folder/job.shot"
printf -- '--shot: %.1f s, %.1f s\n' "$wall" "$cpu"

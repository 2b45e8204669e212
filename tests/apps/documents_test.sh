#!/bin/bash
# Runs the documents' commands as they stand: those of one document in a folder of its own, one after the other, up
# to the first that fails. Blocks without a command of the program (how to build it, what it prints) are passed
# over, as are those that open a window; of a block with prompts only what follows them runs.
root=$(realpath "$(dirname "$0")/../..")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
PATH=$(dirname "$veloxa"):$PATH

commands_of() {
    awk '/^```/ {
             if (inside && block ~ /(^|\n)(\$ )?veloxa [a-z]/ && block !~ /veloxa view /) printf "%s", prompted != "" ? prompted : block
             inside = !inside; block = prompted = ""
             next
         }
         inside {
             block = block $0 "\n"
             if (sub(/^\$ /, "")) prompted = prompted $0 "\n"
         }' "$1"
}

ran=0
for document in "$root"/README.md "$root"/docs/*.md; do
    commands=$(commands_of "$document")
    [ -n "$commands" ] || continue
    ran=$((ran + $(grep -c '^veloxa ' <<<"$commands")))
    mkdir "$folder/run"
    cd "$folder/run" || exit 1
    # Photographs and what a session with one leaves, which are not in the repository.
    for photograph in plate.png green_glasses_hoodie_1040x702.png background.png; do
        grep -qF "$photograph" <<<"$commands" || continue
        [ -d drawn ] || expect 0 "" plate -o drawn --size 1080x1920
        oiiotool drawn/fg.exr --powc 0.45 -d uint8 -o "$photograph" || fail "no $photograph"
    done
    echo 'Veloxa {}' >walk.veloxa
    bash -e -o pipefail -c "trap 'echo \"\$BASH_COMMAND\"' ERR; $commands" >told.txt 2>&1 ||
        fail "$document: $(tail -n 3 told.txt)"
    cd "$folder" && rm -rf run
done
# Else the documents changed their form, and nothing is tested.
[ $ran -ge 20 ] || fail "only $ran commands in the documents"

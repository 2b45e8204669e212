#!/usr/bin/env bash
# House rules that a machine can check, over the files that git knows. Prints what breaks one.
set -euo pipefail
cd "$(dirname "$0")/.."

broken=0

# forbid WHY PATTERN PATHS... : no line of the paths may match the pattern.
forbid() {
    local why=$1 pattern=$2 found
    shift 2
    if found=$(git grep -nIE "$pattern" -- "$@"); then
        printf '%s:\n%s\n' "$why" "$found"
        broken=1
    fi
}

# The brackets keep these patterns from matching their own lines.
code=('*.cpp' '*.h' '*.sh' '*.cmake' '*CMakeLists.txt' Makefile .ci)
forbid 'Left open in the code' 'TO[D]O|FIX[M]E|\bXX[X]\b' "${code[@]}"
forbid 'A test that does not run' 'GTEST_[S]KIP|\bDISABLE[D]_' 'tests/*'
forbid "A path of somebody's machine" '(^|[^A-Za-z0-9_.])/([h]ome|[r]oot|[w]ork|[U]sers)/' .

long=$(git ls-files -z -- '*.cpp' '*.h' | xargs -0 -r wc -l | awk '$2 != "total" && $1 > 400 { print $2 ": " $1 }')
if [ -n "$long" ]; then
    printf 'Files over 400 lines:\n%s\n' "$long"
    broken=1
fi

[ "$broken" -ne 0 ] || echo 'House rules hold.'
exit "$broken"

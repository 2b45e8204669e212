#!/usr/bin/env bash
# Runs the tests of a preset that is built and closes with the plain line "N passed, N failed".
# Further arguments go to ctest: tools/run_tests.sh release -L stages
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# The thread sanitizer of GCC 12 cannot place its memory where the kernel randomises addresses widely.
fixed=()
if [ "$preset" = tsan ] && setarch "$(uname -m)" -R true 2>/dev/null; then
    fixed=(setarch "$(uname -m)" -R)
fi

status=0
"${fixed[@]}" ctest --preset "$preset" "$@" </dev/null 2>&1 | tee "$log" || status=$?
# Forms of the kernels that this processor cannot run were not tested; the emulated one stands for wide packs.
forms=$(sed -nE 's|.*Forms\.GiveTheBitsOfTheScalarOne/([a-z0-9]+) .*Passed.*|\1|p' "$log" | xargs)
[ -z "$forms" ] || echo "Kernels' forms equal to the scalar one: $forms"
# ctest closes with "99% tests passed, 1 tests failed out of 100".
sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log" |
    { read -r failed all && echo "$((all - failed)) passed, $failed failed"; } || status=1
exit "$status"

#!/usr/bin/env bash
# Lints the sources with clang-tidy. Arguments are the files to look at; without any, all of them.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files -- 'zoimage/*.cpp' 'src/*.cpp' 'shot/*.cpp' 'plates/*.cpp' 'apps/*.cpp' 'ofx/*.cpp')
    set -- "${files[@]}"
fi
printf '%s\0' "$@" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build --quiet

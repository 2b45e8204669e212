#!/usr/bin/env bash
# Lints the sources with clang-tidy. Arguments are the files to look at; without any, all of them. With --changed
# those that the latest commit changed.
set -euo pipefail
cd "$(dirname "$0")/.."

# Not the kernels' loops, which are written in vectors and macros of the compiler that they are built with.
sources=(':!src/*Lanes.cpp' 'zoimage/*.cpp' 'src/*.cpp' 'shot/*.cpp' 'plates/*.cpp' 'apps/*.cpp' 'ofx/*.cpp')
files=("$@")
if [ "${1:-}" = --changed ]; then
    base=$(git rev-parse -q --verify HEAD~1 || true)
    [ -n "$base" ] || exit 0
    mapfile -t files < <(git diff --name-only --diff-filter=d "$base" -- "${sources[@]}")
    [ ${#files[@]} -gt 0 ] || exit 0
elif [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files -- "${sources[@]}")
fi
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build --quiet

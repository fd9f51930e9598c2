#!/usr/bin/env bash
# Checks that all C++ files have the project's format. With --fix, gives it to
# them.
set -euo pipefail
cd "$(dirname "$0")/.."

list=$(git ls-files '*.h' '*.cpp')
[ -n "$list" ] || { echo "There are no files to check" >&2; exit 1; }
mapfile -t files <<< "$list"
if [ "${1:-}" = --fix ]; then
    clang-format-14 -i "${files[@]}"
else
    clang-format-14 --dry-run -Werror "${files[@]}"
fi

#!/usr/bin/env bash
# Runs clang-tidy over the sources of the program (not the tests), with the
# compile commands of build/dev. What was clean before, and has not changed in
# any included file, is not looked at again.
set -euo pipefail
cd "$(dirname "$0")/.."

cache=${XDG_CACHE_HOME:-$HOME/.cache}/brisora/tidy
mkdir -p "$cache"
salt=$(cat .clang-tidy tools/check-tidy.sh; clang-tidy-14 --version)
export cache salt

check_file() {
    local file=$1 key command
    command=$(python3 - "$file" <<'PYTHON'
import json, os, re, sys
for entry in json.load(open("build/dev/compile_commands.json")):
    if os.path.realpath(entry["file"]) == os.path.realpath(sys.argv[1]):
        command = re.sub(r"^\S*ccache\s+", "", entry["command"])
        command = re.sub(r"^\S+", "clang++-14", command)
        command = re.sub(r" -o \S+", "", command).replace(" -c ", " -E -w ")
        print(command)
        break
PYTHON
    )
    [ -n "$command" ] || { echo "There is no compile command for $file" >&2; return 1; }
    key=$( (echo "$salt"; cd build/dev && eval "$command" 2> /dev/null | sed "s#$PWD#.#g") | sha256sum | cut -d' ' -f1)
    [ -e "$cache/$key" ] && return 0
    if clang-tidy-14 --quiet -p build/dev "$file" 2> /dev/null; then
        touch "$cache/$key"
    else
        echo "clang-tidy has found something in $file" >&2
        return 1
    fi
}
export -f check_file

files=$(git ls-files 'app/*.cpp' 'core/*.cpp' 'macsim/*.cpp' 'inpout32/*.cpp')
[ -n "$files" ] || { echo "There are no files to check" >&2; exit 1; }
grep -v '_windows\.cpp$' <<< "$files" |
    xargs -P "$(nproc)" -I{} bash -c 'check_file {}'

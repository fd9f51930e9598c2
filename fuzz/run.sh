#!/bin/sh
# Runs every fuzz target that the preset "fuzz" has built, for some seconds each:
#
#   fuzz/run.sh [SECONDS [TARGET...]]
#
# SECONDS is 20 by default; a TARGET is a name such as "markup". The corpora in the
# repository are read, not changed. On a finding the input that led to it stays in
# build/fuzz/findings, and the script fails.
set -eu

project=$(cd "$(dirname "$0")/.." && pwd)
programs=$project/build/fuzz/fuzz
findings=$project/build/fuzz/findings
seconds=${1:-20}
[ $# -eq 0 ] || shift

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM
mkdir -p "$findings"

targets=
for program in "$programs"/fuzz_*; do
    if [ -f "$program" ] && [ -x "$program" ]; then
        name=${program##*/fuzz_}
        if [ $# -eq 0 ]; then
            targets="$targets $name"
        else
            for wanted in "$@"; do
                [ "$wanted" != "$name" ] || targets="$targets $name"
            done
        fi
    fi
done
if [ -z "$targets" ]; then
    echo "No fuzz target to run in $programs" >&2
    exit 2
fi

failed=
for name in $targets; do
    mkdir "$work/$name"
    cp -R "$project/fuzz/corpus/$name" "$work/$name/corpus"
    mkdir "$work/$name/tmp"
    echo "fuzz_$name: $seconds s"
    if ! TMPDIR="$work/$name/tmp" "$programs/fuzz_$name" -max_total_time="$seconds" \
            -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
            -artifact_prefix="$findings/$name-" "$work/$name/corpus" \
            > "$work/$name/log" 2>&1; then
        failed="$failed $name"
        cat "$work/$name/log"
    else
        grep -E 'number_of_executed_units' "$work/$name/log" || true
    fi
done

if [ -n "$failed" ]; then
    echo "Findings in:$failed (inputs: $findings)" >&2
    exit 1
fi

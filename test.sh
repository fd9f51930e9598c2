#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test that this machine can
# run. The last line gives the totals.
#
#   ./test.sh [GROUP...]     groups: checks dev asan tsan fuzz (default: all)
set -uo pipefail
cd "$(dirname "$0")"

groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(checks dev asan tsan fuzz)
results=build/results
rm -rf "$results"
mkdir -p "$results"

passed=0
failed=0
skipped=0

# Takes a result that is not one of ctest's: NAME CODE.
count() {
    if [ "$2" -eq 0 ]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $1"
    fi
}

section() { printf '\n== %s (%s)\n' "$1" "$(date +%T)"; }

totals() {
    echo
    echo "$passed passed, $failed failed, $skipped skipped"
    [ "$failed" -eq 0 ]
}

# Runs the tests of one build and adds their totals: PRESET [CTEST OPTION...]
run_ctest() {
    local preset=$1
    shift
    ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j2 \
        --output-junit "$PWD/$results/$preset.xml" "$@"
    local code=$? numbers
    numbers=$(python3 - "$results/$preset.xml" << 'PYTHON'
import sys
import xml.etree.ElementTree as tree
try:
    suite = tree.parse(sys.argv[1]).getroot()
    total, failed = int(suite.get("tests")), int(suite.get("failures"))
    skipped = int(suite.get("skipped")) + int(suite.get("disabled"))
    for case in suite.iter("testcase"):
        if case.get("status") in ("notrun", "disabled"):
            print("SKIPPED:", case.get("name"), file=sys.stderr)
    print(total - failed - skipped, failed, skipped)
except (OSError, tree.ParseError, TypeError):
    print(0, 1, 0)
PYTHON
    )
    read -r p f s <<< "${numbers:-0 1 0}"
    # A run that failed as a whole counts, whatever its tests say.
    [ "$code" -eq 0 ] || [ "$f" -gt 0 ] || f=1
    passed=$((passed + p))
    failed=$((failed + f))
    skipped=$((skipped + s))
}

build() {
    tools/build.sh "$@"
    local code=$?
    count "build $1" $code
    return $code
}

run_checks() {
    section "Format"
    tools/check-format.sh
    count "format" $?
    section "Shell scripts"
    local code=0
    for script in $(git ls-files '*.sh') .ci/run; do
        bash -n "$script" || code=1
    done
    count "shell syntax" $code
    section "clang-tidy"
    build dev -DBRISORA_WERROR=ON --log-level=ERROR > "$results/dev-build.log" 2>&1 || { cat "$results/dev-build.log"; return; }
    tools/check-tidy.sh
    count "clang-tidy" $?
}

run_dev() {
    section "Development build"
    build dev -DBRISORA_WERROR=ON || return
    section "Tests"
    run_ctest dev
    section "Figures"
    QT_QPA_PLATFORM=offscreen build/dev/bench/brisora_figures
    count "figures" $?
}

run_asan() {
    section "AddressSanitizer and UndefinedBehaviorSanitizer"
    TARGET=unit_tests build asan -DBRISORA_WERROR=ON || return
    run_ctest asan -L unit
}

run_tsan() {
    section "ThreadSanitizer"
    TARGET=threads_tests build tsan -DBRISORA_WERROR=ON || return
    run_ctest tsan -L threads
}

run_fuzz() {
    section "Fuzz targets"
    build fuzz || return
    fuzz/run.sh "${FUZZ_SECONDS:-20}"
    count "fuzz" $?
}

for group in "${groups[@]}"; do
    case $group in
        checks | dev | asan | tsan | fuzz) ;;
        *) echo "Unknown group: $group" >&2; exit 2 ;;
    esac
done
tools/packages.sh build display checks fuzz vm || { count "packages" 1; totals; exit 1; }
for group in "${groups[@]}"; do
    "run_$group"
done
totals

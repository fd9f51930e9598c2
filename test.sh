#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test that this machine can
# run. The last line gives the totals.
#
#   ./test.sh [GROUP...]     groups: checks dev windows asan tsan fuzz (default: all)
set -uo pipefail
cd "$(dirname "$0")"

groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(checks dev windows asan tsan fuzz)
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
    run_ctest dev -LE wine
    section "Figures"
    QT_QPA_PLATFORM=offscreen build/dev/bench/brisora_figures
    count "figures" $?
}

# The number of a build's tests: PRESET [CTEST OPTION...]
count_tests() {
    local preset=$1
    shift
    ctest --test-dir "build/$preset" -N "$@" | sed -n 's/^Total Tests: //p'
}

# Starts a virtual display and sets DISPLAY to it.
start_display() {
    local number
    exec {display_pipe}< <(exec Xvfb -displayfd 1 -screen 0 1920x1200x24 -nolisten tcp 2> /dev/null)
    display_server=$!
    read -r -t 30 number <&"$display_pipe" && export DISPLAY=:$number
}

end_display() {
    kill "$display_server"
    exec {display_pipe}<&-
    unset DISPLAY
}

run_windows() {
    section "Windows program"
    # The whole road is simulated by what the development build makes.
    build windows -DBRISORA_WERROR=ON || return
    build dev -DBRISORA_WERROR=ON || return

    section "Under Wine"
    # The unit tests run in one prefix, each end-to-end test in a copy of the other.
    local unit_prefix=$PWD/build/wine/unit prefix=$PWD/build/wine/template count
    if ! tools/windows/wine.sh || ! tools/windows/wine.sh prefix "$unit_prefix" ||
        ! tools/windows/wine.sh prefix "$prefix"; then
        count=$(($(count_tests windows) + $(count_tests dev -L wine)))
        skipped=$((skipped + count))
        echo "SKIPPED: the $count tests of the wine group, because Wine can't be provided here"
        return
    fi
    export BRISORA_WINDOWS_SDK BRISORA_WINE_PREFIX=$unit_prefix
    BRISORA_WINDOWS_SDK=$(sed -n 's/^BRISORA_WINDOWS_SDK:PATH=//p' build/windows/CMakeCache.txt)
    # One server and one display for all programs; the end-to-end tests have their
    # own.
    start_display
    tools/windows/run-under-wine.sh --keep-server
    run_ctest windows
    tools/windows/run-under-wine.sh --end-server
    end_display
    BRISORA_WINE_PREFIX=$prefix run_ctest dev -L wine
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
        checks | dev | windows | asan | tsan | fuzz) ;;
        *) echo "Unknown group: $group" >&2; exit 2 ;;
    esac
done
tools/packages.sh build display dbus checks fuzz vm || { count "packages" 1; totals; exit 1; }
for group in "${groups[@]}"; do
    "run_$group"
done
totals

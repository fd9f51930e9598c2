#!/usr/bin/env bash
# Builds Brisora and starts it inside a simulated Mac, with a preset active whose
# fans follow a temperature, and with folders of its own: nobody's settings are
# touched.
#
#   ./run.sh [--machine M] [--load PROFILE] [--seconds N]
#
#   --machine M      a machine of macsim (default MacBookPro11,3); "list" lists them
#   --load PROFILE   idle, light, heavy, step, wave or ramp (default wave)
#   --seconds N      end after N seconds (default: when the window is closed for
#                    good, or at Ctrl+C)
#
# Without a display it uses a virtual one and leaves a screenshot in
# build/screenshots/.
set -euo pipefail
cd "$(dirname "$0")"

machine=MacBookPro11,3
load=wave
seconds=
usage() { sed -n '2,/^set /{/^set /d;s/^# \{0,1\}//;p}' "$0"; }
while [ $# -gt 0 ]; do
    case $1 in
        --machine | --load | --seconds)
            [ $# -ge 2 ] || { echo "$1 needs a value" >&2; exit 2; }
            declare "${1#--}=$2"
            shift 2
            ;;
        --help | -h)
            usage
            exit 0
            ;;
        *)
            echo "Unknown option: $1" >&2
            usage >&2
            exit 2
            ;;
    esac
done
case $seconds in
    *[!0-9]*) echo "--seconds needs a whole number" >&2; exit 2 ;;
esac
[ -z "$seconds" ] || seconds=$((10#$seconds))

if [ -n "${DISPLAY:-}" ]; then
    tools/packages.sh build
else
    tools/packages.sh build display
fi
echo "Building..."
mkdir -p build
TARGET=demonstration tools/build.sh release --log-level=ERROR > build/run-build.log 2>&1 || {
    cat build/run-build.log >&2
    exit 1
}
macsim=build/release/macsim/macsim
brisora=$PWD/build/release/app/brisora

if [ "$machine" = list ]; then
    exec "$macsim" machines
fi

folder=$(mktemp -d "${TMPDIR:-/tmp}/brisora-run.XXXXXX")
display_pid=
simulation_pid=
cleanup() {
    [ -z "$simulation_pid" ] || kill -TERM "$simulation_pid" 2> /dev/null || true
    [ -z "$simulation_pid" ] || wait "$simulation_pid" 2> /dev/null || true
    [ -z "$display_pid" ] || kill "$display_pid" 2> /dev/null || true
    rm -rf "$folder"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# The active preset: every fan follows the processor, from the minimum at 45 to
# the maximum at 80 degrees.
fans=$("$macsim" machines --fans "$machine") || exit 2
tools/demo-settings.sh "$fans" "$machine" "$folder"

if [ -z "${DISPLAY:-}" ]; then
    exec 5> "$folder/display"
    Xvfb -displayfd 5 -screen 0 1280x800x24 -nolisten tcp > "$folder/xvfb.log" 2>&1 &
    display_pid=$!
    for _ in $(seq 100); do
        [ -s "$folder/display" ] && break
        sleep 0.1
    done
    exec 5>&-
    [ -s "$folder/display" ] || { echo "The virtual display does not start:" >&2; cat "$folder/xvfb.log" >&2; exit 1; }
    DISPLAY=:$(cat "$folder/display")
    export DISPLAY
    echo "No display here: using the virtual display $DISPLAY."
fi

echo "Starting Brisora in a simulated $machine under the load \"$load\"."
echo "Change the machine from another terminal, for example:"
printf '  %q ctl --socket %q load heavy\n' "$PWD/$macsim" "$folder/macsim.sock"
"$macsim" run --machine "$machine" --load "$load" --folder "$folder" --trace "$folder/trace.log" --status -- "$brisora" &
simulation_pid=$!

take_screenshot() {
    local picture
    picture=build/screenshots/$(basename "$machine" .json).png
    mkdir -p build/screenshots
    if import -window root "$picture"; then
        printf '\nScreenshot: %s\n' "$picture"
    else
        echo "No screenshot could be taken" >&2
    fi
}

# The picture is taken once the speeds have settled a little.
if [ -n "$display_pid" ]; then
    wait_before=15
    [ -z "$seconds" ] || [ "$seconds" -ge 18 ] || wait_before=$((seconds > 4 ? seconds - 3 : 1))
    sleep "$wait_before" &
    sleeper=$!
    wait -n "$simulation_pid" "$sleeper" || true
    kill "$sleeper" 2> /dev/null || true
    kill -0 "$simulation_pid" 2> /dev/null && take_screenshot
    [ -z "$seconds" ] || seconds=$((seconds > wait_before ? seconds - wait_before : 1))
fi
if [ -n "$seconds" ]; then
    sleep "$seconds" &
    sleeper=$!
    wait -n "$simulation_pid" "$sleeper" || true
    kill "$sleeper" 2> /dev/null || true
    kill -TERM "$simulation_pid" 2> /dev/null || true
fi
code=0
wait "$simulation_pid" || code=$?
simulation_pid=
echo
echo "Brisora has ended with code $code. The controller's last writes:"
grep ' write ' "$folder/trace.log" | tail -n 3 || true
exit "$code"

#!/usr/bin/env bash
# Runs a program of the Windows build under Wine, with the libraries of the
# toolchain on its search path. CTest starts test programs through it.
#
#   tools/windows/run-under-wine.sh PROGRAM [ARGUMENT...]
#   tools/windows/run-under-wine.sh --keep-server    starts the prefix's server, which
#                                                    programs then share
#   tools/windows/run-under-wine.sh --end-server     ends it and all of its programs
#
# BRISORA_WINE_PREFIX    the Wine prefix (tools/windows/wine.sh makes one)
# BRISORA_WINDOWS_SDK    the folder of the Windows libraries
set -euo pipefail

: "${BRISORA_WINE_PREFIX:?names no Wine prefix}" "${BRISORA_WINDOWS_SDK:?names no folder}"

# A path as a Windows program sees it: the whole file system is the drive Z:.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

export WINEARCH=win32 WINEPREFIX=$BRISORA_WINE_PREFIX WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="winemenubuilder.exe=d;mscoree=d;mshtml=d"

case $1 in
    --keep-server)
        wineserver -p60 # seconds without a program
        exec wine cmd /c exit < /dev/null > /dev/null 2>&1
        ;;
    --end-server)
        wineserver -k || true
        exec wineserver -w
        ;;
esac

search=$(windows_path "$BRISORA_WINDOWS_SDK/bin")
for library in libstdc++-6.dll libwinpthread-1.dll; do
    folder=$(dirname "$(i686-w64-mingw32-g++-posix -print-file-name=$library)")
    search+=";$(windows_path "$(realpath "$folder")")"
done
export WINEPATH="$search${WINEPATH:+;$WINEPATH}"
# Wine keeps variables of these kinds from programs unless WINE stands before the
# name. Qt Test writes to the debugger unless it is told to use the output.
export WINEQT_FORCE_STDERR_LOGGING=1 WINEQT_QPA_PLATFORM=${QT_QPA_PLATFORM:-}
WINEQT_QPA_FONTDIR=$(windows_path /usr/share/fonts/truetype/dejavu)
export WINEQT_QPA_FONTDIR
exec wine "$@"

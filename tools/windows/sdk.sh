#!/usr/bin/env bash
# Provides the compiler and the libraries for 32-bit Windows. The only line on
# standard output is the libraries' folder, for BRISORA_WINDOWS_SDK.
#
#   tools/windows/sdk.sh
#
# WINDOWS_SDK in the environment names an archive of the libraries (tar.xz, with
# one folder windows-sdk/). Without it they are built from the distribution's
# source packages, which takes 20 to 40 minutes on two processors.
#
# Either is done once: the result stays in ${XDG_CACHE_HOME:-~/.cache}/brisora,
# which may be deleted at any time.
set -euo pipefail
archive=${WINDOWS_SDK:+$(realpath -m -- "$WINDOWS_SDK")}
cd "$(dirname "$0")/../.."

# Only the result goes to standard output.
exec 3>&1 1>&2

fail() {
    echo "$1"
    exit 1
}

# Prints SOURCE=VERSION of the source packages that this machine would install
# these packages of.
source_versions() {
    local policy source
    policy=$(LC_ALL=C apt-cache policy qtbase5-dev libtinyxml2-dev liblzma-dev libbz2-dev)
    for source in qtbase5-dev/qtbase-opensource-src libtinyxml2-dev/tinyxml2 liblzma-dev/xz-utils libbz2-dev/bzip2; do
        sed -nE "/^${source%/*}:\$/,/Candidate:/{s/^ *Candidate: /${source#*/}=/; T; s/\+b[0-9]+\$//; p}" <<< "$policy"
    done
}

# Prints PACKAGE=VERSION of the headers that copy_headers takes from this machine.
header_versions() {
    dpkg-query -W -f='${Package}=${Version}\n' libspdlog-dev libfmt-dev
}

from_archive() {
    echo "Unpacking the Windows libraries..."
    tar -xJf "$archive" -C "$1" --strip-components=1 windows-sdk ||
        fail "WINDOWS_SDK names no archive of the Windows libraries: $archive"
}

from_sources() {
    tools/packages.sh windows-sdk
    echo "Building the Windows libraries, once, into $1"
    echo "This takes 20 to 40 minutes; it can be followed in $1.log"
    work=$1.work
    mkdir "$work"
    if ! WORK=$work tools/windows/build-libraries.sh "$1" "${sources[@]}" > "$1.log" 2>&1; then
        tail -n 40 "$1.log"
        fail "The Windows libraries could not be built. The whole log: $1.log"
    fi
}

# The headers of these two serve every system.
copy_headers() {
    mkdir -p "$1/include-header-only"
    cp -R /usr/include/spdlog /usr/include/fmt "$1/include-header-only"
}

check() {
    local file missing=()
    for file in include/{QtCore,QtGui,QtWidgets,QtNetwork,QtTest} include/{tinyxml2,bzlib,lzma}.h \
        include-header-only/{spdlog/spdlog,fmt/format}.h bin/{moc,rcc,uic} \
        lib/cmake/Qt5{,Core,Gui,Widgets,Network,Test} lib/cmake/tinyxml2 mkspecs/win32-g++ \
        lib/libQt5{Core,Gui,Widgets,Network,Test}.a lib/lib{qtmain,tinyxml2,bz2,lzma}.a \
        bin/Qt5{Core,Gui,Widgets,Network,Test}.dll plugins/platforms/q{windows,offscreen,minimal}.dll \
        plugins/styles/qwindowsvistastyle.dll plugins/imageformats/q{gif,ico,jpeg}.dll; do
        [ -e "$1/$file" ] || missing+=("$file")
    done
    [ ${#missing[@]} -eq 0 ] || fail "The Windows libraries are not complete. Missing: ${missing[*]}"
}

# Makes the folder unless it is complete: FOLDER FUNCTION. The stamp is written
# last, so that what was interrupted starts again.
provide() {
    local folder=$1 make=$2
    [ ! -e "$folder/complete" ] || return 0
    # Held by all that is started from here, until it has ended.
    exec 9> "$folder.lock"
    flock -n 9 || { echo "Waiting for another build of the Windows libraries..."; flock 9; }
    [ ! -e "$folder/complete" ] || return 0
    rm -rf "$folder" "$folder.work"
    mkdir "$folder"
    "$make" "$folder"
    copy_headers "$folder"
    check "$folder"
    touch "$folder/complete"
}

tools/packages.sh build windows

cache=${XDG_CACHE_HOME:-$HOME/.cache}/brisora
case $cache in
    *[[:space:]]*) fail "The Windows libraries can't lie in a folder with a space in its name: $cache" ;;
esac
mkdir -p "$cache"

headers=$(header_versions)
work=
trap '[ -z "$work" ] || rm -rf "$work"' EXIT
if [ -n "$archive" ]; then
    [ -f "$archive" ] || fail "WINDOWS_SDK names no file: $archive"
    key=$(cat - "$archive" <<< "$headers" | sha256sum)
    folder=$cache/windows-sdk-${key:0:12}
    provide "$folder" from_archive
else
    versions=$(source_versions)
    mapfile -t sources <<< "$versions"
    key=$(cat tools/windows/build-libraries.sh - <<< "${sources[*]} $headers" | sha256sum)
    qt=${sources[0]#*=}
    folder=$cache/windows-sdk-${qt%%+*}-${key:0:12}
    provide "$folder" from_sources
fi
echo "$folder" >&3

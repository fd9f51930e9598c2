#!/usr/bin/env bash
# Installs the distribution's packages that are missing, group by group.
#
#   tools/packages.sh GROUP...      groups: build, display, images, dbus, checks, fuzz, vm,
#                                           windows, windows-sdk
#
# Asks for root only when something is missing. Ends with 1, and says what is
# missing, when it can't be installed.
set -euo pipefail

declare -A groups=(
    [build]="g++ cmake python3 ninja-build ccache pkg-config qtbase5-dev qtbase5-dev-tools libspdlog-dev
             libfmt-dev libtinyxml2-dev zlib1g-dev libbz2-dev liblzma-dev libsm-dev libice-dev"
    [display]="xvfb xdotool imagemagick fonts-dejavu-core"
    [images]="librsvg2-bin imagemagick optipng fonts-dejavu-core"
    [dbus]="dbus-daemon python3-dbusmock"
    [checks]="git clang-format-14 clang-tidy-14 clang-14"
    [fuzz]="clang-14 libclang-rt-14-dev"
    [vm]="qemu-system-x86"
    [windows]="g++-mingw-w64-i686-posix mingw-w64-tools libz-mingw-w64-dev xz-utils"
    [windows-sdk]="dpkg-dev make perl"
)

wanted=()
for group in "$@"; do
    read -r -a names <<< "$(tr '\n' ' ' <<< "${groups[$group]}")"
    wanted+=("${names[@]}")
done

missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
        missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if ! command -v apt-get > /dev/null; then
    echo "These packages of Debian 12 are needed, and there is no apt-get to install them: ${missing[*]}" >&2
    exit 1
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo > /dev/null; then
        echo "These packages are missing. Install them as root, then start again:" >&2
        echo "  apt-get install ${missing[*]}" >&2
        exit 1
    fi
    echo "Root is needed once, to install: ${missing[*]}"
    as_root=(sudo env DEBIAN_FRONTEND=noninteractive)
fi

export DEBIAN_FRONTEND=noninteractive
install=("${as_root[@]}" apt-get -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 install "${missing[@]}")
echo "Installing: ${missing[*]}"
if ! "${install[@]}" > /dev/null 2>&1; then
    # The lists may be old, or absent on a new machine.
    "${as_root[@]}" apt-get -qq update || true
    if ! "${install[@]}" > /dev/null; then
        echo "These packages could not be installed: ${missing[*]}" >&2
        exit 1
    fi
fi

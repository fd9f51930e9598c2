#!/usr/bin/env bash
# Provides Wine, which runs the programs of the Windows build.
#
#   tools/windows/wine.sh                  installs Wine where it is missing
#   tools/windows/wine.sh prefix FOLDER    makes a 32-bit Wine prefix in FOLDER,
#                                          for the tests to copy
#
# Where the distribution's 32-bit packages lag behind the installed updates, Wine
# needs older versions of some packages. They are downgraded with CI=true or
# BRISORA_ALLOW_DOWNGRADES=1 in the environment only.
#
# When Wine or the prefix can't be provided, one line on standard error says why,
# and the code is 1.
set -euo pipefail

packages=(wine wine32:i386 wine64 libgnutls30:i386)

scratch=$(mktemp -d "${TMPDIR:-/tmp}/brisora-wine.XXXXXX")
as_root=()
added_architecture=
unfinished_prefix=
cleanup() {
    # A failure leaves the machine's architectures as they were.
    [ -z "$added_architecture" ] || "${as_root[@]}" dpkg --remove-architecture i386 2> /dev/null || true
    if [ -n "$unfinished_prefix" ]; then
        WINEPREFIX=$unfinished_prefix wineserver -k 2> /dev/null || true
        rm -rf "$unfinished_prefix"
    fi
    rm -rf "$scratch"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

fail() {
    echo "$1" >&2
    exit 1
}

is_installed() {
    local package
    for package in "${packages[@]}"; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null | grep -qx installed || return 1
    done
    wine --version > /dev/null 2>&1
}

# Preferences under which the packages of both architectures come from the release
# itself, where their versions agree.
release_preferences() {
    local codename
    codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
    printf 'Package: *\nPin: release l=Debian-Security\nPin-Priority: -1\n\n'
    printf 'Package: *\nPin: release n=%s\nPin-Priority: 1001\n' "$codename"
}

install_wine() {
    command -v apt-get > /dev/null || fail "Wine is missing, and there is no apt-get to install it."
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo > /dev/null || fail "Wine is missing, and root is needed to install it: ${packages[*]}"
        echo "Root is needed once, to install: ${packages[*]}"
        as_root=(sudo env DEBIAN_FRONTEND=noninteractive)
    fi
    export DEBIAN_FRONTEND=noninteractive

    echo "Installing: ${packages[*]}"
    if ! dpkg --print-foreign-architectures | grep -qx i386; then
        "${as_root[@]}" dpkg --add-architecture i386 || fail "Wine can't be installed: dpkg refuses 32-bit packages."
        added_architecture=yes
    fi
    # One list that does not come is no reason to stop: what counts is whether the
    # packages can be installed.
    "${as_root[@]}" apt-get -qq update 2>&1 || true
    local install=(apt-get -q -y --no-install-recommends -o Dpkg::Use-Pty=0 install "${packages[@]}")
    if ! "${install[@]}" -s > "$scratch/apt.log" 2>&1; then
        cat "$scratch/apt.log"
        release_preferences > "$scratch/preferences"
        install+=(-o Dir::Etc::preferences="$scratch/preferences" --allow-downgrades)
        "${install[@]}" -s > /dev/null 2>&1 || fail "Wine can't be installed: apt refuses, see above."
        if [ "${CI:-}" != true ] && [ "${BRISORA_ALLOW_DOWNGRADES:-}" != 1 ]; then
            fail "Wine can't be installed without downgrading some packages, which BRISORA_ALLOW_DOWNGRADES=1 allows."
        fi
        echo "DOWNGRADING what is in the way of Wine: the 32-bit packages lag behind the installed updates."
    fi
    if ! "${as_root[@]}" "${install[@]}" > "$scratch/apt.log" 2>&1; then
        cat "$scratch/apt.log"
        fail "Wine can't be installed: apt has failed, see above."
    fi
    grep 'warning: downgrading' "$scratch/apt.log" || true
    is_installed || fail "Wine has been installed, but does not run."
    added_architecture=
}

# The user's own folders and menus stay out of it: a prefix starts with links to
# them. It is a Windows 10, of itself it would be a 7, which knows no looks.
make_prefix() {
    local prefix=$1 maker link
    maker=$(wine --version 2> /dev/null) || fail "There is no Wine to make a prefix with; tools/windows/wine.sh installs it."
    maker+=", as win10"
    if [ -f "$prefix/made-by" ]; then
        # Another Wine would change the prefix at every start of a copy.
        [ "$(cat "$prefix/made-by")" != "$maker" ] || return 0
        rm -rf "$prefix"
    fi
    if [ -e "$prefix" ] && ! rmdir "$prefix" 2> /dev/null; then
        fail "This is not a Wine prefix of Brisora's tests, and stays as it is: $prefix"
    fi

    mkdir -p "$(dirname "$prefix")"
    unfinished_prefix=$(mktemp -d "$prefix.XXXXXX")
    mkdir "$scratch/home"
    export WINEARCH=win32 WINEPREFIX=$unfinished_prefix WINEDEBUG=-all HOME=$scratch/home
    export WINEDLLOVERRIDES="winemenubuilder.exe=d;mscoree=d;mshtml=d"
    if ! env -u DISPLAY timeout --foreground 300 wineboot -i > "$scratch/wineboot.log" 2>&1 ||
        ! env -u DISPLAY timeout --foreground 60 wine winecfg /v win10 >> "$scratch/wineboot.log" 2>&1 ||
        ! timeout --foreground 60 wineserver -w; then
        cat "$scratch/wineboot.log"
        fail "Wine can't make a prefix in $prefix"
    fi
    find "$WINEPREFIX/drive_c/users" -type l -print0 | while IFS= read -r -d '' link; do
        rm "$link"
        mkdir "$link"
    done
    echo "$maker" > "$WINEPREFIX/made-by"
    mv -T "$WINEPREFIX" "$prefix"
    unfinished_prefix=
}

if [ $# -eq 0 ]; then
    is_installed || install_wine
elif [ $# -eq 2 ] && [ "$1" = prefix ]; then
    make_prefix "$(realpath -m -- "$2")"
else
    fail "Usage: tools/windows/wine.sh [prefix FOLDER]"
fi

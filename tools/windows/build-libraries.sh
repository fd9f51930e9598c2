#!/usr/bin/env bash
# Builds the libraries of the Windows program from the distribution's source
# packages.
#
#   tools/windows/build-libraries.sh PREFIX SOURCE=VERSION...
#
# PREFIX is the folder that they are installed into, WORK (in the environment) a
# folder for sources and objects; neither path may contain a space. The sources
# are qtbase-opensource-src, tinyxml2, xz-utils and bzip2.
#
# Needs no root: apt works with lists and settings of its own here, which name the
# machine's mirrors, and checks the signatures as it always does.
#
# tools/windows/sdk.sh builds anew when this file changes.
set -euo pipefail

prefix=$1
shift
work=${WORK:?names no folder}
mkdir -p "$prefix" "$work"/{compilers,sources.d,lists,cache}

# Makes the machine's sources.list entries, in either format, name source packages.
name_mirrors() {
    local file
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ ! -f "$file" ] || sed -nE 's/^[[:space:]]*deb(-src)?([[:space:]])/deb-src\2/p' "$file"
    done | sort -u > "$work/sources.d/machine.list"
    for file in /etc/apt/sources.list.d/*.sources; do
        [ ! -f "$file" ] || sed -E 's/^Types:.*/Types: deb-src/I' "$file" > "$work/sources.d/${file##*/}"
    done
}

fetch() {
    local apt=(apt-get -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.d"
        -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache")
    # A mirror of something else may be out of order: what counts is that the
    # sources come.
    "${apt[@]}" update || true
    cd "$work"
    if ! "${apt[@]}" source "$@"; then
        echo "These sources did not come: $*"
        echo "Where a version is not found, \"apt-get update\" may help: the machine's lists are old."
        exit 1
    fi
}

# The compilers with the threads of the C++ standard library, whichever ones the
# machine prefers.
choose_compilers() {
    local name
    for name in gcc g++; do
        ln -sf "$(command -v "i686-w64-mingw32-$name-posix")" "$work/compilers/i686-w64-mingw32-$name"
    done
    PATH=$work/compilers:$PATH
}

# The settings that are off need headers that MinGW has not, or OpenSSL instead of
# the system's own TLS.
build_qt() {
    local source
    source=$(echo "$work"/qtbase-opensource-src-*/)
    # The names of MinGW's libraries are in lower case.
    sed -i 's/-lSecur32/-lsecur32/; s/-lCrypt32/-lcrypt32/' "$source/src/network/ssl/ssl.pri"
    mkdir "$work/qt"
    (
        cd "$work/qt"
        "$source/configure" -opensource -confirm-license -release -shared \
            -xplatform win32-g++ -device-option CROSS_COMPILE=i686-w64-mingw32- -prefix "$prefix" \
            -nomake examples -nomake tests -no-compile-examples \
            -no-opengl -no-openssl -schannel -no-dbus -no-icu \
            -no-feature-tabletevent -no-direct2d -no-sql-sqlite -no-sql-odbc \
            -qt-zlib -qt-libpng -qt-libjpeg -qt-pcre -qt-freetype
        make -j"$(nproc)"
        make install
    )
}

# Builds a static library: SOURCE TARGET COMPONENT [CMAKE OPTION...]
build_with_cmake() {
    local source=$1 target=$2 component=$3
    shift 3
    cmake -S "$(echo "$work/$source"-*/)" -B "$work/$source" -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=i686 \
        -DCMAKE_C_COMPILER=i686-w64-mingw32-gcc -DCMAKE_CXX_COMPILER=i686-w64-mingw32-g++ \
        -DCMAKE_RC_COMPILER=i686-w64-mingw32-windres -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF "$@"
    cmake --build "$work/$source" --target "$target" -j"$(nproc)"
    cmake --install "$work/$source" --component "$component"
}

build_bzip2() {
    (
        cd "$work"/bzip2-*/
        make CC=i686-w64-mingw32-gcc AR=i686-w64-mingw32-ar RANLIB=i686-w64-mingw32-ranlib libbz2.a
        install -m 644 -D -t "$prefix/lib" libbz2.a
        install -m 644 -D -t "$prefix/include" bzlib.h
    )
}

name_mirrors
fetch "$@"
choose_compilers
build_with_cmake tinyxml2 tinyxml2 tinyxml2_development
build_with_cmake xz-utils liblzma liblzma_Development
build_bzip2
build_qt

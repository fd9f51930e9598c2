#!/usr/bin/env bash
# Configures and builds one CMake preset.
#
#   tools/build.sh PRESET [CMAKE OPTION...]
#
# TARGET=name in the environment builds that target and what it needs only. The
# preset "windows" gets the compiler and the libraries that it needs, unless
# BRISORA_WINDOWS_SDK names the libraries' folder.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
launcher=()
command -v ccache > /dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)

# The cache serves every checkout, wherever it lies.
export CCACHE_NOHASHDIR=1 CCACHE_BASEDIR=$PWD

log=build/$preset/configure.log
mkdir -p "build/$preset"
if [ "$preset" = windows ]; then
    BRISORA_WINDOWS_SDK=${BRISORA_WINDOWS_SDK:-$(tools/windows/sdk.sh)}
    export BRISORA_WINDOWS_SDK
    # What was found in another folder must not be used.
    grep -sqxF "BRISORA_WINDOWS_SDK:PATH=$BRISORA_WINDOWS_SDK" "build/$preset/CMakeCache.txt" ||
        rm -rf "build/$preset/CMakeCache.txt" "build/$preset/CMakeFiles"
fi
if ! cmake --preset "$preset" "${launcher[@]}" "$@" > "$log" 2>&1; then
    cat "$log" >&2
    echo "Configuring the preset '$preset' failed." >&2
    exit 1
fi
cmake --build "build/$preset" ${TARGET:+--target "$TARGET"}

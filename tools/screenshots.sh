#!/usr/bin/env bash
# Leaves pictures of the window and of every dialog in build/screenshots, in both
# looks and three scales.
#
#   tools/screenshots.sh [LANGUAGE]      LANGUAGE: a file of resources/languages
#                                        by its base name, such as German
set -euo pipefail
cd "$(dirname "$0")/.."

tools/packages.sh build display
TARGET=brisora_gallery tools/build.sh dev
for look in light dark; do
    for scale in 1 1.5 2; do
        folder=build/screenshots/$look-$scale
        QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=$scale \
            build/dev/tests/ui/brisora_gallery "$folder" "$look" "${1:-English}"
        echo "$folder"
    done
done

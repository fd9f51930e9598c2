#!/bin/sh
# Renders the images of the resources from their drawings. The results are kept
# in the repository, so that a build needs no renderer. Needs rsvg-convert and
# ImageMagick's convert.
set -eu

cd "$(dirname "$0")/../resources/images"

# render DRAWING SIZE RESULT
render() {
    rsvg-convert --width "$2" --height "$2" --output "$3" "$1"
}

render tray.svg 16 tray.png
render tray.svg 32 tray@2x.png
render icon.svg 64 icon_64.png
render icon.svg 128 icon_128.png
render icon.svg 256 icon_128@2x.png

# The icon of the program's file on Windows, with the drawing for small sizes.
scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
for size in 16 20 24 32; do
    render tray.svg "$size" "$scratch/$size.png"
done
for size in 40 48 64 128 256; do
    render icon.svg "$size" "$scratch/$size.png"
done
convert "$scratch/16.png" "$scratch/20.png" "$scratch/24.png" "$scratch/32.png" \
    "$scratch/40.png" "$scratch/48.png" "$scratch/64.png" "$scratch/128.png" \
    "$scratch/256.png" brisora.ico

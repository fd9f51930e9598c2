#!/bin/sh
# Renders the images of the resources from their drawings. The results are kept
# in the repository, so that a build needs no renderer. Needs rsvg-convert.
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

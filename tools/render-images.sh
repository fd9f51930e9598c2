#!/usr/bin/env bash
# Renders the images of the resources from the drawings in resources/images/sources.
# The results are kept in the repository, so that a build needs no renderer. Equal
# drawings make equal files.
#
#   tools/render-images.sh                         renders all images
#   tools/render-images.sh --contact-sheet FILE    shows them in FILE, a PNG, as well:
#                                                  enlarged, on light and on dark
set -euo pipefail

sheet=
if [ $# -eq 2 ] && [ "$1" = --contact-sheet ]; then
    sheet=$(realpath "$2")
elif [ $# -ne 0 ]; then
    sed -n 's/^# \{0,1\}//; 6,8p' "$0" >&2
    exit 2
fi

cd "$(dirname "$0")/.."
tools/packages.sh images
cd resources/images

# Each image with its size, the scales at which it is needed, and its drawing. Scale
# 2 is for dense screens and gets the suffix that Qt looks for.
table="
    airport                 16  1,2  airport
    airport_big             32  1,2  airport_big
    disc                    16  1,2  disc
    disc_big                32  1,2  disc_big
    drive                   16  1,2  drive
    drive_big               32  1,2  drive_big
    drive_nvme              16  1,2  drive_nvme
    drive_nvme_big          32  1,2  drive_nvme_big
    drive_ssd               16  1,2  drive_ssd
    drive_ssd_big           32  1,2  drive_ssd_big
    fan                     16  1,2  fan
    fan_big                 32  1,2  fan_big
    gpu                     16  1,2  gpu
    gpu_big                 32  1,2  gpu_big
    power-supply            16  1,2  power-supply
    power-supply_big        32  1,2  power-supply_big
    processor               16  1,2  processor
    processor_big           32  1,2  processor_big

    profiles_action         16  1,2  profiles_action
    tray                    16  1,2  tray
    tray_grey               16  1,2  tray_grey
    tray_white              16  1,2  tray_white
    updatechecker/fixed     16  1,2  mark_fixed
    updatechecker/improved  16  1,2  mark_improved
    updatechecker/new       16  1,2  mark_new

    preferences_general     32  1,2  preferences_general
    preferences_menubar     32  1,2  preferences_menubar
    preferences_sensors     32  1,2  preferences_sensors
    warning                 32  1,2  warning

    icon_64                 64  1    icon
    icon_128               128  1,2  icon
    christmas_santa        256  1,2  christmas_santa
    christmas_snowflake    192  1,2  christmas_snowflake
"

scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT

# render DRAWING SIZE RESULT
render() {
    rsvg-convert --width "$2" --height "$2" --output "$3" "sources/$1.svg"
}

results=()
while read -r name size scales drawing; do
    [ -n "$name" ] || continue
    for scale in ${scales//,/ }; do
        result=$name.png
        [ "$scale" -eq 1 ] || result=$name@${scale}x.png
        render "$drawing" $((size * scale)) "$result"
        results+=("$result")
    done
done <<< "$table"

# Without text and time, so that equal pictures are equal files.
optipng -quiet -o5 -strip all "${results[@]}"

# The icon of the program's file on Windows, with the drawing for small sizes.
sizes=(16 20 24 32 40 48 64 128 256)
for size in "${sizes[@]}"; do
    drawing=icon
    [ "$size" -gt 32 ] || drawing=tray
    render $drawing "$size" "$scratch/$size.png"
done
(cd "$scratch" && convert "${sizes[@]/%/.png}" -strip -define png:exclude-chunks=date,time brisora.ico)
mv "$scratch/brisora.ico" .

[ -n "$sheet" ] || exit 0

# Small images are enlarged without smoothing, to show each of their pixels. A row
# holds images of one size only, since montage can't place others beside them.
declare -A tiles
for result in "${results[@]}"; do
    width=$(identify -format %w "$result")
    zoom=100%
    [ "$width" -gt 64 ] || zoom=400%
    tile=$scratch/${result//\//-}
    convert "$result" -filter point -resize $zoom \
        \( -clone 0 -background '#f0f0f0' -bordercolor '#f0f0f0' -border 12 -flatten \) \
        \( -clone 0 -background '#232323' -bordercolor '#232323' -border 12 -flatten \) \
        -delete 0 +append "$tile"
    tiles[$width]+=" -label $result $tile"
done

rows=()
for width in $(printf '%s\n' "${!tiles[@]}" | sort -n); do
    row=$scratch/row-$width.png
    columns=$((width < 128 ? 128 / width : 512 / width))
    read -r -a arguments <<< "${tiles[$width]}"
    montage -font DejaVu-Sans -pointsize 11 -background white "${arguments[@]}" \
        -tile "${columns}x" -geometry '+6+6' "$row"
    rows+=("$row")
done
convert "${rows[@]}" -background white -append -strip "$sheet"

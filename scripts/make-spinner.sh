#!/bin/sh
# Draws the download window's spinning disc (resource 100) as an animated GIF89a:
# a silver disc with a rainbow glint that turns a twelfth of a circle per frame.
# Needs ImageMagick's convert. Usage: scripts/make-spinner.sh [output.gif]
set -eu
out=${1:-"$(dirname "$0")/../assets/animations/spinner.gif"}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
frames=12
i=0
while [ "$i" -lt "$frames" ]; do
    angle=$((i * 360 / frames))
    convert -size 48x48 xc:none \
        -fill '#c8ccd4' -stroke '#6b7080' -strokewidth 1 -draw 'circle 24,24 24,2' \
        -stroke none -fill '#e63946' -draw "path 'M 24,24 L 24,4 A 20,20 0 0,1 38,10 Z'" \
        -fill '#f4d35e' -draw "path 'M 24,24 L 38,10 A 20,20 0 0,1 44,24 Z'" \
        -fill '#3a86ff' -draw "path 'M 24,24 L 24,44 A 20,20 0 0,1 10,38 Z'" \
        -fill '#eef0f4' -stroke '#6b7080' -draw 'circle 24,24 24,15' \
        -fill none -stroke none -draw 'circle 24,24 24,20' \
        -fill '#ffffff' -stroke '#6b7080' -draw 'circle 24,24 24,21' \
        -fill '#00000000' -stroke none -draw 'color 24,24 floodfill' \
        -distort SRT "$angle" "$work/frame$(printf %02d "$i").png"
    i=$((i + 1))
done
convert -delay 8 -dispose Background -loop 0 "$work"/frame*.png -background none "$out"

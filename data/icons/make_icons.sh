#!/usr/bin/env bash
# Draws the application icon in all its sizes (ImageMagick).
set -euo pipefail
cd "$(dirname "$0")"
wave=$(awk 'BEGIN { for (x = 160; x <= 864; x += 8) printf "%d,%d ", x, 800 - 88 * sin((x - 160) / 352 * 6.28318) }')
for size in 16 32 48 64 256; do
  convert -size 1024x1024 xc:none \
    -fill '#16324f' -draw 'roundrectangle 32,32 992,992 160,160' \
    -fill none -stroke '#3d5f80' -strokewidth 24 -draw 'line 128,512 896,512' \
    -stroke '#8ccbf2' -strokewidth 64 \
    -draw "stroke-linejoin round stroke-linecap round path 'M 160,704 H 336 V 544 H 512 V 384 H 688 V 240 H 864'" \
    -stroke '#ffd899' -strokewidth 48 \
    -draw "stroke-linejoin round stroke-linecap round fill none polyline $wave" \
    -filter Lanczos -resize "${size}x${size}" -depth 8 -strip -define png:exclude-chunks=date,time "$size.png"
done

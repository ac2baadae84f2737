#!/bin/sh
# Renders one drawing: render.sh DRAWING.svg COLOURS.css|- WIDTH OUT.(png|gif|jpg)
# A PNG keeps what is transparent in the drawing; GIF and JPEG are on white. The same drawing gives the same bytes.
set -eu
drawing=$1 colours=$2 width=$3 out=$4
raw="$out.raw.png" map="$out.pnm" few="$out.few.pnm"
trap 'rm -f "$raw" "$map" "$few"' EXIT

set -- --width "$width" --keep-aspect-ratio --output "$raw"
[ "$colours" = - ] || set -- "$@" --stylesheet "$colours"
rsvg-convert "$@" "$drawing"
case $out in
  *.png) mv "$raw" "$out" ;;
  *.jpg)
    pngtopam -quiet -mix -background '#ffffff' "$raw" > "$map"
    pnmtojpeg -quiet -quality 88 -optimize "$map" > "$out"
    ;;
  *.gif)
    pngtopam -quiet -mix -background '#ffffff' "$raw" > "$map"
    pnmquant -quiet 256 "$map" > "$few"
    pamtogif -quiet "$few" > "$out"
    ;;
  *) echo "render.sh: no format for $out" >&2; exit 1 ;;
esac

#!/usr/bin/env bash
# Renders the drawings of resources/pictures/ as PNG: the icon in every size that desktops ask for,
# in the folders in which they look for it, and each other picture in its own size and twice as large.
#
#   tools/render_pictures.sh FOLDER
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: tools/render_pictures.sh FOLDER" >&2; exit 2; }
mkdir -p "$1"
folder=$(cd "$1" && pwd)
cd "$(dirname "$0")/../resources/pictures"

big_endian() { # FILE OFFSET: the 32-bit number there
  local bytes
  read -r -a bytes < <(od -An -tu1 -j "$2" -N 4 "$1")
  echo $(((bytes[0] << 24) + (bytes[1] << 16) + (bytes[2] << 8) + bytes[3]))
}

render() { # DRAWING WIDTH HEIGHT FILE
  mkdir -p "$(dirname "$4")"
  rsvg-convert --width "$2" --height "$3" "$1" --output "$4"
  local size
  size="$(big_endian "$4" 16)x$(big_endian "$4" 20)" # width and height in a PNG file's header
  if [ "$size" != "$2x$3" ]; then
    echo "$1 became $size instead of $2x$3" >&2
    exit 1
  fi
}

icon() { # SIZE DRAWING
  render "$2" "$1" "$1" "$folder/icons/hicolor/$1x$1/apps/voxtrel.png"
}

# The small sizes have drawings of their own, on the grid of their pixels.
icon 16 129_16.svg
icon 22 129_22.svg
icon 24 129_24.svg
icon 32 2000.svg
for size in 48 64 128 256; do
  icon $size 129.svg
done
mkdir -p "$folder/icons/hicolor/scalable/apps"
cp 129.svg "$folder/icons/hicolor/scalable/apps/voxtrel.svg"

for picture in 136 142 143 2000; do
  [[ $(<$picture.svg) =~ width=\"([0-9]+)\"\ height=\"([0-9]+)\" ]]
  width=${BASH_REMATCH[1]} height=${BASH_REMATCH[2]}
  render $picture.svg "$width" "$height" "$folder/pictures/$picture.png"
  render $picture.svg $((width * 2)) $((height * 2)) "$folder/pictures/$picture@2x.png"
done

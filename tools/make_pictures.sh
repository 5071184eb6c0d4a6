#!/usr/bin/env bash
# Makes pictures of every window and state, for people to look at: light and dark, phone and desktop, from
# right to left, with large letters, at scale 2 and in another language. If the compiler for Windows and
# Wine are there, also the applet's windows there, and of each state one picture in which it stands
# next to the desktop's.
#
#   tools/make_pictures.sh [FOLDER]     (default: build/pictures)
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$(realpath -m "${1:-build/pictures}")
tools/build.sh dev -DBUILD_TESTING=ON home_pictures screens voxtrel voxtrel-connection voxtrel-home \
  voxtrel-panel voxtrel_cpl

paint() { # FOLDER SCALE LANGUAGE [LOOK...]
  local into=$folder/$1 scale=$2 language=$3
  shift 3
  mkdir -p "$into"
  QT_SCALE_FACTOR=$scale LC_ALL=C.UTF-8 LANGUAGE=$language \
    build/dev/tests/host/home/home_pictures "$into" "$@" >"$into.log" 2>&1
}

paint voice_tags 1 en
paint voice_tags_twice 2 en desk phone
paint voice_tags_de 1 de desk phone
for percent in 100 200; do
  QT_QPA_PLATFORM=offscreen:configfile=tests/backends/qt/large_screen.json \
    build/dev/tests/backends/qt/screens "$folder/sheet_$percent" $percent
done
build/dev/tests/backends/qt/screens "$folder/sheet_de" 100 resources/languages/Voxtrel.de.lng
# Those of the programs themselves, of which some stand in README and help.
/usr/bin/python3 tests/access/pictures.py "$folder/programs"

pictures_of_windows() {
  local percent name
  tools/build.sh windows -DBUILD_TESTING=ON voxtrel voxtrel_cpl windows_probe
  for percent in 100 200; do
    python3 tests/windows/pictures.py build/windows/host/applet/voxtrel.cpl \
      build/windows/host/cli/voxtrel.exe build/windows/tests/windows/windows_probe.exe \
      "$folder/windows_$percent" "$percent"
  done
  # The desktop's at the left, at its own scale and at 2, then those of Windows.
  mkdir -p "$folder/side_by_side"
  for name in empty recording learning confirm test about; do
    convert "$folder"/{sheet_100,windows_100,sheet_200,windows_200}/$name.png -background gray \
      -gravity north +append "$folder/side_by_side/$name.png"
  done
  convert "$folder"/sheet_de/learning.png "$folder"/windows_{100,200}/learning_de.png -background gray \
    -gravity north +append "$folder/side_by_side/learning_de.png"
}

wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
if command -v x86_64-w64-mingw32-g++-posix >/dev/null && [ -x "$wine" ]; then
  pictures_of_windows
fi
find "$folder" -name '*.png' | wc -l

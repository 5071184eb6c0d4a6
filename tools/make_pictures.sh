#!/usr/bin/env bash
# Makes pictures of every window and state, for people to look at: light and dark, phone and desktop, from
# right to left, with large letters, at scale 2 and in another language.
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
find "$folder" -name '*.png' | wc -l

#!/usr/bin/env bash
# Has each line of a text file spoken. Writes one file of samples (signed, 16-bit, 11,025 a second): three
# seconds for each line, in the order of the lines.
#
#   benchmarks/speak_names.sh NAMES OUTPUT [first]
#
# With "first", only the first word of each line.
set -euo pipefail

names=$1
output=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

while IFS= read -r name; do
  [ "${3-}" != first ] || name=${name%% *}
  espeak-ng -v en-us -w "$work/spoken.wav" "$name" </dev/null
  sox -V1 -D "$work/spoken.wav" -t raw -e signed -b 16 -c 1 - \
    rate 11025 gain -n -6 pad 0.4 3 trim 0 33075s
done <"$names" >"$work/all.raw"
mv "$work/all.raw" "$output"

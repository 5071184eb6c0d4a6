#!/usr/bin/env bash
# Makes the recordings next to this script again. With the package versions named in README.md each
# comes out byte for byte as it is kept here.
#
#   samples/make_samples.sh [FOLDER]     FOLDER: where to write them (default: next to the script)
set -euo pipefail
export LC_ALL=C
. "$(dirname "$0")/../tools/wave_bytes.sh"

readonly rate=11025
readonly samples=33075 # three seconds
readonly noise_peak=0.004

# file stem, what is spoken
readonly names='
anna      Anna
robert    Robert
elizabeth Elizabeth
jackson   Jackson
oliver    Oliver
sophie    Sophie
timothy   Timothy
hernandez Hernandez
'

# espeak-ng voice, words a minute, pitch 0..99, peak level in dB, silence before the name in
# seconds; one line for each rendition
readonly renditions='
en-us    150 45 -6  0.90
en-us+m3 160 52 -9  0.75
en-us+m7 143 40 -12 1.05
'

folder=${1:-$(dirname "$0")}
mkdir -p "$folder"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

speak() { # TEXT VOICE SPEED PITCH LEVEL_DB LEAD_SECONDS: raw samples, exactly samples of them
  espeak-ng -v "$2" -s "$3" -p "$4" -w "$scratch/spoken.wav" "$1"
  sox -V1 -R -D "$scratch/spoken.wav" -r $rate -c 1 -b 16 "$scratch/voice.wav" \
    gain -n "$5" rate -h $rate pad "$6" 3 trim 0 ${samples}s
  # -R gives the same noise each time; every recording takes its own stretch of it.
  sox -V1 -R -D "$scratch/noise.wav" "$scratch/hiss.wav" trim $((count * samples))s ${samples}s
  sox -V1 -R -D -m -v 1 "$scratch/voice.wav" -v 1 "$scratch/hiss.wav" -t s16 -L -
}

sox -V1 -R -D -n -r $rate -c 1 -b 16 "$scratch/noise.wav" synth 75 pinknoise gain -n 0 vol $noise_peak

count=0
while read -r stem text; do
  [ -n "$stem" ] || continue
  rendition=0
  while read -r voice speed pitch level lead; do
    [ -n "$voice" ] || continue
    rendition=$((rendition + 1))
    speak "$text" "$voice" "$speed" "$pitch" "$level" "$lead" >"$scratch/samples.raw"
    bytes=$(stat -c %s "$scratch/samples.raw")
    if [ "$bytes" -ne $((samples * 2)) ]; then
      echo "$stem, rendition $rendition: $bytes bytes instead of $((samples * 2))" >&2
      exit 1
    fi
    { wave_header "$bytes" && cat "$scratch/samples.raw"; } >"$folder/${stem}_$rendition.wav"
    count=$((count + 1))
  done <<<"$renditions"
done <<<"$names"
echo "$count recordings in $folder"

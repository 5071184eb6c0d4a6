#!/usr/bin/env bash
# Writes the golden files again, with the release build, from the sample recordings.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/build.sh release voxtrel
golden=tests/golden
rm -f $golden/*.wav $golden/*.st
for sample in samples/*.wav; do
  stem=$(basename "$sample" .wav)
  cp "$sample" "$golden/$stem.wav"
  build/release/host/cli/voxtrel template learn "$golden/$stem.wav" "$golden/$stem.st" >/dev/null
done
git status --short $golden

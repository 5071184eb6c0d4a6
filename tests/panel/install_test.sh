#!/usr/bin/env bash
# Installs into a folder, moves it, and uses from there what is there to be used.
#
#   install_test.sh BUILD_FOLDER
set -euo pipefail
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() {
  echo "install_test: $*" >&2
  exit 1
}

cmake --install "$1" --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/moved"
cd "$scratch/moved"

for file in bin/voxtrel bin/voxtrel-connection bin/voxtrel-panel lib/voxtrel/voxtrel.cpl \
  share/voxtrel/help/ZedraVoxtrelPE_help.htm share/voxtrel/languages/Voxtrel.lng share/voxtrel/samples/contacts.vcf \
  share/icons/hicolor/scalable/apps/voxtrel.svg; do
  [ -s $file ] || fail "$file is missing"
done
for size in 16 22 24 32 48 64 128 256; do
  [ -s share/icons/hicolor/${size}x$size/apps/voxtrel.png ] || fail "no icon of $size pixels"
done
desktop-file-validate share/applications/voxtrel-panel.desktop

use() {
  bin/voxtrel --root "$scratch/root" --speaker "$scratch/heard.wav" \
    --microphone share/voxtrel/samples/anna_1.wav "$@"
}
use --contacts share/voxtrel/samples/contacts.vcf tags learn --contact Anna --number Mobile
[ -s "$scratch/heard.wav" ] || fail "the recording was not played"
use tags list | grep -F 'Anna Berg 202 555 0101 M' || fail "the tag is not listed"

# The libraries that are loaded on demand: of the desktop's address books and of the sound server.
said=$(bin/voxtrel --root "$scratch/root" --contacts eds status 2>&1) || fail "no status: $said"
if grep -F '.so' <<<"$said"; then
  fail "a library is not found, or cannot be loaded"
fi
# And of the order of lists, without which what is beyond ASCII stands last and nobody says so.
printf 'BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;;;;\r\nTEL;TYPE=HOME:Z1\r\nTEL;TYPE=CELL:Ä1\r\nEND:VCARD\r\n' \
  >"$scratch/letters.vcf"
listed=$(bin/voxtrel --root "$scratch/letters" --contacts "$scratch/letters.vcf" contacts list)
[[ $listed == *Ä1*Z1* ]] || fail "the numbers are in another order: $listed"

bin/voxtrel-panel --version
if said=$(bin/voxtrel-panel 2>&1); then
  fail "the panel opened without a display"
fi
grep -F 'There is no display' <<<"$said"

# Whether a library that is named without a folder is found from where the program now lies.
bin/voxtrel-panel --inquire lib/voxtrel/voxtrel.cpl | grep -aq 's.v.g\|svg' ||
  fail "the applet does not tell its icon"

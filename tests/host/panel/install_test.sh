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
mkdir "$scratch/home"
mv "$scratch/first" "$scratch/home/.local"
cd "$scratch/home/.local"

for file in bin/voxtrel bin/voxtrel-connection bin/voxtrel-dial bin/voxtrel-home bin/voxtrel-panel lib/voxtrel/voxtrel.cpl \
  share/voxtrel/help/ZedraVoxtrelPE_help.htm share/voxtrel/languages/Voxtrel.lng share/voxtrel/samples/contacts.vcf \
  share/icons/hicolor/scalable/apps/voxtrel.svg; do
  [ -s $file ] || fail "$file is missing"
done
for size in 16 22 24 32 48 64 128 256; do
  [ -s share/icons/hicolor/${size}x$size/apps/voxtrel.png ] || fail "no icon of $size pixels"
done
desktop-file-validate share/applications/voxtrel.desktop share/applications/voxtrel-panel.desktop

use() {
  bin/voxtrel --root "$scratch/root" --speaker "$scratch/heard.wav" \
    --microphone share/voxtrel/samples/anna_1.wav "$@"
}
use --contacts share/voxtrel/samples/contacts.vcf tags learn --contact Anna --number Mobile
[ -s "$scratch/heard.wav" ] || fail "the recording was not played"
use tags list | grep -F 'Anna Berg 202 555 0101 M' || fail "the tag is not listed"

use dial --to "Anna Berg" --way print --yes | grep -F '202 555 0101' || fail "nobody is called"

# The library of the desktop's address books, which is loaded when it is wanted.
said=$(bin/voxtrel --root "$scratch/root" --contacts eds status 2>&1) || fail "no status: $said"
if grep -F '.so' <<<"$said"; then
  fail "a library is not found, or cannot be loaded"
fi
# In an order that does not know all scripts, what is beyond ASCII would be the last.
printf 'BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;;;;\r\nTEL;TYPE=HOME:Z1\r\nTEL;TYPE=CELL:Ä1\r\nEND:VCARD\r\n' \
  >"$scratch/letters.vcf"
listed=$(bin/voxtrel --root "$scratch/letters" --contacts "$scratch/letters.vcf" contacts list)
[[ $listed == *Ä1*Z1* ]] || fail "the numbers are in another order: $listed"

bin/voxtrel-panel --version
bin/voxtrel-connection --help | grep -qF ROOT || fail "the connection window has no help without a display"
if said=$(bin/voxtrel-panel 2>&1); then
  fail "the panel opened without a display"
fi
grep -F 'There is no display' <<<"$said"

bin/voxtrel-home --version
if said=$(bin/voxtrel-home --root "$scratch/root" 2>&1); then
  fail "the window of the voice tags opened without a display"
fi
grep -F 'There is no display' <<<"$said"
QT_QPA_PLATFORM=offscreen bin/voxtrel-home --root "$scratch/root" --probe || fail "no window on a display"

inquire() {
  bin/voxtrel-panel --inquire "$1" | grep -aq 's.v.g\|svg'
}
inquire "$PWD/lib/voxtrel/voxtrel.cpl" || fail "the applet does not give its icon"
if inquire lib/voxtrel/voxtrel.cpl 2>/dev/null; then
  fail "a library of the current folder was loaded"
fi

# Nothing is loaded from folders that have the names of a build's, nor from the current one. What is
# planted there is no library, which the system would say if it were taken.
export QT_QPA_PLATFORM=offscreen XDG_DATA_HOME="$scratch/data" HOME="$scratch/home"
mv lib/voxtrel "$scratch/away"
for folder in "$scratch/home/"{,.local/}{host/applet,host/panel,backends/ebook}; do
  mkdir -p "$folder"
  for name in voxtrel.cpl voxtrel-ebook.so voxtrel-panel; do
    echo planted >"$folder/$name"
    cp "$folder/$name" "$scratch/home/$name"
  done
done
cd "$scratch/home"
export LD_DEBUG=files LD_DEBUG_OUTPUT="$scratch/loaded"
# Each fails, as what belongs to it is away.
.local/bin/voxtrel-panel --open voxtrel.cpl 2>"$scratch/said" && fail "an applet was opened"
.local/bin/voxtrel open 2>>"$scratch/said" && fail "a window was opened"
.local/bin/voxtrel --root "$scratch/root" --contacts eds status >>"$scratch/said" 2>&1 || true
unset LD_DEBUG LD_DEBUG_OUTPUT
grep -qF "$scratch/home/.local/lib/voxtrel/voxtrel.cpl" "$scratch/said" ||
  fail "it is not said where the applet belongs: $(cat "$scratch/said")"
if grep -hE "$scratch/home/(\./)?(\.local/)?(host|backends|voxtrel)" "$scratch"/loaded.* ||
  grep -iE 'invalid ELF|file too short' "$scratch/said"; then
  fail "a planted library was looked at"
fi

#!/usr/bin/env bash
# Tries the Debian package as a user would: what is in it, and whether it installs, runs and goes again
# on a machine that has nothing else.
#
#   tests/package/package_test.sh FILE.deb
#
# The clean machine is a folder that mmdebstrap fills from the package registry. It needs root. Without
# either, the package is only unpacked, which the last line says.
set -uo pipefail
deb=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
passed=0
failed=0

# Runs one check. What it prints is shown if it fails.
try() { # SENTENCE COMMAND...
  local sentence=$1
  shift
  if "$@" >"$work/said" 2>&1; then
    passed=$((passed + 1))
    echo "ok: $sentence"
  else
    failed=$((failed + 1))
    echo "FAILED: $sentence"
    tail -n 40 "$work/said"
  fi
}

tree=$work/tree
mkdir "$tree"
dpkg-deb -x "$deb" "$tree" || exit 1

lintian_is_content() {
  lintian --allow-root --fail-on error "$deb"
}
each_program_has_a_page() {
  local program
  for program in "$tree"/usr/bin/*; do
    [ -f "$tree/usr/share/man/man1/${program##*/}.1.gz" ] || { echo "no page: $program" && return 1; }
  done
}
pages_have_no_warnings() {
  local page said
  for page in "$tree"/usr/share/man/man1/*.gz; do
    said=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
    [ -z "$said" ] || { echo "$page: $said" && return 1; }
  done
}
# Every command that a program names has a page and a completion.
each_command_has_a_page() {
  local group command
  [ -n "$(commands_of)" ] || return
  for group in '' $(commands_of); do
    for command in $(commands_of $group); do
      [ -f "$tree/usr/share/man/man1/voxtrel${group:+-$group}-$command.1.gz" ] ||
        { echo "no page: $group $command" && return 1; }
    done
  done
}
commands_of() { # [GROUP]
  "$tree/usr/bin/voxtrel" "$@" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]\{1,\}\).*/\1/p'
}
bash_completes() { # LINE WANTED
  local words=($1)
  (
    . "$tree/usr/share/bash-completion/completions/voxtrel"
    COMP_WORDS=("${words[@]}")
    [[ $1 != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _voxtrel
    printf '%s\n' "${COMPREPLY[@]}"
  ) >"$work/completed"
  grep -qxF -- "$2" "$work/completed" || { cat "$work/completed" && return 1; }
}
# A shell that is not here is passed over.
shells_read_their_completions() {
  bash -n "$tree"/usr/share/bash-completion/completions/voxtrel || return
  ! command -v zsh >/dev/null || zsh -n "$tree"/usr/share/zsh/vendor-completions/_voxtrel || return
  ! command -v fish >/dev/null || fish -n "$tree"/usr/share/fish/vendor_completions.d/voxtrel.fish
}
fish_completes() { # LINE WANTED
  command -v fish >/dev/null || return 0
  fish --no-config -c "source $tree/usr/share/fish/vendor_completions.d/voxtrel.fish; complete -C '$1'" |
    cut -f 1 >"$work/completed"
  grep -qxF -- "$2" "$work/completed" || { cat "$work/completed" && return 1; }
}
desktop_entries_are_valid() {
  desktop-file-validate "$tree"/usr/share/applications/*.desktop
}
metadata_are_valid() {
  appstreamcli validate --no-net "$tree"/usr/share/metainfo/*.xml
}
metadata_name_a_desktop_entry() {
  local entry
  entry=$(sed -n 's/.*<launchable type="desktop-id">\(.*\)<.*/\1/p' "$tree"/usr/share/metainfo/*.xml)
  [ -f "$tree/usr/share/applications/$entry" ]
}
nothing_is_for_all_to_write() {
  [ -z "$(find "$tree" -perm /022 ! -type l)" ]
}

# Learns a name from a sample, lists it, backs it up, and opens each window without a screen.
cat >"$work/use.sh" <<'EOF'
set -eux
samples=$1/usr/share/voxtrel/samples
export PULSE_SERVER=unix:/nowhere QT_QPA_PLATFORM=offscreen HOME=$2
mkdir -p "$HOME"
PATH=$1/usr/bin:$PATH
voxtrel --version
cp "$samples/contacts.vcf" "$HOME"
voxtrel --contacts "$HOME/contacts.vcf" --microphone "$samples/anna_1.wav" --speaker "$HOME/heard.wav" \
  tags learn --contact 1
voxtrel tags list
voxtrel dial --to Anna --way print --yes
voxtrel check
voxtrel backup "$HOME/voice.tar"
voxtrel-panel --probe
voxtrel-home --probe
[ "$(voxtrel-panel --inquire "$1/usr/lib/voxtrel/voxtrel.cpl" | head -c 4)" = VPN1 ]
EOF

try "lintian finds no error" lintian_is_content
try "each program has a manual page" each_program_has_a_page
try "each command has a manual page" each_command_has_a_page
try "the pages have no warnings" pages_have_no_warnings
try "each shell reads its completion" shells_read_their_completions
try "bash completes a command" bash_completes 'voxtrel tags le' learn
try "bash completes a group after an option with a value" bash_completes 'voxtrel --root x tags ' trash
try "bash completes an option" bash_completes 'voxtrel tags learn --con' --contact
try "fish completes a group after an option with a value" fish_completes 'voxtrel --root x tags ' trash
try "the desktop entries are valid" desktop_entries_are_valid
try "the data for software centres are valid" metadata_are_valid
try "they name a desktop entry" metadata_name_a_desktop_entry
try "nothing is for all to write" nothing_is_for_all_to_write
try "the unpacked programs work" bash "$work/use.sh" "$tree" "$work/home"

# On a clean machine: installed with what it depends on and no more, used, and removed.
cat >"$work/install.sh" <<'EOF'
set -eux
export DEBIAN_FRONTEND=noninteractive
apt-get install -y --no-install-recommends /voxtrel.deb
bash /use.sh '' /home/ann
apt-get remove -y voxtrel
test ! -e /usr/bin/voxtrel
test ! -e /usr/share/voxtrel
test -n "$(find /home/ann/.local/share/voxtrel -name '*.wav')"
EOF
on_a_clean_machine() {
  local release
  release=$(. /etc/os-release && echo "$VERSION_CODENAME")
  mmdebstrap --variant=apt --mode=root \
    --customize-hook="cp '$deb' \"\$1/voxtrel.deb\"; cp '$work/use.sh' '$work/install.sh' \"\$1\"" \
    --customize-hook='chroot "$1" bash /install.sh' \
    "$release" /dev/null
}
if [ "$(id -u)" -eq 0 ] && command -v mmdebstrap >/dev/null; then
  try "on a clean machine it installs, works, and leaves the user's data" on_a_clean_machine
else
  echo "not tried: a clean machine needs mmdebstrap and root"
fi

echo "$passed passed, $failed failed"
[ $failed -eq 0 ]

#!/usr/bin/env bash
# Fails if the tree or the history holds what a reader of the project could not look up: notes of the
# workplace it was written at, numbers of its tickets, paths of one machine.
set -uo pipefail
cd "$(dirname "$0")/.."

if ! git rev-parse --git-dir >/dev/null; then
  echo "check_names.sh: needs a git clone" >&2
  exit 1
fi

# A bracket round one letter keeps each pattern from finding itself.
words='\b[Ss]pecification\b|\b[Ss]pec\b|\bParts? [0-9]+(\.[0-9]+)?\b|\b[s]pec\.md\b'
words+='|(^|[^A-Za-z])/(root|work)/'
words+='|\b[Ii]ssue #?[0-9]+\b'

failed=0
report() { # HEADING LINES
  [ -n "$2" ] || return 0
  printf '%s\n%s\n' "$1" "$2"
  failed=1
}

report 'Lines to reword:' "$(git grep -nIE "$words" -- . ':!*.svg' | cut -c1-160)"
report 'Files to rename:' "$(git ls-files | grep -E '(^|/)[s]pec(s|ification)?([._/-]|$)')"
report 'Commit messages to reword:' \
  "$(git log --no-merges --format='%h %s%n%b' | grep -nE "$words" | cut -c1-160)"
exit $failed

#!/usr/bin/env bash
# Finds using declarations that their own file does not use. The analyser cannot: it reads the files of
# a library as one, and counts the use in another file.
set -euo pipefail
cd "$(dirname "$0")/.."

found=$(git ls-files -z '*.cpp' | xargs -0 awk '
  function close_file() {
    for (name in used) if (!used[name]) print file ": " name
    delete used
  }
  FNR == 1 { close_file(); file = FILENAME }
  /^ *using [A-Za-z_:0-9]+;$/ { sub(/;$/, "", $2); sub(/.*::/, "", $2); used[$2] += 0; next }
  {
    for (name in used)
      if (!used[name] && match($0, "(^|[^A-Za-z0-9_])" name "([^A-Za-z0-9_]|$)")) used[name] = 1
  }
  END { close_file() }')
if [ -n "$found" ]; then
  printf 'Using declarations without a use:\n%s\n' "$found" >&2
  exit 1
fi

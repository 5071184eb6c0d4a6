#!/usr/bin/env bash
# Holds the picture of docs/architecture.md: includes point down only, only a host or a test names a
# back end, and a back end never knows another one.
set -euo pipefail
cd "$(dirname "$0")/.."

# Reads lines "FILE:#include "FOLDER/..."" and prints those that break the rule. The rooms stand in
# their order, the lowest first; rooms of one line do not know each other.
find_wrong() {
  awk -F: '
    function room_of(path, parts, count) {
      count = split(path, parts, "/")
      if (parts[1] == "backends" || parts[1] == "host") return parts[1] "/" parts[2]
      return count > 1 ? parts[1] : ""
    }
    BEGIN {
      rows = split("resources|platform|backends/text|framework|audio language|storage voicemath|" \
                   "maintenance|connection dialer tags|applet|host/machine|host/session host/calling|" \
                   "host/applet host/cli host/connection host/home host/panel|host/dial", row, "|")
      for (i = 1; i <= rows; ++i) {
        count = split(row[i], rooms, " ")
        for (j = 1; j <= count; ++j) level[rooms[j]] = i
      }
    }
    {
      from = room_of($1)
      to = $2
      sub(/^[^"]*"/, "", to)
      to = room_of(to)
      if (from == to) next
      if (!(to in level) && to !~ /^backends\//) { print; next }
      # For a back end the world ends with the framework.
      if (from ~ /^backends\// && from != "backends/text") {
        if (!(to in level) || level[to] > level["framework"]) print
      } else if (to ~ /^backends\// && to != "backends/text") {
        if (from !~ /^host\//) print
      } else if (!(from in level) || level[from] <= level[to]) {
        print
      }
    }'
}

# A check that finds nothing may be one that looks at nothing. So it first has to find these.
wrong='backends/qt/a.cpp:#include "backends/posix/b.h"
backends/vcard/a.h:#include "storage/b.h"
tags/a.cpp:#include "backends/sqlite/b.h"
storage/a.h:#include "tags/b.h"
platform/a.h:#include "backends/text/b.h"
tags/a.cpp:#include "connection/b.h"
dialer/a.cpp:#include "tags/b.h"
host/cli/a.cpp:#include "host/panel/b.h"
voicemath/a.cpp:#include "tests/support/b.h"'
right='backends/qt/a.cpp:#include "framework/b.h"
host/cli/a.cpp:#include "backends/sqlite/b.h"
tags/a.cpp:#include "tags/b.h"
storage/a.cpp:#include "backends/text/b.h"'
if [ "$(printf '%s\n%s\n' "$right" "$wrong" | find_wrong)" != "$wrong" ]; then
  echo 'The check of includes does not find what it should.' >&2
  exit 1
fi

found=$(git ls-files -z '*.h' '*.cpp' ':!tests' ':!benchmarks' |
  xargs -0 grep -HE '^ *#include "' | find_wrong)
if [ -n "$found" ]; then
  printf 'Includes that docs/architecture.md does not allow:\n%s\n' "$found" >&2
  exit 1
fi

#!/usr/bin/env bash
# Measures the speech mathematics and prints one table: times and their ratios to the product's, for
# the vectors that the processor has and for the narrowest ones, and instructions of one run on this
# processor, on 64-bit ARM and on 32-bit ARM without floating-point unit. Installs what it needs.
#
#   tools/benchmark.sh
set -euo pipefail
cd "$(dirname "$0")/.."

programs=build/benchmark/benchmarks
on_phone=build/arm64/benchmarks/voicemath_table_alone
on_arm=build/arm/benchmarks/voicemath_table_alone

say() { echo "$*" >&2; }

say 'Installing and building'
tools/install_packages.sh build test check phone benchmark >&2
tools/build.sh benchmark voicemath_table voicemath_table_narrow voicemath_table_alone \
  voicemath_table_alone_narrow instruction_counter
for processor in arm64 arm; do
  tools/build.sh $processor -DVOXTREL_BENCHMARKS=ON voicemath_table_alone
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# All instructions of a program, which is given a job, a way and how often to do it.
with_callgrind() { # PROGRAM JOB WAY TIMES
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" 2>&1 |
    sed -n 's/.*Collected : \([0-9]*\).*/\1/p'
}
with_plugin() { # EMULATOR PROGRAM JOB WAY TIMES
  local emulator=$1
  shift
  "$emulator" -plugin "$programs/libinstruction_counter.so" "$@" 2>&1 | tail -n 1
}
on_64_bits() { with_plugin qemu-aarch64 "$@"; }
on_32_bits() { with_plugin qemu-arm "$@"; }

# Instructions of one run: what many runs have more than one.
of_one() { # COUNTER TIMES TOGETHER PROGRAM JOB WAY
  local counter=$1 times=$2 together=$3 one many
  shift 3
  one=$("$counter" "$@" 1)
  many=$("$counter" "$@" $((times + 1)))
  echo $(((many - one) / times / together))
}

# Counts the instructions of a job. One call makes TOGETHER of it. PRODUCT and LITERAL say how often
# each way is run. On 32-bit ARM the literal dialog is left out, since it takes an hour.
count() { # JOB TOGETHER PRODUCT LITERAL
  local job=$1 together=$2 way times literal_on_arm=1
  [[ "$job" != 'test dialog'* ]] || literal_on_arm=0
  say "Counting the instructions of: $job"
  for way in product literal; do
    times=$3
    [ $way = product ] || times=$4
    [ "$times" -gt 0 ] || continue
    printf '%s;%s;%s;%s;%s;%s\n' "$job" $way \
      "$(of_one with_callgrind "$times" "$together" $programs/voicemath_table_alone "$job" $way)" \
      "$(of_one with_callgrind "$times" "$together" $programs/voicemath_table_alone_narrow "$job" $way)" \
      "$(of_one on_64_bits "$times" "$together" $on_phone "$job" $way)" \
      "$([ $way = literal ] && [ $literal_on_arm = 0 ] && echo - ||
        of_one on_32_bits 1 "$together" $on_arm "$job" $way)"
  done
}

say 'Measuring'
$programs/voicemath_table 2>"$work/messages" >"$work/wide"
$programs/voicemath_table_narrow 2>"$work/messages" >"$work/narrow"
{
  count transform 8 200 20
  count 'endpoint detection' 1 200 20
  count utterance 1 20 2
  count preparation 100 2 0
  count 'preparation, full names' 100 2 0
  count comparison 1 2000 200
  count 'comparison, full names' 100 20 2
  count 'comparison, first names' 100 20 2
  count 'test dialog' 1 10 1
  count 'test dialog, full names' 1 10 1
} >"$work/counts"

# The tables have columns of fixed width. The name of a job stands only in its first line.
awk '
  function trimmed(text) { sub(/ +$/, "", text); sub(/^ +/, "", text); return text }
  FILENAME ~ /counts$/ {
    split($0, part, ";")
    wide_count[part[1], part[2]] = part[3]
    narrow_count[part[1], part[2]] = part[4]
    phone_count[part[1], part[2]] = part[5]
    arm_count[part[1], part[2]] = part[6]
    next
  }
  FNR == 1 { next }
  {
    if (substr($0, 1, 26) !~ /^ *$/) job = trimmed(substr($0, 1, 26))
    way = trimmed(substr($0, 28, 34))
    split(trimmed(substr($0, 62)), number, / +/)
  }
  FILENAME ~ /wide$/ {
    order[++lines] = job SUBSEP way
    wide[job, way] = number[1]; wide_ratio[job, way] = number[3]
    next
  }
  { narrow[job, way] = number[1]; narrow_ratio[job, way] = number[3] }
  function shown(value) { return value == "" ? "-" : value }
  END {
    print "| job | way | wide, us | x | narrow, us | x | instructions, wide | narrow | ARM, 64-bit | 32-bit |"
    print "| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |"
    for (line = 1; line <= lines; ++line) {
      at = order[line]
      split(at, name, SUBSEP)
      printf "| %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |\n", name[1], name[2], wide[at], \
        wide_ratio[at], narrow[at], narrow_ratio[at], shown(wide_count[at]), \
        shown(narrow_count[at]), shown(phone_count[at]), shown(arm_count[at])
    }
  }
' "$work/counts" "$work/wide" "$work/narrow"

#!/usr/bin/env bash
# Configures and builds one preset without chatter. If that fails, shows all of the output.
#
#   tools/build.sh PRESET [-DNAME=VALUE...] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
options=()
targets=()
for argument in "$@"; do
  case $argument in
    -D*) options+=("$argument") ;;
    *) targets+=(--target "$argument") ;;
  esac
done

if command -v ccache >/dev/null; then
  # Objects are shared between clones of the project, whatever folder each lies in.
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
  export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
fi

mkdir -p build
log=build/$preset.log
jobs=$(nproc)
if ! { cmake --preset "$preset" "${options[@]}" &&
  cmake --build --preset "$preset" --parallel "$jobs" "${targets[@]}"; } >"$log" 2>&1 </dev/null; then
  cat "$log" >&2
  echo "Building '$preset' failed; the lines above are also in $log" >&2
  exit 1
fi

#!/usr/bin/env bash
# Counts what short commands cost, for docs/performance.md. Installs what it needs.
#
#   tools/count_starts.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install_packages.sh build benchmark >&2
tools/build.sh release voxtrel
exec python3 benchmarks/count_starts.py --program "$PWD/build/release/host/cli/voxtrel" \
  --samples "$PWD/samples"

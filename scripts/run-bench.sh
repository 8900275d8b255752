#!/usr/bin/env bash
# Runs every benchmark program of the build and prints its figures.
set -euo pipefail
build=${1:-build}
status=0
for b in "$build"/bin/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b")"
  "$b" || status=1
done
exit $status

#!/usr/bin/env bash
# The main job: runs the shipped example model on the shipped sample data.
set -euo pipefail
build=${1:-build}
echo "The example run will execute examples/*.apc with $build/bin/mbrun on sample data."

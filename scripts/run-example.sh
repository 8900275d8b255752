#!/usr/bin/env bash
# The main job: runs the shipped example model on the shipped sample scenes. For
# every scene it computes an NDVI raster and a statistics table in out/.
set -euo pipefail
build=${1:-build}
root=$(cd "$(dirname "$0")/.." && pwd)
scenes="$root/examples/data/scenes"
out="$root/$build/out"
mkdir -p "$out"
model="$root/$build/Model/apc/scene_ndvi.apc"

echo "== Inputs of $model"
"$root/$build/bin/mbrun" "$model" --list
echo
echo "== Running it on $scenes"
"$root/$build/bin/mbrun" "$model" \
  --set "Scene folders={\"$scenes\":{\"subdir\":\"0\",\"enabled\":\"1\"}}" \
  --set "Output folder=$out"
echo
echo "== Outputs in $out"
ls -l "$out"

echo
echo "== The same scenes through a model nested in another ($build/Model/apc/batch_nested.apc)"
"$root/$build/bin/mbrun" "$root/$build/Model/apc/batch_nested.apc" \
  --set "Scene folders={\"$scenes\":{\"subdir\":\"0\",\"enabled\":\"1\"}}" \
  --set "Output folder=$out" | tail -n 3
ls "$out"/*_nested.tif

#!/usr/bin/env bash
# Regenerates the sample data from formulas: awk writes ASCII grids, GDAL's tools turn
# them into compressed GeoTIFFs in EPSG:32633 (UTM 33N). Usage: make-sample-data.sh
# [target folder, default: this script's folder]. The noise comes from awk's rand(),
# so another awk gives slightly different pixels.
set -euo pipefail
out=${1:-$(cd "$(dirname "$0")" && pwd)}
tmp=$(mktemp -d)
mkdir -p "$out/scenes"

# One band of a 64x64 scene tile at 10 m, columns starting at x0 (metres east of
# 500000), as reflectance x 10000: a field pattern mixing soil and vegetation, and a
# meandering river. The pattern is a function of map position, so tiles join up.
band() { # tile x0, band 1..4 (blue, green, red, NIR)
  awk -v x0="$1" -v b="$2" 'BEGIN {
    split("1200 1500 1800 2500", soil, " "); split("300 600 400 3800", veg, " ");
    split("500 450 300 150", water, " ");
    srand(b * 1000 + x0);
    printf "ncols 64\nnrows 64\nxllcorner %d\nyllcorner 3999360\ncellsize 10\n", 500000 + x0;
    for (r = 0; r < 64; r++) {
      for (c = 0; c < 64; c++) {
        x = x0 + c * 10 + 5; y = 640 - r * 10 - 5;
        v = 0.5 + 0.5 * sin(x / 150) * cos(y / 120);
        river = 320 + 100 * sin(x / 300);
        value = (y > river - 25 && y < river + 25) ? water[b] : soil[b] + v * (veg[b] - soil[b]);
        printf "%d ", value + int((rand() - 0.5) * 100);
      }
      printf "\n";
    }
  }'
}

for i in 1 2 3; do
  x0=$(( (i - 1) * 640 ))
  for b in 1 2 3 4; do band "$x0" "$b" > "$tmp/b$b.asc"; done
  gdalbuildvrt -q -separate "$tmp/scene.vrt" "$tmp"/b1.asc "$tmp"/b2.asc "$tmp"/b3.asc "$tmp"/b4.asc
  gdal_translate -q -ot UInt16 -a_srs EPSG:32633 -colorinterp blue,green,red,undefined \
    -co COMPRESS=DEFLATE -co PREDICTOR=2 "$tmp/scene.vrt" "$out/scenes/scene_0$i.tif"
done

# A 100x100 Float32 elevation model at 10 m over the first tiles: two round hills on a
# gentle rise to the east, in metres.
awk 'BEGIN {
  printf "ncols 100\nnrows 100\nxllcorner 500000\nyllcorner 3999000\ncellsize 10\n";
  for (r = 0; r < 100; r++) {
    for (c = 0; c < 100; c++) {
      x = c * 10 + 5; y = 1000 - r * 10 - 5;
      z = 200 + 0.02 * x + 80 * exp(-((x - 300)^2 + (y - 400)^2) / 45000) \
                         + 50 * exp(-((x - 700)^2 + (y - 650)^2) / 28800);
      printf "%.2f ", z;
    }
    printf "\n";
  }
}' > "$tmp/dem.asc"
gdal_translate -q -ot Float32 -a_srs EPSG:32633 -co COMPRESS=DEFLATE -co PREDICTOR=3 "$tmp/dem.asc" "$out/dem.tif"

# An area of interest across the first two tiles.
cat > "$tmp/aoi.csv" <<'CSV'
name,WKT
"Study area","POLYGON ((500150 3999450,500700 3999400,501050 3999500,500950 3999700,500500 3999900,500150 3999800,500150 3999450))"
CSV
rm -f "$out/aoi.geojson"
ogr2ogr -f GeoJSON -a_srs EPSG:32633 -oo KEEP_GEOM_COLUMNS=NO "$out/aoi.geojson" "$tmp/aoi.csv"
rm -rf "$tmp"

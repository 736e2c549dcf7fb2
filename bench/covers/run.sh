#!/usr/bin/env bash
# Times loading 500 large JPEG covers (about 1000 to 1400 pixels a side, some
# progressive) straight to 150 by 150 pixels: SImage::LoadScaled against a
# plain libjpeg-turbo decode at the same scale plus the same resample (the
# floor), both inside bench_covers, and `vipsthumbnail -s '150x150!'` over
# the same files in one call. Prints milliseconds per image for each.
# The goal is LoadScaled within 1.2 times the floor.
#
#   bench/covers/run.sh [ROUNDS]          (default 3 rounds inside bench_covers)
#
# Environment:
#   BUILD            build folder holding bin/bench_covers (default build/);
#                    the target is built there first
#   BENCH_COVERS     where the generated collection is kept between runs
#                    (default ${XDG_CACHE_HOME:-~/.cache}/melkora-bench/covers)
#   MAKE_COLLECTION  the tree generator (default ../shared/tools/make_collection.py beside the checkout)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD:-$repo/build}
cache=${BENCH_COVERS:-${XDG_CACHE_HOME:-$HOME/.cache}/melkora-bench/covers}
generator=${MAKE_COLLECTION:-$repo/../shared/tools/make_collection.py}
"$repo/scripts/install-deps.sh" --bench >&2
rounds=${1:-3}
count=500
root=$cache/collection
manifest=$root.covers.tsv

# The collection: made once, 700 distinct JPEG covers in its pool, most of
# them 1000 to 1400 pixels; about one in ten is progressive.
if [ ! -f "$manifest" ]; then
    mkdir -p "$cache"
    echo "making the collection in $root (once, several minutes)..." >&2
    python3 "$generator" "$root" --genres 6 --artists-per-genre 20 --albums-per-artist 5 \
        --tracks-per-album 1 --cover-fraction 1.0 --pool-jpeg 700 --pool-png 0 --seed 7 \
        --jobs 2 --force >&2
fi

# 500 distinct JPEG files whose width is 1000 to 1400 pixels, by name.
list=$cache/covers.list
awk -F'\t' 'NR > 1 && $5 == "jpg" && $3 >= 1000 && $3 <= 1400 { print $2 }' "$manifest" |
    sort -u | head -n "$count" > "$list"
found=$(wc -l < "$list")
if [ "$found" -lt "$count" ]; then
    echo "only $found covers of 1000 to 1400 pixels in $manifest; remove $cache and run again" >&2
    exit 1
fi
# Progressive files are made here when the generator made none.
if ! xargs -d '\n' identify -format '%[interlace]\n' < "$list" | grep -q JPEG; then
    progressive=$cache/progressive
    mkdir -p "$progressive"
    head -n 50 "$list" | while read -r path; do
        out=$progressive/$(basename "$path")
        [ -f "$out" ] || convert "$path" -interlace Plane "$out"
    done
    { find "$progressive" -name '*.jpg' | sort; tail -n +51 "$list"; } > "$list.new"
    mv "$list.new" "$list"
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
fi
cmake --build "$build" -j2 --target bench_covers >&2

"$build/bin/bench_covers" "$list" "$rounds"

# vipsthumbnail: one call over the same files (warm cache), writing its
# thumbnails in vips' own format, which costs next to nothing to write.
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
mapfile -t files < "$list"
start=$(date +%s%N)
vipsthumbnail -s '150x150!' -o "$out/%s.v" "${files[@]}"
end=$(date +%s%N)
awk -v ns=$((end - start)) -v n="$count" \
    'BEGIN { printf "vipsthumbnail:       %.3f ms per image (one call, total / %d)\n", ns / 1e6 / n, n }'

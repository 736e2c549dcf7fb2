#!/usr/bin/env bash
# Times the main window's picture view on the headless platform: opening a
# folder of 500 album folders, each with a JPEG cover of 1000 to 1400
# pixels beside it (the folder view lists it and makes every card's cover
# on all cores, the thumbnails take the cards and draw the first frame),
# the first time, with the cover cache empty, and again with every cover in
# the cache; then one frame of the thumbnails at 1920 by 1080, whole, and
# the frame of a hover moving between two cards. Medians of ROUNDS rounds
# (50 frames each).
#
#   bench/ui/run.sh [ROUNDS]          (default 5)
#
# Goals: the first open under 1 s, the open with the cache under 100 ms, a
# frame under 8 ms.
#
# Environment:
#   BUILD            build folder holding bin/bench_ui (default build/); the
#                    target is built there first
#   BENCH_UI         where the albums are made once (default /tmp/melkora-bench-ui)
#   MAKE_COLLECTION  the cover generator (default ../shared/tools/make_collection.py beside the checkout)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
. "$repo/bench/common.sh"
rounds=${1:-5}
work=${BENCH_UI:-/tmp/melkora-bench-ui}
generator=${MAKE_COLLECTION:-$repo/../shared/tools/make_collection.py}
count=500

# The covers: a small collection's pool of distinct JPEG pictures, made
# once; the albums take those of 1000 to 1400 pixels in turn, each a copy
# of its own, beside a folder holding one track.
if [ ! -f "$work/albums.ready" ]; then
    mkdir -p "$work"
    if [ ! -f "$work/pool-tree.covers.tsv" ]; then
        echo "making the covers in $work (once)..." >&2
        python3 "$generator" "$work/pool-tree" --genres 1 --artists-per-genre 1 \
            --albums-per-artist 30 --tracks-per-album 1 --cover-fraction 1.0 \
            --pool-jpeg 30 --pool-png 0 --seed 19 --jobs 2 --force >&2
    fi
    mapfile -t pool < <(awk -F'\t' 'NR > 1 && $5 == "jpg" && $3 >= 1000 && $3 <= 1400 { print $2 }' \
        "$work/pool-tree.covers.tsv" | sort -u)
    if [ "${#pool[@]}" -lt 10 ]; then
        echo "only ${#pool[@]} covers of 1000 to 1400 pixels; remove $work and run again" >&2
        exit 1
    fi
    rm -rf "$work/root"
    albums=$work/root/Albums
    mkdir -p "$albums"
    for ((i = 0; i < count; ++i)); do
        name=$(printf 'Album %03d' "$i")
        mkdir -p "$albums/$name"
        : > "$albums/$name/01 Track.mp3"
        cp "${pool[i % ${#pool[@]}]}" "$albums/$name.jpg"
    done
    touch "$work/albums.ready"
fi

bench_build bench_ui
# The covers are read once so that every round finds them in memory.
cat "$work"/root/Albums/*.jpg > /dev/null
echo "rounds: $rounds; $count album folders with JPEG covers of 1000 to 1400 pixels; medians"
MELKORA_CONFIG_HOME=$(mktemp -d) "$build/bin/bench_ui" "$work/root/Albums" "$work/cover-cache" "$rounds"

#!/usr/bin/env bash
# Times the Book of a collection of about 5,000 folders (10 genres, 450
# artists, 4,500 albums, covers beside nine folders in ten): once with the
# pictures made on every core while the page is written, once on one
# thread, and checks that both runs wrote the same bytes (page, covers and
# banners). Prints the wall time of each run and their ratio.
#
#   bench/book/run.sh [ROUNDS]            (default 1; medians over rounds)
#
# Environment:
#   BUILD            build folder holding bin/bench_book (default build/)
#   BENCH_BOOK       where the generated collection is kept between runs
#                    (default ${XDG_CACHE_HOME:-~/.cache}/melkora-bench/book)
#   MAKE_COLLECTION  the tree generator (default ../shared/tools/make_collection.py beside the checkout)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD:-$repo/build}
cache=${BENCH_BOOK:-${XDG_CACHE_HOME:-$HOME/.cache}/melkora-bench/book}
generator=${MAKE_COLLECTION:-$repo/../shared/tools/make_collection.py}
"$repo/scripts/install-deps.sh" --bench >&2
rounds=${1:-1}
root=$cache/collection

if [ ! -f "$root.covers.tsv" ]; then
    mkdir -p "$cache"
    echo "making the collection in $root (once, several minutes)..." >&2
    python3 "$generator" "$root" --genres 10 --artists-per-genre 45 --albums-per-artist 10 \
        --tracks-per-album 3 --cover-fraction 0.9 --pool-jpeg 300 --pool-png 60 --seed 11 \
        --jobs 2 --force >&2
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
fi
cmake --build "$build" -j2 --target bench_book >&2

# Warm cache: every file of the tree read once.
find -L "$root" -type f -print0 | xargs -0 cat > /dev/null

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
"$build/bin/bench_book" "$root" "$out" "$rounds"

#!/usr/bin/env bash
# Reading and saving huge playlists through PPlaylistStore, as the panel and
# `melkora-cli playlist` do: a playlist of 1,000,000 entries (paths of about
# 40 bytes, 43 MB) and one of a single line of 10 MB, written once into a
# temporary root. Medians of RUNS runs. The goal is reading the million
# entries in under 2 s.
#
#   bench/playlist/run.sh [RUNS]          (default 5)
#
# Environment:
#   BUILD    build folder (default build/); bench_playlist is built there
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
source "$repo/bench/common.sh"
runs=${1:-5}
bench_build bench_playlist
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
echo "runs: $runs, medians in milliseconds"
"$build/bin/bench_playlist" "$root" "$runs" 1000000 10000000 | awk '
    $1 == "load" { printf "read %d entries: %s ms\n", $2, $3 }
    $1 == "save" { printf "save %d entries: %s ms\n", $2, $3 }
    $1 == "line" { printf "read one line of %d bytes: %s ms\n", $2, $3 }'

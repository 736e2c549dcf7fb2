#!/usr/bin/env bash
# Opens the Book of a collection in Chromium, headless, and checks the
# screenshot: the cells of the first two levels (AAD0DA, dbd0a9), the
# banners' lighter fill (b2d5de) and the covers' own colours must show.
# Chromium (Debian's package) and ImageMagick are installed here, only when
# this check runs; the suite itself never needs them.
#
#   tests/pages/book_in_chromium.sh [ROOT] [SCREENSHOT]
#
# ROOT defaults to the collection of bench/book (made by bench/book/run.sh);
# the Book is written there as Book.htm. SCREENSHOT defaults to
# build/book-screenshot.png.
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD:-$repo/build}
root=${1:-${BENCH_BOOK:-${XDG_CACHE_HOME:-$HOME/.cache}/melkora-bench/book}/collection}
shot=${2:-$build/book-screenshot.png}

need=()
command -v chromium > /dev/null || need+=(chromium)
command -v convert > /dev/null || need+=(imagemagick)
if [ ${#need[@]} -gt 0 ]; then
    sudo_cmd=()
    [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    "${sudo_cmd[@]}" apt-get update -qq
    "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${need[@]}"
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
fi
cmake --build "$build" -j2 --target melkora-cli >&2
"$build/bin/melkora-cli" book "$root"

sandbox=()
[ "$(id -u)" -eq 0 ] && sandbox=(--no-sandbox)
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
chromium --headless "${sandbox[@]}" --disable-gpu --hide-scrollbars --user-data-dir="$profile" \
    --window-size=900,1400 --screenshot="$shot" "file://$root/Book.htm" 2> /dev/null
[ -s "$shot" ] || { echo "no screenshot was written" >&2; exit 1; }

histogram=$(convert "$shot" -format %c histogram:info:-)
count() { # pixels of one colour, given as RRGGBB
    echo "$histogram" | grep -i "#$1\b" | awk '{ sum += $1 } END { print sum + 0 }'
}
cells=$(count AAD0DA)
cells2=$(count DBD0A9)
banner=$(count B2D5DE)
colours=$(echo "$histogram" | wc -l)
echo "screenshot: $shot"
echo "level-0 cell pixels: $cells, level-1 cell pixels: $cells2, banner fill pixels: $banner, distinct colours: $colours"
if [ "$cells" -lt 1000 ] || [ "$cells2" -lt 1000 ] || [ "$banner" -lt 200 ] || [ "$colours" -lt 500 ]; then
    echo "the screenshot lacks covers or banners" >&2
    exit 1
fi
echo "covers and banners show"

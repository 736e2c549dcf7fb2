#!/usr/bin/env bash
# Times the desktop program's start on the large tree of make_collection.py
# (6,000 folders, 67,000 files), without the splash, under a virtual X
# display: from the process's start to the first folder shown ("ready" of
# MELKORA_TRACE), and the resident memory once the root is shown. The first
# round starts with an empty cover cache, the others with a full one.
# Medians of ROUNDS rounds after the first.
#
#   bench/start/run.sh [ROUNDS]        (default 5)
#
# Goals: ready under 1 s, resident memory under 100 MB. The memory is given
# twice: all resident pages, and the private ones (RssAnon); the rest are
# the shared libraries' mapped files (WebKitGTK, GTK, GStreamer).
#
# Environment: BUILD (default build/), BENCH_TREE (where the tree is made
# once, default /tmp/melkora-bench-enumerate), MAKE_COLLECTION.
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
# The program needs a display: the script runs itself again on a virtual one.
if [ -z "${MELKORA_BENCH_DISPLAY:-}" ]; then
    exec env MELKORA_BENCH_DISPLAY=1 xvfb-run -a -s "-screen 0 1920x1080x24" "$0" "$@"
fi
. "$repo/bench/common.sh"
rounds=${1:-5}
bench_large_tree
bench_build melkora

state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT

one_round() {
    local log="$state/log"
    : >"$log"
    env HOME="$state/home" XDG_CACHE_HOME="$state/cache" MELKORA_CONFIG_HOME="$state/settings" \
        MELKORA_NO_SPLASH=1 MELKORA_TRACE=1 MELKORA_AUDIO_SINK=fake GDK_BACKEND=x11 \
        "$build/bin/melkora" --root "$root" 2>"$log" &
    local pid=$!
    for _ in $(seq 200); do
        grep -q '^ready ' "$log" && break
        sleep 0.05
    done
    sleep 1
    local ready rss
    ready=$(awk '/^ready /{print $2; exit}' "$log")
    rss=$(awk '/^VmRSS:/{r = int($2 / 1024)} /^RssAnon:/{a = int($2 / 1024)} END {print r "/" a}' \
        "/proc/$pid/status")
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    echo "$ready $rss"
}

first=$(one_round)
echo "first start (empty cover cache): ready ${first% *} ms, resident ${first#* } MB (all/private)"
results=()
for _ in $(seq "$rounds"); do
    results+=("$(one_round)")
done
printf '%s\n' "${results[@]}" | sort -n | awk -v n="$rounds" '
    { r[NR] = $1; m[NR] = $2 }
    END { printf "later starts (median of %d): ready %d ms, resident %s MB (all/private)\n", n, r[int((n + 1) / 2)], m[int((n + 1) / 2)] }'

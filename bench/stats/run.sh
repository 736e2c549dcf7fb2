#!/usr/bin/env bash
# Times `melkora-cli stats ROOT` (the statistics of every folder, counted in
# one walk of the tree, printed as the table and its totals) against
# `find ROOT -type f | wc -l` on the same large tree, in the same run, with a
# warm cache; prints the median of several runs of each and the ratio.
# The goal is to be faster than find (a ratio under 1.0); a bare readdir
# walk that trusts d_type is about 0.6 of find here.
#
#   bench/stats/run.sh [RUNS]          (default 7 runs of each)
#
# Environment:
#   BUILD            build folder holding bin/melkora-cli (default build/);
#                    the target is built there first
#   BENCH_TREE       where the generated tree is kept between runs (default
#                    /tmp/melkora-bench-enumerate, shared with bench/enumerate)
#   MAKE_COLLECTION  the tree generator (default ../shared/tools/make_collection.py beside the checkout)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
source "$repo/bench/common.sh"
runs=${1:-7}
bench_large_tree
folders=$(find "$root" -type d | wc -l)
bench_build melkora-cli
cli="$build/bin/melkora-cli"

# Warm the cache and check that the table has a line per visible folder
# plus the totals line (the generator makes no hidden folders).
lines=$("$cli" stats "$root" | wc -l)
if [ "$lines" -ne $((folders + 1)) ]; then
    echo "stats printed $lines lines for $folders folders (expected one more, the totals)" >&2
    exit 1
fi

find_wall=()
find_cpu=()
stats_wall=()
stats_cpu=()
for _ in $(seq "$runs"); do
    read -r wall cpu < <(measure "find '$root' -type f | wc -l")
    find_wall+=("$wall")
    find_cpu+=("$cpu")
    read -r wall cpu < <(measure "'$cli' stats '$root' | wc -l")
    stats_wall+=("$wall")
    stats_cpu+=("$cpu")
done

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
fw=$(median "${find_wall[@]}")
fc=$(median "${find_cpu[@]}")
sw=$(median "${stats_wall[@]}")
sc=$(median "${stats_cpu[@]}")

echo "tree:       $root ($files files in $folders folders)"
echo "totals:     $("$cli" stats "$root" | tail -n 1)"
echo "runs:       $runs of each, alternating, warm cache; medians in milliseconds"
printf '%-11s %10s %10s\n' "" "wall" "cpu"
printf '%-11s %10s %10s\n' "find | wc" "$fw" "$fc"
printf '%-11s %10s %10s\n' "stats" "$sw" "$sc"
printf '%-11s %10s %10s   (goal: under 1.0)\n' "ratio" "$(ratio "$sw" "$fw")" "$(ratio "$sc" "$fc")"

#!/usr/bin/env bash
# Times a recursive SDisk::Enumerate of every folder and file of a large
# collection against `find ROOT | wc -l` on the same tree, in the same run,
# with a warm cache; prints the median of several runs of each and the ratio.
# The goal is an Enumerate within 1.5 times find.
#
#   bench/enumerate/run.sh [RUNS]          (default 7 runs of each)
#
# Environment:
#   BUILD            build folder holding bin/bench_enumerate (default build/);
#                    the target is built there first
#   BENCH_TREE       where the generated tree is kept between runs
#                    (default /tmp/melkora-bench-enumerate)
#   MAKE_COLLECTION  the tree generator (default ../shared/tools/make_collection.py beside the checkout)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
source "$repo/bench/common.sh"
runs=${1:-7}
bench_large_tree
bench_build bench_enumerate
bench="$build/bin/bench_enumerate"

# Warm the cache and check that both see the same tree (find also prints ROOT).
find_entries=$(find "$root" | wc -l)
read -r enumerate_entries _ < <("$bench" "$root")
if [ "$enumerate_entries" -ne $((find_entries - 1)) ]; then
    echo "entry counts differ: find $find_entries (ROOT included), Enumerate $enumerate_entries" >&2
    exit 1
fi

find_wall=()
find_cpu=()
enumerate_wall=()
enumerate_cpu=()
for _ in $(seq "$runs"); do
    read -r wall cpu < <(measure "find '$root' | wc -l")
    find_wall+=("$wall")
    find_cpu+=("$cpu")
    read -r wall cpu < <(measure "'$bench' '$root'")
    enumerate_wall+=("$wall")
    enumerate_cpu+=("$cpu")
done

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
fw=$(median "${find_wall[@]}")
fc=$(median "${find_cpu[@]}")
ew=$(median "${enumerate_wall[@]}")
ec=$(median "${enumerate_cpu[@]}")

echo "tree:       $root ($files files, $((find_entries - 1)) entries below ROOT)"
echo "runs:       $runs of each, alternating, warm cache; medians in milliseconds"
printf '%-11s %10s %10s\n' "" "wall" "cpu"
printf '%-11s %10s %10s\n' "find | wc" "$fw" "$fc"
printf '%-11s %10s %10s\n' "Enumerate" "$ew" "$ec"
printf '%-11s %10s %10s   (goal: 1.5 or less)\n' "ratio" "$(ratio "$ew" "$fw")" "$(ratio "$ec" "$fc")"

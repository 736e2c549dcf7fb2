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
build=${BUILD:-$repo/build}
cache=${BENCH_TREE:-/tmp/melkora-bench-enumerate}
generator=${MAKE_COLLECTION:-$repo/../shared/tools/make_collection.py}
"$repo/scripts/install-deps.sh" --bench >&2
runs=${1:-7}
root=$cache/tree
min_files=50000

# The tree: made once (about 60,000 tracks and their companions), then reused.
if [ ! -f "$cache/ready" ]; then
    mkdir -p "$cache"
    echo "making the tree in $root (once)..." >&2
    python3 "$generator" "$root" --preset large --pool-jpeg 40 --pool-png 10 --jobs 2 \
        --force >&2
    touch "$cache/ready"
fi
files=$(find "$root" -type f | wc -l)
if [ "$files" -lt "$min_files" ]; then
    echo "the tree in $root holds only $files files; remove $cache and run again" >&2
    exit 1
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
fi
cmake --build "$build" -j2 --target bench_enumerate >&2
bench="$build/bin/bench_enumerate"

median() { printf '%s\n' "$@" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# Wall-clock and processor time (user + system), in milliseconds, of one
# command line run by bash; prints "wall cpu".
TIMEFORMAT='%3R %3U %3S'
measure() {
    local report
    report=$({ time bash -c "$1" > /dev/null 2>&1; } 2>&1)
    awk '{ printf "%.1f %.1f\n", $1 * 1000, ($2 + $3) * 1000 }' <<< "$report"
}

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

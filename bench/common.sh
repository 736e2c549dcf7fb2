# Shared by the bench/*/run.sh scripts: the large synthetic tree, building
# one target, medians and timing. Source it after setting `repo`.
#
# Environment:
#   BUILD            build folder (default build/)
#   BENCH_TREE       where the large tree is kept between runs
#                    (default /tmp/melkora-bench-enumerate)
#   MAKE_COLLECTION  the tree generator (default ../shared/tools/make_collection.py beside the checkout)

build=${BUILD:-$repo/build}
"$repo/scripts/install-deps.sh" --bench >&2

# Makes the large tree once (about 67,000 files in 6,000 folders) and sets
# `root` and `files`; stops the script when the tree is too small.
bench_large_tree() {
    local cache=${BENCH_TREE:-/tmp/melkora-bench-enumerate}
    local generator=${MAKE_COLLECTION:-$repo/../shared/tools/make_collection.py}
    root=$cache/tree
    if [ ! -f "$cache/ready" ]; then
        mkdir -p "$cache"
        echo "making the tree in $root (once)..." >&2
        python3 "$generator" "$root" --preset large --pool-jpeg 40 --pool-png 10 --jobs 2 \
            --force >&2
        touch "$cache/ready"
    fi
    files=$(find "$root" -type f | wc -l)
    if [ "$files" -lt 50000 ]; then
        echo "the tree in $root holds only $files files; remove $cache and run again" >&2
        exit 1
    fi
}

# Configures build/ when needed and builds one target there.
bench_build() {
    if [ ! -f "$build/CMakeCache.txt" ]; then
        cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
    fi
    cmake --build "$build" -j2 --target "$1" >&2
}

median() { printf '%s\n' "$@" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# Wall-clock and processor time (user + system), in milliseconds, of one
# command line run by bash; prints "wall cpu".
TIMEFORMAT='%3R %3U %3S'
measure() {
    local report
    report=$({ time bash -c "$1" > /dev/null 2>&1; } 2>&1)
    awk '{ printf "%.1f %.1f\n", $1 * 1000, ($2 + $3) * 1000 }' <<< "$report"
}

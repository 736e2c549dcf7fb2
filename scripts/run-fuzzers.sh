#!/usr/bin/env bash
# Runs each libFuzzer target for a number of seconds, keeping its corpus in
# fuzz-corpus/<target>/ so that later runs start from what was found.
#   run-fuzzers.sh BIN_DIR SECONDS [TARGET...]
set -euo pipefail
bin_dir=$1
seconds=$2
shift 2
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for path in "$bin_dir"/*_fuzz; do
        targets+=("$(basename "$path")")
    done
fi
root=$(cd "$(dirname "$0")/.." && pwd)
for target in "${targets[@]}"; do
    corpus="$root/fuzz-corpus/$target"
    seeds="$root/fuzz/seeds/${target%_fuzz}"
    mkdir -p "$corpus"
    echo "== $target for ${seconds}s"
    args=("$corpus")
    [ -d "$seeds" ] && args+=("$seeds")
    "$bin_dir/$target" -max_total_time="$seconds" -print_final_stats=1 -rss_limit_mb=2048 \
        -timeout=10 "${args[@]}"
done

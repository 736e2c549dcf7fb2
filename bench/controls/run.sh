#!/usr/bin/env bash
# Times the list control on the headless platform: a 400 x 600 window whose
# list holds 100,000 rows, from creating it and handing the list its rows
# to the first frame the display draws, and a page of scrolling (Page Down:
# the key, the scroll and the frame of the damaged area, median of 50
# pages). Prints the medians of RUNS runs.
#
#   bench/controls/run.sh [RUNS]          (default 7)
#
# Environment:
#   BUILD   build folder holding bin/bench_controls (default build/); the
#           target is built there first
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
. "$repo/bench/common.sh"
runs=${1:-7}

bench_build bench_controls

echo "runs: $runs; medians"
MELKORA_CONFIG_HOME=$(mktemp -d) "$build/bin/bench_controls" "$runs"

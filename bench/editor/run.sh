#!/usr/bin/env bash
# Times the code editor on the headless platform with a text of 200,000
# lines and 10 MB: opening it (the file read, checked as UTF-8 and split
# into lines, and the first frame of an 800 x 600 window with line numbers
# and colouring on), and typing one character at line 150,000 (the key's
# message, the edit and the frame, clipped to the damaged line). Prints the
# medians of RUNS runs (20 characters typed in each).
#
#   bench/editor/run.sh [RUNS]          (default 7)
#
# Environment:
#   BUILD   build folder holding bin/bench_editor (default build/); the
#           target is built there first
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
. "$repo/bench/common.sh"
runs=${1:-7}

bench_build bench_editor

echo "runs: $runs; medians"
MELKORA_CONFIG_HOME=$(mktemp -d) TMPDIR=$(mktemp -d) "$build/bin/bench_editor" "$runs"

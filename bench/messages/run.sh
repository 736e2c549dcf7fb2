#!/usr/bin/env bash
# Times the window core on the headless platform: SendMessage and
# PostMessage throughput (posting on the owner's thread, and from another
# thread to a window whose loop drains it), and the time to create a
# 1000 x 800 window with 500 bordered, coloured children and to paint it
# once (one double-buffered frame); then, in a 1024 x 768 window with 500
# children and one ticker (a media control scrolling its title on the fake
# clock), the time of one ticker step with the frame the display draws,
# clipped to the damaged area, and of a frame of the whole window. Prints
# the medians of RUNS runs.
#
#   bench/messages/run.sh [RUNS]          (default 7)
#
# Environment:
#   BUILD   build folder holding bin/bench_messages (default build/); the
#           target is built there first
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
. "$repo/bench/common.sh"
runs=${1:-7}

bench_build bench_messages

echo "runs: $runs; medians"
MELKORA_CONFIG_HOME=$(mktemp -d) "$build/bin/bench_messages" "$runs"

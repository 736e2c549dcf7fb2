#!/usr/bin/env bash
# The player's memory over a long run: `melkora-cli play --repeat --shuffle
# --sink fake` over 500 very short tracks (0.05 s each, WAV, Ogg Vorbis and
# MP3 in turn, made once by GStreamer's own elements), with the resident
# memory of the process read after the 50th, 100th, ... track opened. Fails
# (exit 1) when the memory after the last mark lies more than 5 MB above
# the memory after the 50th.
#
#   bench/player_memory/run.sh [TRACKS_PLAYED]     (default 500)
#
# Environment:
#   BUILD        build folder (default build/); melkora-cli is built there
#   BENCH_MEDIA  where the tracks are made once (default /tmp/melkora-bench-player-memory)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
source "$repo/bench/common.sh"
played=${1:-500}
media=${BENCH_MEDIA:-/tmp/melkora-bench-player-memory}
count=500

if [ ! -f "$media/ready" ]; then
    mkdir -p "$media"
    encoders=("wavenc" "vorbisenc ! oggmux" "lamemp3enc ! xingmux ! id3v2mux")
    extensions=(wav ogg mp3)
    for kind in 0 1 2; do
        gst-launch-1.0 -q audiotestsrc num-buffers=5 samplesperbuffer=441 \
            ! audio/x-raw,rate=44100,channels=1 ! audioconvert ! ${encoders[$kind]} \
            ! filesink location="$media/track.${extensions[$kind]}"
    done
    for i in $(seq 1 $count); do
        extension=${extensions[$((i % 3))]}
        cp "$media/track.$extension" "$media/$(printf '%03d' "$i").$extension"
    done
    touch "$media/ready"
fi
bench_build melkora-cli
tracks=("$media"/[0-9][0-9][0-9].*)

resident() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }

exec {events}< <(exec "$build/bin/melkora-cli" play "${tracks[@]}" --repeat --shuffle --sink fake)
player=$!
opened=0
first=0
last=0
start=$(date +%s.%N)
echo "tracks: ${#tracks[@]} of 0.05 s, played with --repeat --shuffle --sink fake"
while read -r -u "$events" event _; do
    [ "$event" = open ] || continue
    opened=$((opened + 1))
    if [ $((opened % 50)) -eq 0 ]; then
        kilobytes=$(resident "$player")
        [ "$opened" -eq 50 ] && first=$kilobytes
        last=$kilobytes
        seconds=$(awk -v now="$(date +%s.%N)" -v start="$start" 'BEGIN { print now - start }')
        printf 'after %4d tracks: %6d kB resident (%.1f s)\n' "$opened" "$kilobytes" "$seconds"
    fi
    [ "$opened" -ge "$played" ] && break
done
kill "$player"
wait "$player" 2>/dev/null || true
growth=$((last - first))
echo "growth from the 50th to the ${opened}th track: $growth kB (goal: under 5120 kB)"
[ "$opened" -ge "$played" ] && [ "$growth" -lt 5120 ]

#!/usr/bin/env bash
# Times the open of a local song: from OpenMedia to the first position
# report of the player (the first 20 ms tick of the playing display with a
# position past 0), for an MP3 and an Ogg Vorbis file, against gst-play-1.0
# playing the same files in the same run (from its "Now playing" line to its
# first position line, and from its launch). Both use a silent sink that
# keeps time (fakesink sync=true), so no sound device is needed. Medians.
#
#   bench/open/run.sh [RUNS]          (default 20 runs of each)
#
# Environment:
#   BUILD        build folder (default build/); bench_open is built there
#   BENCH_MEDIA  where the songs are made once (default /tmp/melkora-bench-open)
set -euo pipefail

repo=$(cd "$(dirname "$0")/../.." && pwd)
source "$repo/bench/common.sh"
runs=${1:-20}
media=${BENCH_MEDIA:-/tmp/melkora-bench-open}

# Two 30-second stereo songs, made once by GStreamer's own elements.
if [ ! -f "$media/ready" ]; then
    mkdir -p "$media"
    for kind in mp3 ogg; do
        case $kind in
        mp3) encoder="lamemp3enc bitrate=192 ! xingmux ! id3v2mux" ;;
        ogg) encoder="vorbisenc quality=0.5 ! oggmux" ;;
        esac
        gst-launch-1.0 -q audiotestsrc wave=sine num-buffers=3000 samplesperbuffer=441 \
            ! audio/x-raw,rate=44100,channels=2 ! audioconvert ! $encoder \
            ! filesink location="$media/song.$kind"
    done
    touch "$media/ready"
fi
bench_build bench_open
echo "runs: $runs of each, alternating, after one warm-up; the player's display ticks every 20 ms, gst-play prints its position every 100 ms"
"$build/bin/bench_open" "$runs" "$media/song.mp3" "$media/song.ogg"

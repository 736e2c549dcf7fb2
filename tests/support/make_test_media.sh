#!/bin/sh
# Makes the media files of the player tests with GStreamer's own elements:
# a 1-second and a 5-second tone as WAV, Ogg Vorbis and MP3, and a 1-second
# test-pattern video of 160 by 120 pixels (Ogg Theora).
set -eu
out="$1"
mkdir -p "$out"
tone() { # seconds, encoder chain, file
    gst-launch-1.0 -q audiotestsrc num-buffers=$(($1 * 100)) samplesperbuffer=441 \
        ! audio/x-raw,rate=44100,channels=1 ! audioconvert ! $2 ! filesink location="$out/$3"
}
for seconds in 1 5; do
    tone $seconds "wavenc" "tone${seconds}s.wav"
    tone $seconds "vorbisenc ! oggmux" "tone${seconds}s.ogg"
    tone $seconds "lamemp3enc ! xingmux ! id3v2mux" "tone${seconds}s.mp3"
done
gst-launch-1.0 -q videotestsrc num-buffers=25 \
    ! video/x-raw,width=160,height=120,framerate=25/1 ! theoraenc ! oggmux \
    ! filesink location="$out/pattern.ogv"

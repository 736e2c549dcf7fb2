// Making and checking media files with GStreamer, without a window: a
// chain of elements written in gst-launch syntax encodes into a file, and
// a file is opened paused, as the player opens it, to read its duration and
// streams. Each call runs on the caller's thread and returns within its time
// limit.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/string.h"

// Raw sound handed to an encoding chain: interleaved signed 16-bit samples.
struct SGstPcm {
    const int16_t* samples = nullptr;
    size_t frames = 0; // samples per channel
    int rate = 44100;  // frames per second
    int channels = 1;
};

// Runs chain and writes what comes out of its one unlinked source pad into
// the file at path. With pcm, the chain's one unlinked sink pad is fed those
// samples ("audioconvert ! vorbisenc ! oggmux"); without, the chain holds
// its own sources, which must come to an end ("audiotestsrc num-buffers=50
// ! wavenc"). The file is written under a temporary name in path's folder
// and renamed over path once the stream has ended, so path never holds a
// torn file. False, with error (when given) telling why and nothing left
// at path, when the chain does not parse, an element is missing, the
// stream fails, or it has not ended within timeoutMs milliseconds.
bool GstEncodeFile(const char* chain, const char* path, int timeoutMs, const SGstPcm* pcm = nullptr,
                   SString* error = nullptr);

// What GstProbeFile finds in a file.
struct SGstMediaInfo {
    uint64_t durationMs = 0; // 0 when unknown
    int audioStreams = 0;
    int videoStreams = 0;
};

// Opens the file at path paused, through the elements the player uses, with
// sinks that play nothing, and reads its duration and streams. False, with
// error when given, when it does not open within timeoutMs milliseconds.
bool GstProbeFile(const char* path, int timeoutMs, SGstMediaInfo* info, SString* error = nullptr);

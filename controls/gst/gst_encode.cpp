#include "controls/gst/gst_encode.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include "controls/gst/gst_player.h"
#include "foundation/file.h"

namespace {

// Frames of sound in one buffer handed to the chain.
constexpr size_t PCM_CHUNK_FRAMES = 4096;

void SetError(SString* error, const std::string& text) {
    if (error != nullptr) {
        *error = text.c_str();
    }
}

// Releases a floating or owned element that never joined a pipeline.
void Discard(GstElement* element) {
    if (element != nullptr) {
        gst_object_unref(gst_object_ref_sink(element));
    }
}

// The monotonic time in microseconds timeoutMs from now.
gint64 DeadlineAfter(int timeoutMs) {
    return g_get_monotonic_time() + gint64(std::max(timeoutMs, 0)) * 1000;
}

// Waits on the pipeline's bus for one of the wanted messages, or an error,
// until the deadline. True for a wanted one; false with the reason.
bool WaitFor(GstElement* pipeline, GstMessageType wanted, gint64 deadline, std::string& reason) {
    GstBus* bus = gst_element_get_bus(pipeline);
    bool ok = false;
    for (;;) {
        gint64 left = deadline - g_get_monotonic_time();
        if (left <= 0) {
            reason = "no end within the time limit";
            break;
        }
        GstMessage* message = gst_bus_timed_pop_filtered(
            bus, GstClockTime(left) * 1000, GstMessageType(wanted | GST_MESSAGE_ERROR));
        if (message == nullptr) {
            continue; // the deadline is checked above
        }
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
            GError* gerror = nullptr;
            gst_message_parse_error(message, &gerror, nullptr);
            reason = gerror != nullptr ? gerror->message : "the stream failed";
            if (GST_MESSAGE_SRC(message) != nullptr) {
                reason = std::string(GST_OBJECT_NAME(GST_MESSAGE_SRC(message))) + ": " + reason;
            }
            if (gerror != nullptr) {
                g_error_free(gerror);
            }
            gst_message_unref(message);
            break;
        }
        // An "async done" of a bin inside the pipeline is not the
        // pipeline's own.
        bool mine = GST_MESSAGE_TYPE(message) != GST_MESSAGE_ASYNC_DONE ||
                    GST_MESSAGE_SRC(message) == GST_OBJECT(pipeline);
        gst_message_unref(message);
        if (mine) {
            ok = true;
            break;
        }
    }
    gst_object_unref(bus);
    return ok;
}

// The temporary file beside a target: made, locked while it is written
// (so a cleaner of leftovers leaves it alone), and either put in place of
// the target or removed.
class TempBeside {
public:
    explicit TempBeside(const std::string& target) : target(target) {
        size_t slash = target.rfind('/');
        std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
        temp = folder + (slash == std::string::npos ? "/" : "") + ".melkora-XXXXXX";
        fd = mkostemp(temp.data(), O_CLOEXEC);
        if (fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) != 0) {
            close(fd);
            unlink(temp.c_str());
            fd = -1;
        }
    }
    ~TempBeside() {
        if (fd >= 0) {
            close(fd);
            unlink(temp.c_str());
        }
    }
    TempBeside(const TempBeside&) = delete;
    TempBeside& operator=(const TempBeside&) = delete;

    bool IsOpen() const { return fd >= 0; }
    const std::string& GetPath() const { return temp; }

    // Syncs the written file and renames it over the target.
    bool Commit() {
        mode_t mode = static_cast<mode_t>(ReplacementFileMode(target.c_str()));
        bool ok = fd >= 0 && fchmod(fd, mode) == 0 && fsync(fd) == 0 &&
                  rename(temp.c_str(), target.c_str()) == 0;
        if (ok) {
            close(fd);
            fd = -1;
        }
        return ok;
    }

private:
    std::string target;
    std::string temp;
    int fd = -1;
};

// Feeds the samples to the source in buffers with their times, then ends
// the stream. Stops early when the chain refuses a buffer (its error is
// then on the bus).
void PushPcm(GstElement* source, const SGstPcm& pcm) {
    size_t frameBytes = size_t(pcm.channels) * sizeof(int16_t);
    for (size_t frame = 0; frame < pcm.frames; frame += PCM_CHUNK_FRAMES) {
        size_t count = std::min(PCM_CHUNK_FRAMES, pcm.frames - frame);
        GstBuffer* buffer = gst_buffer_new_allocate(nullptr, count * frameBytes, nullptr);
        if (buffer == nullptr) {
            break;
        }
        gst_buffer_fill(buffer, 0, pcm.samples + frame * size_t(pcm.channels), count * frameBytes);
        GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(frame, GST_SECOND, guint64(pcm.rate));
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(count, GST_SECOND, guint64(pcm.rate));
        if (gst_app_src_push_buffer(GST_APP_SRC(source), buffer) != GST_FLOW_OK) {
            return;
        }
    }
    gst_app_src_end_of_stream(GST_APP_SRC(source));
}

// A source of the samples, with their format as caps.
GstElement* MakePcmSource(const SGstPcm& pcm) {
    GstElement* source = gst_element_factory_make("appsrc", nullptr);
    if (source == nullptr) {
        return nullptr;
    }
    GstCaps* caps = gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "S16LE", "layout",
                                        G_TYPE_STRING, "interleaved", "rate", G_TYPE_INT, pcm.rate,
                                        "channels", G_TYPE_INT, pcm.channels, nullptr);
    // Every buffer is queued at once (no limit), timed by the caller.
    g_object_set(source, "caps", caps, "format", GST_FORMAT_TIME, "max-bytes", guint64(0),
                 "is-live", FALSE, nullptr);
    gst_caps_unref(caps);
    return source;
}

bool IsUsablePcm(const SGstPcm* pcm) {
    return pcm == nullptr || (pcm->samples != nullptr && pcm->frames > 0 && pcm->rate >= 8000 &&
                              pcm->rate <= 192000 && pcm->channels >= 1 && pcm->channels <= 8);
}

} // namespace

bool GstEncodeFile(const char* chain, const char* path, int timeoutMs, const SGstPcm* pcm,
                   SString* error) {
    if (chain == nullptr || path == nullptr || path[0] == 0 || !IsUsablePcm(pcm)) {
        SetError(error, "nothing to encode");
        return false;
    }
    if (!SGstPlayer::Initialize()) {
        SetError(error, "GStreamer does not start");
        return false;
    }
    GError* parseError = nullptr;
    GstElement* bin = gst_parse_bin_from_description(chain, TRUE, &parseError);
    if (bin == nullptr || parseError != nullptr) {
        SetError(error, std::string("the chain does not parse: ") +
                            (parseError != nullptr ? parseError->message : chain));
        if (parseError != nullptr) {
            g_error_free(parseError);
        }
        Discard(bin);
        return false;
    }
    GstPad* input = gst_element_get_static_pad(bin, "sink");
    bool wantsInput = input != nullptr;
    if (input != nullptr) {
        gst_object_unref(input);
    }
    GstPad* output = gst_element_get_static_pad(bin, "src");
    bool hasOutput = output != nullptr;
    if (output != nullptr) {
        gst_object_unref(output);
    }
    if (!hasOutput || wantsInput != (pcm != nullptr)) {
        SetError(error, !hasOutput ? "the chain has no free output"
                                   : (pcm != nullptr ? "the chain takes no sound"
                                                     : "the chain waits for sound"));
        Discard(bin);
        return false;
    }
    TempBeside temp(path);
    if (!temp.IsOpen()) {
        SetError(error, std::string("cannot write beside ") + path);
        Discard(bin);
        return false;
    }
    GstElement* pipeline = gst_pipeline_new(nullptr);
    GstElement* sink = gst_element_factory_make("filesink", nullptr);
    GstElement* source = pcm != nullptr ? MakePcmSource(*pcm) : nullptr;
    if (pipeline == nullptr || sink == nullptr || (pcm != nullptr && source == nullptr)) {
        SetError(error, "the file writer is missing");
        for (GstElement* element : {pipeline, sink, source, bin}) {
            Discard(element);
        }
        return false;
    }
    g_object_set(sink, "location", temp.GetPath().c_str(), "sync", FALSE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), bin, sink, nullptr);
    bool linked = gst_element_link(bin, sink) != FALSE;
    if (source != nullptr) {
        gst_bin_add(GST_BIN(pipeline), source);
        linked = linked && gst_element_link(source, bin) != FALSE;
    }
    std::string reason = "the chain does not link";
    bool ok =
        linked && gst_element_set_state(pipeline, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
    if (linked && !ok) {
        reason = "the chain does not start";
    }
    if (ok && source != nullptr) {
        PushPcm(source, *pcm);
    }
    ok = ok && WaitFor(pipeline, GST_MESSAGE_EOS, DeadlineAfter(timeoutMs), reason);
    // Stopped before the file is put in place: the writer closes it here.
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    if (ok && !temp.Commit()) {
        reason = std::string("cannot put the file in place: ") + strerror(errno);
        ok = false;
    }
    if (!ok) {
        SetError(error, reason);
    }
    return ok;
}

bool GstProbeFile(const char* path, int timeoutMs, SGstMediaInfo* info, SString* error) {
    if (info != nullptr) {
        *info = SGstMediaInfo();
    }
    if (path == nullptr || path[0] == 0) {
        SetError(error, "no file");
        return false;
    }
    if (!SGstPlayer::Initialize()) {
        SetError(error, "GStreamer does not start");
        return false;
    }
    gchar* uri = gst_filename_to_uri(path, nullptr);
    GstElement* playbin = gst_element_factory_make("playbin", nullptr);
    GstElement* audioSink = gst_element_factory_make("fakesink", nullptr);
    GstElement* videoSink = gst_element_factory_make("fakesink", nullptr);
    if (uri == nullptr || playbin == nullptr || audioSink == nullptr || videoSink == nullptr) {
        g_free(uri);
        for (GstElement* element : {playbin, audioSink, videoSink}) {
            Discard(element);
        }
        SetError(error, uri == nullptr ? "not a file name" : "the player's elements are missing");
        return false;
    }
    g_object_set(playbin, "uri", uri, "audio-sink", audioSink, "video-sink", videoSink, nullptr);
    g_free(uri);
    std::string reason = "the file does not open";
    bool ok = gst_element_set_state(playbin, GST_STATE_PAUSED) != GST_STATE_CHANGE_FAILURE &&
              WaitFor(playbin, GST_MESSAGE_ASYNC_DONE, DeadlineAfter(timeoutMs), reason);
    if (ok && info != nullptr) {
        gint64 duration = 0;
        if (gst_element_query_duration(playbin, GST_FORMAT_TIME, &duration) && duration > 0) {
            info->durationMs = uint64_t(duration) / GST_MSECOND;
        }
        gint audio = 0;
        gint video = 0;
        g_object_get(playbin, "n-audio", &audio, "n-video", &video, nullptr);
        info->audioStreams = audio;
        info->videoStreams = video;
    }
    gst_element_set_state(playbin, GST_STATE_NULL);
    gst_object_unref(playbin);
    if (!ok) {
        SetError(error, reason);
    }
    return ok;
}

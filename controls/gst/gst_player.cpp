#include "controls/gst/gst_player.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <vector>

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

struct SGstPlayer::State {
    GstElement* playbin = nullptr;
    GstElement* videoSink = nullptr;
    HWND window = 0;
    Messages messages;
    std::atomic<int> openState{OPEN_NONE};
    std::atomic<uint32_t> serial{0};
    std::atomic<bool> buffering{false};
    std::atomic<bool> framePending{false};
    std::mutex frameMutex; // guards frame
    GstSample* frame = nullptr;
};

namespace {

GstElement* Pipeline(void* pipeline) {
    return static_cast<GstElement*>(pipeline);
}

// Runs on whichever thread posts to the bus: never touches the window, only
// posts to it.
GstBusSyncReply OnBusMessage(GstBus* /*bus*/, GstMessage* message, gpointer data) {
    auto* state = static_cast<SGstPlayer::State*>(data);
    LPARAM serial = static_cast<LPARAM>(state->serial.load());
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ASYNC_DONE: {
        int waiting = SGstPlayer::OPEN_WAITING;
        if (GST_MESSAGE_SRC(message) == GST_OBJECT(state->playbin) &&
            state->openState.compare_exchange_strong(waiting, SGstPlayer::OPEN_DONE)) {
            PostMessage(state->window, state->messages.wake, 0, serial);
        }
        break;
    }
    case GST_MESSAGE_ERROR: {
        int waiting = SGstPlayer::OPEN_WAITING;
        if (state->openState.compare_exchange_strong(waiting, SGstPlayer::OPEN_FAILED)) {
            PostMessage(state->window, state->messages.wake, 0, serial);
        } else if (state->openState.load() == SGstPlayer::OPEN_DONE) {
            PostMessage(state->window, state->messages.error, 0, serial);
        }
        break;
    }
    case GST_MESSAGE_EOS:
        if (state->openState.load() == SGstPlayer::OPEN_DONE) {
            PostMessage(state->window, state->messages.ended, state->messages.endedValue, serial);
        }
        break;
    case GST_MESSAGE_BUFFERING: {
        int percent = 100;
        gst_message_parse_buffering(message, &percent);
        bool now = percent < 100;
        if (state->buffering.exchange(now) != now) {
            PostMessage(state->window, state->messages.buffering, now ? 0 : 1, serial);
        }
        break;
    }
    default:
        break;
    }
    // Nothing else reads the bus: every message ends here. A handler that
    // drops a message owns it and must free it; a message kept alive keeps
    // its source element, and with it the decoders of every track played.
    gst_message_unref(message);
    return GST_BUS_DROP;
}

// A streaming thread of the video sink: keep the newest frame, and tell the
// window once until it takes it.
void KeepFrame(SGstPlayer::State* state, GstSample* sample) {
    if (sample == nullptr) {
        return;
    }
    {
        std::lock_guard<std::mutex> lock(state->frameMutex);
        if (state->frame != nullptr) {
            gst_sample_unref(state->frame);
        }
        state->frame = sample;
    }
    if (!state->framePending.exchange(true)) {
        PostMessage(state->window, state->messages.frame, 0,
                    static_cast<LPARAM>(state->serial.load()));
    }
}

GstFlowReturn OnNewSample(GstAppSink* sink, gpointer data) {
    KeepFrame(static_cast<SGstPlayer::State*>(data), gst_app_sink_pull_sample(sink));
    return GST_FLOW_OK;
}

GstFlowReturn OnNewPreroll(GstAppSink* sink, gpointer data) {
    KeepFrame(static_cast<SGstPlayer::State*>(data), gst_app_sink_pull_preroll(sink));
    return GST_FLOW_OK;
}

void DropFrame(SGstPlayer::State* state) {
    std::lock_guard<std::mutex> lock(state->frameMutex);
    if (state->frame != nullptr) {
        gst_sample_unref(state->frame);
        state->frame = nullptr;
    }
}

// A local medium must be a regular file: the file source opens a FIFO
// named like a song blocking, until a writer comes, and a device or a
// socket is no medium either. Streams and other schemes pass.
bool IsPlayableLocal(const gchar* uri) {
    gchar* path = g_filename_from_uri(uri, nullptr, nullptr);
    if (path == nullptr) {
        return true;
    }
    struct stat info;
    bool isRegular = stat(path, &info) == 0 && S_ISREG(info.st_mode);
    g_free(path);
    return isRegular;
}

// The sound goes through a volume element of its own before the sink.
// Without one (a fake sink, or a sound card sink without a volume) the play
// sink makes a new volume element in its converter for every track and
// never frees the one before, so memory would grow with every track. With
// fakeSinks the sink keeps time as a sound card would, so a song lasts its
// length, and plays nothing.
GstElement* MakeAudioSink(bool fakeSinks) {
    GError* error = nullptr;
    GstElement* sink = gst_parse_bin_from_description(
        fakeSinks ? "volume ! fakesink sync=true" : "volume ! autoaudiosink", TRUE, &error);
    if (error != nullptr) {
        g_error_free(error);
    }
    return sink;
}

bool SizeFromCaps(GstCaps* caps, int* width, int* height) {
    if (caps == nullptr || gst_caps_get_size(caps) == 0) {
        return false;
    }
    const GstStructure* structure = gst_caps_get_structure(caps, 0);
    int w = 0;
    int h = 0;
    if (!gst_structure_get_int(structure, "width", &w) ||
        !gst_structure_get_int(structure, "height", &h) || w <= 0 || h <= 0) {
        return false;
    }
    *width = w;
    *height = h;
    return true;
}

} // namespace

SGstPlayer::SGstPlayer() : state(std::make_unique<State>()) {}

SGstPlayer::~SGstPlayer() {
    Destroy();
}

bool SGstPlayer::Initialize() {
    static std::once_flag once;
    static bool started = false;
    std::call_once(once, [] {
        GError* error = nullptr;
        started = gst_init_check(nullptr, nullptr, &error) != FALSE;
        if (error != nullptr) {
            g_error_free(error);
        }
    });
    return started;
}

bool SGstPlayer::Create(HWND window, const Messages& messages, bool fakeSinks) {
    Destroy();
    if (!Initialize()) {
        return false;
    }
    GstElement* playbin = gst_element_factory_make("playbin", nullptr);
    GstElement* videoSink = gst_element_factory_make("appsink", nullptr);
    GstElement* audioSink = MakeAudioSink(fakeSinks);
    if (playbin == nullptr || videoSink == nullptr || audioSink == nullptr) {
        for (GstElement* element : {playbin, videoSink, audioSink}) {
            if (element != nullptr) {
                gst_object_unref(gst_object_ref_sink(element));
            }
        }
        return false;
    }
    state->playbin = playbin;
    state->videoSink = videoSink;
    state->window = window;
    state->messages = messages;
    // Frames as Cairo's 24-bit RGB words; the newest one is kept.
    GstCaps* caps = gst_caps_from_string("video/x-raw,format=BGRx");
    g_object_set(videoSink, "caps", caps, "sync", TRUE, "max-buffers", 1, "drop", TRUE,
                 "enable-last-sample", FALSE, nullptr);
    gst_caps_unref(caps);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_sample = OnNewSample;
    callbacks.new_preroll = OnNewPreroll;
    gst_app_sink_set_callbacks(GST_APP_SINK(videoSink), &callbacks, state.get(), nullptr);
    g_object_set(playbin, "video-sink", videoSink, "audio-sink", audioSink, nullptr);
    GstBus* bus = gst_element_get_bus(playbin);
    gst_bus_set_sync_handler(bus, OnBusMessage, state.get(), nullptr);
    gst_object_unref(bus);
    pipeline = playbin;
    return true;
}

void SGstPlayer::Destroy() {
    if (pipeline == nullptr) {
        return;
    }
    Close();
    GstBus* bus = gst_element_get_bus(Pipeline(pipeline));
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(Pipeline(pipeline));
    pipeline = nullptr;
    state->playbin = nullptr;
    state->videoSink = nullptr;
    DropFrame(state.get());
}

int SGstPlayer::GetOpenState() const {
    return state->openState.load();
}

uint32_t SGstPlayer::GetSerial() const {
    return state->serial.load();
}

bool SGstPlayer::Load(const char* address, bool start) {
    Close();
    if (pipeline == nullptr || address == nullptr || address[0] == 0) {
        return false;
    }
    gchar* uri = nullptr;
    if (gst_uri_is_valid(address)) {
        uri = g_strdup(address);
    } else {
        uri = gst_filename_to_uri(address, nullptr);
    }
    if (uri == nullptr || !IsPlayableLocal(uri)) {
        g_free(uri);
        return false;
    }
    g_object_set(Pipeline(pipeline), "uri", uri, nullptr);
    g_free(uri);
    state->openState = OPEN_WAITING;
    GstStateChangeReturn result =
        gst_element_set_state(Pipeline(pipeline), start ? GST_STATE_PLAYING : GST_STATE_PAUSED);
    if (result == GST_STATE_CHANGE_FAILURE) {
        state->openState = OPEN_FAILED;
        return false;
    }
    if (result == GST_STATE_CHANGE_SUCCESS || result == GST_STATE_CHANGE_NO_PREROLL) {
        // A live source, or an open that finished within the call.
        int waiting = OPEN_WAITING;
        state->openState.compare_exchange_strong(waiting, OPEN_DONE);
    }
    return true;
}

void SGstPlayer::Close() {
    if (pipeline == nullptr) {
        return;
    }
    // Joins the streaming threads: no report of this medium comes after.
    gst_element_set_state(Pipeline(pipeline), GST_STATE_NULL);
    state->serial.fetch_add(1);
    state->openState = OPEN_NONE;
    state->buffering = false;
    DropFrame(state.get());
    state->framePending = false;
}

bool SGstPlayer::Play() {
    return pipeline != nullptr && state->openState.load() == OPEN_DONE &&
           gst_element_set_state(Pipeline(pipeline), GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
}

bool SGstPlayer::Pause() {
    return pipeline != nullptr && state->openState.load() == OPEN_DONE &&
           gst_element_set_state(Pipeline(pipeline), GST_STATE_PAUSED) != GST_STATE_CHANGE_FAILURE;
}

bool SGstPlayer::Stop() {
    return Pause() && Seek(0);
}

bool SGstPlayer::Seek(uint64_t milliseconds) {
    if (pipeline == nullptr || state->openState.load() != OPEN_DONE) {
        return false;
    }
    return gst_element_seek_simple(
               Pipeline(pipeline), GST_FORMAT_TIME,
               static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
               static_cast<gint64>(milliseconds) * GST_MSECOND) != FALSE;
}

uint64_t SGstPlayer::GetPosition() const {
    gint64 position = 0;
    if (pipeline == nullptr || state->openState.load() != OPEN_DONE ||
        !gst_element_query_position(Pipeline(pipeline), GST_FORMAT_TIME, &position) ||
        position < 0) {
        return 0;
    }
    return static_cast<uint64_t>((position + GST_MSECOND / 2) / GST_MSECOND);
}

uint64_t SGstPlayer::GetDuration() const {
    gint64 duration = 0;
    if (pipeline == nullptr || state->openState.load() != OPEN_DONE ||
        !gst_element_query_duration(Pipeline(pipeline), GST_FORMAT_TIME, &duration) ||
        duration < 0) {
        return 0;
    }
    return static_cast<uint64_t>((duration + GST_MSECOND / 2) / GST_MSECOND);
}

void SGstPlayer::SetVolume(int volume) {
    if (pipeline == nullptr) {
        return;
    }
    volume = std::clamp(volume, 0, 100);
    g_object_set(Pipeline(pipeline), "volume", volume / 100.0, nullptr);
}

int SGstPlayer::GetVolume() const {
    if (pipeline == nullptr) {
        return 0;
    }
    double volume = 0;
    g_object_get(Pipeline(pipeline), "volume", &volume, nullptr);
    return std::clamp(static_cast<int>(volume * 100.0 + 0.5), 0, 100);
}

bool SGstPlayer::HasVideo() const {
    if (pipeline == nullptr || state->openState.load() != OPEN_DONE) {
        return false;
    }
    int count = 0;
    g_object_get(Pipeline(pipeline), "n-video", &count, nullptr);
    return count > 0;
}

bool SGstPlayer::GetVideoSize(int* width, int* height) const {
    *width = 0;
    *height = 0;
    if (!HasVideo()) {
        return false;
    }
    GstPad* pad = nullptr;
    g_signal_emit_by_name(Pipeline(pipeline), "get-video-pad", 0, &pad);
    bool found = false;
    if (pad != nullptr) {
        GstCaps* caps = gst_pad_get_current_caps(pad);
        found = SizeFromCaps(caps, width, height);
        if (caps != nullptr) {
            gst_caps_unref(caps);
        }
        gst_object_unref(pad);
    }
    if (!found) {
        std::lock_guard<std::mutex> lock(state->frameMutex);
        if (state->frame != nullptr) {
            found = SizeFromCaps(gst_sample_get_caps(state->frame), width, height);
        }
    }
    return found;
}

bool SGstPlayer::HasFrame() const {
    std::lock_guard<std::mutex> lock(state->frameMutex);
    return state->frame != nullptr;
}

bool SGstPlayer::TakeFrame(SImage* picture) {
    state->framePending = false;
    GstSample* sample = nullptr;
    {
        std::lock_guard<std::mutex> lock(state->frameMutex);
        if (state->frame != nullptr) {
            sample = gst_sample_ref(state->frame);
        }
    }
    if (sample == nullptr) {
        return false;
    }
    bool done = false;
    int width = 0;
    int height = 0;
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    GstMapInfo map;
    if (buffer != nullptr && SizeFromCaps(gst_sample_get_caps(sample), &width, &height) &&
        width <= IMAGE_MAX_SIDE && height <= IMAGE_MAX_SIDE &&
        gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        // Rows of BGRx words, each row padded to a multiple of 4 bytes.
        size_t stride = static_cast<size_t>(width) * 4;
        if (map.size >= stride * static_cast<size_t>(height)) {
            std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
            for (int y = 0; y < height; ++y) {
                const uint8_t* row = map.data + stride * static_cast<size_t>(y);
                uint32_t* out = pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
                std::memcpy(out, row, stride);
                for (int x = 0; x < width; ++x) {
                    out[x] |= 0xFF000000u;
                }
            }
            done = picture->LoadPixels(pixels.data(), width, height);
        }
        gst_buffer_unmap(buffer, &map);
    }
    gst_sample_unref(sample);
    return done;
}

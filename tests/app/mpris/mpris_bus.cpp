// The MPRIS2 service and the remote commands on a private session bus
// (dbus-run-session), with a fake main window; the clients are GDBus calls
// on a connection of their own, the gdbus tool and `melkora --remote`.
#include <gio/gio.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "app/mpris/mpris.h"

namespace {

constexpr const char* PLAYER = "org.mpris.MediaPlayer2.Player";
constexpr const char* PATH = "/org/mpris/MediaPlayer2";

class FakeHost : public MprisHost {
public:
    std::vector<std::string> calls;
    int64_t position = 0;
    void Raise() override { calls.push_back("Raise"); }
    void Quit() override { calls.push_back("Quit"); }
    void PlayPause() override { calls.push_back("PlayPause"); }
    void Play() override { calls.push_back("Play"); }
    void Pause() override { calls.push_back("Pause"); }
    void Stop() override { calls.push_back("Stop"); }
    void Next() override { calls.push_back("Next"); }
    void Previous() override { calls.push_back("Previous"); }
    void SetPosition(int64_t microseconds) override {
        calls.push_back("SetPosition " + std::to_string(microseconds));
        position = microseconds;
    }
    int64_t Position() override { return position; }
    void SetVolume(double volume) override { calls.push_back("SetVolume " + std::to_string(volume)); }
    void RemoteCommand(int command) override { calls.push_back("Remote " + std::to_string(command)); }
};

// Runs the default main context until `done` or five seconds pass.
template <typename Done> bool Pump(Done done) {
    gint64 deadline = g_get_monotonic_time() + 5 * G_USEC_PER_SEC;
    while (!done()) {
        if (g_get_monotonic_time() > deadline) {
            return false;
        }
        g_main_context_iteration(nullptr, FALSE);
        g_usleep(1000);
    }
    return true;
}

// Lets messages already on their way arrive.
void Settle() {
    gint64 end = g_get_monotonic_time() + 100 * 1000;
    Pump([&] { return g_get_monotonic_time() > end; });
}

struct Signal {
    std::string name;
    std::string parameters;
};

class MprisBus : public ::testing::Test {
protected:
    FakeHost host;
    MprisService service{&host};
    GDBusConnection* client = nullptr;
    guint subscription = 0;
    std::vector<Signal> signals;

    void SetUp() override {
        // Never the user's own session bus.
        if (getenv("MELKORA_TEST_PRIVATE_BUS") == nullptr) {
            GTEST_SKIP() << "runs only on a private session bus (ctest -R mpris)";
        }
        ASSERT_TRUE(service.Start());
        ASSERT_TRUE(Pump([&] { return service.OwnsName(); }));
        gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        ASSERT_NE(address, nullptr);
        client = g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        g_free(address);
        ASSERT_NE(client, nullptr);
        subscription = g_dbus_connection_signal_subscribe(
            client, MPRIS_BUS_NAME, nullptr, nullptr, PATH, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* name, GVariant* parameters,
               gpointer data) {
                gchar* text = g_variant_print(parameters, FALSE);
                static_cast<MprisBus*>(data)->signals.push_back({name, text});
                g_free(text);
            },
            this, nullptr);
        Settle();
    }

    void TearDown() override {
        if (client != nullptr) {
            g_dbus_connection_signal_unsubscribe(client, subscription);
            g_dbus_connection_close_sync(client, nullptr, nullptr);
            g_object_unref(client);
        }
        service.Stop();
    }

    // Calls a method from the client; the reply printed, or "error: ...".
    std::string Call(const char* interface, const char* method, GVariant* parameters,
                     const char* path = PATH) {
        struct Result {
            bool done = false;
            std::string text;
        } result;
        g_dbus_connection_call(
            client, MPRIS_BUS_NAME, path, interface, method, parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, 5000,
            nullptr,
            [](GObject* source, GAsyncResult* async, gpointer data) {
                auto* result = static_cast<Result*>(data);
                GError* error = nullptr;
                GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), async, &error);
                if (reply == nullptr) {
                    gchar* remote = g_dbus_error_get_remote_error(error);
                    result->text = std::string("error: ") + (remote != nullptr ? remote : error->message);
                    g_free(remote);
                    g_error_free(error);
                } else {
                    gchar* text = g_variant_print(reply, FALSE);
                    result->text = text;
                    g_free(text);
                    g_variant_unref(reply);
                }
                result->done = true;
            },
            &result);
        EXPECT_TRUE(Pump([&] { return result.done; }));
        Settle();
        return result.text;
    }

    std::string Get(const char* interface, const char* property) {
        return Call("org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, property));
    }

    // Runs a program to its end; its status, and its stdout and stderr.
    static int Run(const std::vector<const char*>& argv, std::string* out) {
        std::vector<const char*> args = argv;
        args.push_back(nullptr);
        GError* error = nullptr;
        GSubprocess* process = g_subprocess_newv(
            args.data(),
            static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_MERGE),
            &error);
        if (process == nullptr) {
            *out = error->message;
            g_error_free(error);
            return -1;
        }
        struct Result {
            bool done = false;
            gchar* out = nullptr;
        } result;
        g_subprocess_communicate_utf8_async(
            process, nullptr, nullptr,
            [](GObject* source, GAsyncResult* async, gpointer data) {
                auto* result = static_cast<Result*>(data);
                g_subprocess_communicate_utf8_finish(G_SUBPROCESS(source), async, &result->out, nullptr, nullptr);
                result->done = true;
            },
            &result);
        bool ended = Pump([&] { return result.done; }) && Pump([&] {
            return g_subprocess_get_if_exited(process) || g_subprocess_get_if_signaled(process);
        });
        int status = ended && g_subprocess_get_if_exited(process) ? g_subprocess_get_exit_status(process) : -1;
        if (!ended) {
            g_subprocess_force_exit(process);
        }
        *out = result.out != nullptr ? result.out : "";
        g_free(result.out);
        g_object_unref(process);
        return status;
    }

    static MprisState Playing() {
        MprisState state;
        state.status = MprisStatus::Playing;
        state.track.id = 7;
        state.track.title = "Song";
        state.track.lengthMicroseconds = 60'000'000;
        state.canGoNext = state.canGoPrevious = state.canPlay = state.canPause = state.canSeek = true;
        return state;
    }
};

TEST_F(MprisBus, RootPropertiesThroughTheGdbusTool) {
    std::string out;
    ASSERT_EQ(Run({"gdbus", "call", "--session", "--dest", MPRIS_BUS_NAME, "--object-path", PATH, "--method",
                   "org.freedesktop.DBus.Properties.GetAll", "org.mpris.MediaPlayer2"},
                  &out),
              0)
        << out;
    for (const char* expected : {"'Identity': <'Melkora Browser'>", "'DesktopEntry': <'io.github.melkora.MelkoraBrowser'>",
                                 "'CanRaise': <true>", "'CanQuit': <true>", "'HasTrackList': <false>"}) {
        EXPECT_NE(out.find(expected), std::string::npos) << expected << " in " << out;
    }
}

// Each method reaches the window only when the state allows it.
TEST_F(MprisBus, MethodsFollowTheCanProperties) {
    struct Case {
        const char* interface;
        const char* method;
        bool allowed;
        const char* expected; // nullptr: no call
    } cases[] = {
        {"org.mpris.MediaPlayer2", "Raise", false, "Raise"},
        {"org.mpris.MediaPlayer2", "Quit", false, "Quit"},
        {PLAYER, "PlayPause", true, "PlayPause"},
        {PLAYER, "PlayPause", false, nullptr},
        {PLAYER, "Play", true, "Play"},
        {PLAYER, "Play", false, nullptr},
        {PLAYER, "Pause", true, "Pause"},
        {PLAYER, "Pause", false, nullptr},
        {PLAYER, "Next", true, "Next"},
        {PLAYER, "Next", false, nullptr},
        {PLAYER, "Previous", true, "Previous"},
        {PLAYER, "Previous", false, nullptr},
        {PLAYER, "Stop", false, "Stop"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.method) + (c.allowed ? " allowed" : " not allowed"));
        MprisState state = c.allowed ? Playing() : MprisState();
        service.Update(state);
        host.calls.clear();
        EXPECT_EQ(Call(c.interface, c.method, nullptr), "()");
        std::vector<std::string> expected;
        if (c.expected != nullptr) {
            expected.push_back(c.expected);
        }
        EXPECT_EQ(host.calls, expected);
    }
}

TEST_F(MprisBus, MetadataOfATrackAndOfNone) {
    EXPECT_EQ(Get(PLAYER, "Metadata"),
              "(<{'mpris:trackid': <objectpath '/org/mpris/MediaPlayer2/TrackList/NoTrack'>}>,)");
    EXPECT_EQ(Get(PLAYER, "PlaybackStatus"), "(<'Stopped'>,)");
    MprisState state = Playing();
    state.track.title = "Caf\xe9";  // a tag in Latin-1, not UTF-8
    state.track.album = "Album";
    state.track.artists = {"One", "Two"};
    state.track.path = "/music/A B/01 #1.ogg";
    state.track.coverPath = "/music/A B/folder.jpg";
    service.Update(state);
    std::string metadata = Get(PLAYER, "Metadata");
    for (const char* expected :
         {"'mpris:trackid': <objectpath '/org/melkora/track/7'>", "'mpris:length': <int64 60000000>",
          "'xesam:album': <'Album'>", "'xesam:artist': <['One', 'Two']>",
          "'xesam:url': <'file:///music/A%20B/01%20%231.ogg'>", "'mpris:artUrl': <'file:///music/A%20B/folder.jpg'>",
          "'xesam:title': <'Caf\xef\xbf\xbd'>"}) {
        EXPECT_NE(metadata.find(expected), std::string::npos) << expected << " in " << metadata;
    }
    EXPECT_EQ(Get(PLAYER, "PlaybackStatus"), "(<'Playing'>,)");
    EXPECT_EQ(Get(PLAYER, "CanControl"), "(<true>,)");
}

TEST_F(MprisBus, ChangesAreAnnouncedOnceAndOnlyThoseThatChanged) {
    MprisState state = Playing();
    service.Update(state);
    Settle();
    signals.clear();
    service.Update(state);
    Settle();
    EXPECT_TRUE(signals.empty());

    state.status = MprisStatus::Paused;
    service.Update(state);
    Settle();
    ASSERT_EQ(signals.size(), 1u);
    EXPECT_EQ(signals[0].name, "PropertiesChanged");
    EXPECT_EQ(signals[0].parameters, "('org.mpris.MediaPlayer2.Player', {'PlaybackStatus': <'Paused'>}, [])");

    signals.clear();
    state.track.id = 8;
    state.canGoNext = false;
    service.Update(state);
    Settle();
    ASSERT_EQ(signals.size(), 1u);
    EXPECT_NE(signals[0].parameters.find("'Metadata'"), std::string::npos);
    EXPECT_NE(signals[0].parameters.find("'CanGoNext': <false>"), std::string::npos);
    EXPECT_EQ(signals[0].parameters.find("PlaybackStatus"), std::string::npos);
}

TEST_F(MprisBus, AWatchedStateIsReadUntilStopped) {
    int reads = 0;
    service.Watch(
        [&reads] {
            ++reads;
            return Playing();
        },
        10);
    ASSERT_TRUE(Pump([&] { return !signals.empty(); }));
    EXPECT_NE(signals[0].parameters.find("'PlaybackStatus': <'Playing'>"), std::string::npos);
    service.Watch(nullptr, 0);
    int stoppedAt = reads;
    Settle();
    EXPECT_EQ(reads, stoppedAt);
}

// A jump made in the window is announced; playing on, a new track or a
// seek through the bus itself is not announced again.
TEST_F(MprisBus, AJumpSeenWhileWatchingIsAnnounced) {
    MprisState state = Playing();
    state.status = MprisStatus::Paused;
    service.Watch([&state] { return state; }, 10);
    host.position = 10'000'000;
    Settle();
    signals.clear();
    host.position = 10'500'000;
    Settle();
    EXPECT_TRUE(signals.empty());
    host.position = 40'000'000;
    ASSERT_TRUE(Pump([&] { return !signals.empty(); }));
    EXPECT_EQ(signals[0].name, "Seeked");
    EXPECT_EQ(signals[0].parameters, "(40000000,)");
    Settle();
    EXPECT_EQ(signals.size(), 1u);

    signals.clear();
    state.track.id = 8;
    host.position = 0;
    Settle();
    ASSERT_EQ(signals.size(), 1u);
    EXPECT_EQ(signals[0].name, "PropertiesChanged");

    signals.clear();
    EXPECT_EQ(Call(PLAYER, "SetPosition", g_variant_new("(ox)", "/org/melkora/track/8", G_GINT64_CONSTANT(20'000'000))),
              "()");
    Settle();
    ASSERT_EQ(signals.size(), 1u);
    EXPECT_EQ(signals[0].name, "Seeked");
    service.Watch(nullptr, 0);
}

TEST_F(MprisBus, SeekAndSetPosition) {
    const char* track = "/org/melkora/track/7";
    struct Case {
        const char* name;
        bool canSeek;
        GVariant* (*parameters)(const char* track);
        const char* method;
        std::vector<std::string> expected;
    } cases[] = {
        {"forward", true, [](const char*) { return g_variant_new("(x)", G_GINT64_CONSTANT(5'000'000)); }, "Seek",
         {"SetPosition 15000000"}},
        {"back before the start", true,
         [](const char*) { return g_variant_new("(x)", G_GINT64_CONSTANT(-20'000'000)); }, "Seek",
         {"SetPosition 0"}},
        {"past the end", true, [](const char*) { return g_variant_new("(x)", G_GINT64_CONSTANT(100'000'000)); },
         "Seek", {"Next"}},
        {"absurd offset", true, [](const char*) { return g_variant_new("(x)", G_MAXINT64); }, "Seek", {"Next"}},
        {"cannot seek", false, [](const char*) { return g_variant_new("(x)", G_GINT64_CONSTANT(5'000'000)); },
         "Seek", {}},
        {"to a position", true, [](const char* t) { return g_variant_new("(ox)", t, G_GINT64_CONSTANT(30'000'000)); },
         "SetPosition", {"SetPosition 30000000"}},
        {"stale track", true,
         [](const char*) { return g_variant_new("(ox)", "/org/melkora/track/6", G_GINT64_CONSTANT(1)); },
         "SetPosition", {}},
        {"negative", true, [](const char* t) { return g_variant_new("(ox)", t, G_GINT64_CONSTANT(-1)); },
         "SetPosition", {}},
        {"past the length", true,
         [](const char* t) { return g_variant_new("(ox)", t, G_GINT64_CONSTANT(60'000'001)); }, "SetPosition", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        host.position = 10'000'000;
        MprisState state = Playing();
        state.canSeek = c.canSeek;
        service.Update(state);
        Settle();
        host.calls.clear();
        signals.clear();
        EXPECT_EQ(Call(PLAYER, c.method, c.parameters(track)), "()");
        EXPECT_EQ(host.calls, c.expected);
        bool moved = !c.expected.empty() && c.expected[0].rfind("SetPosition", 0) == 0;
        ASSERT_EQ(signals.size(), moved ? 1u : 0u);
        if (moved) {
            EXPECT_EQ(signals[0].name, "Seeked");
            EXPECT_EQ(signals[0].parameters, "(" + c.expected[0].substr(12) + ",)");
        }
    }
    EXPECT_EQ(Get(PLAYER, "Position"), "(<int64 10000000>,)");
}

TEST_F(MprisBus, VolumeIsKeptBetweenNoneAndFull) {
    struct Case {
        double volume;
        const char* expected;
    } cases[] = {{0.5, "SetVolume 0.500000"}, {1.5, "SetVolume 1.000000"}, {-2, "SetVolume 0.000000"}};
    for (const Case& c : cases) {
        host.calls.clear();
        EXPECT_EQ(Call("org.freedesktop.DBus.Properties", "Set",
                       g_variant_new("(ssv)", PLAYER, "Volume", g_variant_new_double(c.volume))),
                  "()");
        EXPECT_EQ(host.calls, std::vector<std::string>{c.expected});
    }
    EXPECT_EQ(Call("org.freedesktop.DBus.Properties", "Set",
                   g_variant_new("(ssv)", PLAYER, "PlaybackStatus", g_variant_new_string("Playing"))),
              "error: org.freedesktop.DBus.Error.InvalidArgs");
}

TEST_F(MprisBus, RemoteCommandsReachTheWindow) {
    // Through the client function, from another thread while this one runs
    // the loop as the program's would.
    std::atomic<int> status{-1};
    std::string error;
    std::thread sender([&] { status = SendRemoteCommand(3, &error); });
    EXPECT_TRUE(Pump([&] { return status.load() != -1; }));
    sender.join();
    EXPECT_EQ(status.load(), 0) << error;
    Settle();
    EXPECT_EQ(host.calls, std::vector<std::string>{"Remote 3"});

    host.calls.clear();
    EXPECT_EQ(Call("org.melkora.Remote", "Command", g_variant_new("(i)", 5), "/org/melkora/Remote"),
              "error: org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_TRUE(host.calls.empty());
    EXPECT_EQ(SendRemoteCommand(0, &error), 1);
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(MprisBus, RemoteWithoutAnInstanceFails) {
    std::string error;
    EXPECT_EQ(SendRemoteCommand(1, &error, "org.mpris.MediaPlayer2.nobody"), 1);
    EXPECT_EQ(error, "no running instance");
}

#ifdef MELKORA_PATH
TEST_F(MprisBus, TheProgramsRemoteOption) {
    struct Case {
        const char* argument;
        int status;
        const char* calls;   // what the window gets, or ""
        const char* output;  // part of what the program writes
    } cases[] = {
        {"1", 0, "Remote 1", ""},
        {"2", 0, "Remote 2", ""},
        {"4", 0, "Remote 4", ""},
        {"5", 2, "", "--remote takes 1, 2, 3 or 4"},
        {"", 2, "", "--remote takes"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.argument);
        host.calls.clear();
        std::string out;
        EXPECT_EQ(Run({MELKORA_PATH, "--remote", c.argument}, &out), c.status) << out;
        EXPECT_NE(out.find(c.output), std::string::npos) << out;
        Settle();
        std::vector<std::string> expected;
        if (c.calls[0] != '\0') {
            expected.push_back(c.calls);
        }
        EXPECT_EQ(host.calls, expected);
    }
    // No instance: a line on stderr and status 1.
    service.Stop();
    Settle();
    std::string out;
    EXPECT_EQ(Run({MELKORA_PATH, "--remote", "2"}, &out), 1);
    EXPECT_EQ(out, "melkora: no running instance\n");
}
#endif

} // namespace

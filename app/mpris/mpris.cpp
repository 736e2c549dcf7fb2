// The MPRIS2 service and the remote-command interface on GDBus.
#include "app/mpris/mpris.h"

#include <gio/gio.h>

#include <cmath>

namespace {

constexpr const char* OBJECT_PATH = "/org/mpris/MediaPlayer2";
constexpr const char* ROOT_INTERFACE = "org.mpris.MediaPlayer2";
constexpr const char* PLAYER_INTERFACE = "org.mpris.MediaPlayer2.Player";
constexpr const char* REMOTE_PATH = "/org/melkora/Remote";
constexpr const char* REMOTE_INTERFACE = "org.melkora.Remote";
constexpr const char* NO_TRACK = "/org/mpris/MediaPlayer2/TrackList/NoTrack";

constexpr const char* INTROSPECTION = R"(
<node>
  <interface name="org.mpris.MediaPlayer2">
    <method name="Raise"/>
    <method name="Quit"/>
    <property name="CanQuit" type="b" access="read"/>
    <property name="CanRaise" type="b" access="read"/>
    <property name="HasTrackList" type="b" access="read"/>
    <property name="Identity" type="s" access="read"/>
    <property name="DesktopEntry" type="s" access="read"/>
    <property name="SupportedUriSchemes" type="as" access="read"/>
    <property name="SupportedMimeTypes" type="as" access="read"/>
  </interface>
  <interface name="org.mpris.MediaPlayer2.Player">
    <method name="Next"/>
    <method name="Previous"/>
    <method name="Pause"/>
    <method name="PlayPause"/>
    <method name="Stop"/>
    <method name="Play"/>
    <method name="Seek"><arg direction="in" name="Offset" type="x"/></method>
    <method name="SetPosition">
      <arg direction="in" name="TrackId" type="o"/>
      <arg direction="in" name="Position" type="x"/>
    </method>
    <method name="OpenUri"><arg direction="in" name="Uri" type="s"/></method>
    <signal name="Seeked"><arg name="Position" type="x"/></signal>
    <property name="PlaybackStatus" type="s" access="read"/>
    <property name="Rate" type="d" access="readwrite"/>
    <property name="Metadata" type="a{sv}" access="read"/>
    <property name="Volume" type="d" access="readwrite"/>
    <property name="Position" type="x" access="read"/>
    <property name="MinimumRate" type="d" access="read"/>
    <property name="MaximumRate" type="d" access="read"/>
    <property name="CanGoNext" type="b" access="read"/>
    <property name="CanGoPrevious" type="b" access="read"/>
    <property name="CanPlay" type="b" access="read"/>
    <property name="CanPause" type="b" access="read"/>
    <property name="CanSeek" type="b" access="read"/>
    <property name="CanControl" type="b" access="read"/>
  </interface>
  <interface name="org.melkora.Remote">
    <method name="Command"><arg direction="in" name="Command" type="i"/></method>
  </interface>
</node>)";

const char* StatusName(MprisStatus status) {
    switch (status) {
    case MprisStatus::Playing:
        return "Playing";
    case MprisStatus::Paused:
        return "Paused";
    case MprisStatus::Stopped:
        break;
    }
    return "Stopped";
}

std::string TrackPath(int64_t id) {
    if (id < 0) {
        return NO_TRACK;
    }
    return "/org/melkora/track/" + std::to_string(id);
}

// A file:// address for a path, or empty.
std::string FileUri(const std::string& path) {
    if (path.empty()) {
        return {};
    }
    gchar* uri = g_filename_to_uri(path.c_str(), nullptr, nullptr);
    if (uri == nullptr) {
        return {};
    }
    std::string result = uri;
    g_free(uri);
    return result;
}

// Text for a D-Bus string: invalid UTF-8 (a tag in another code page) is
// replaced rather than refused.
GVariant* Text(const std::string& text) {
    gchar* valid = g_utf8_make_valid(text.c_str(), static_cast<gssize>(text.size()));
    GVariant* value = g_variant_new_string(valid);
    g_free(valid);
    return value;
}

GVariant* Metadata(const MprisTrack& track) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&builder, "{sv}", "mpris:trackid",
                          g_variant_new_object_path(TrackPath(track.id).c_str()));
    if (track.id < 0) {
        return g_variant_builder_end(&builder);
    }
    if (track.lengthMicroseconds > 0) {
        g_variant_builder_add(&builder, "{sv}", "mpris:length", g_variant_new_int64(track.lengthMicroseconds));
    }
    if (!track.title.empty()) {
        g_variant_builder_add(&builder, "{sv}", "xesam:title", Text(track.title));
    }
    if (!track.album.empty()) {
        g_variant_builder_add(&builder, "{sv}", "xesam:album", Text(track.album));
    }
    if (!track.artists.empty()) {
        GVariantBuilder artists;
        g_variant_builder_init(&artists, G_VARIANT_TYPE("as"));
        for (const std::string& artist : track.artists) {
            g_variant_builder_add_value(&artists, Text(artist));
        }
        g_variant_builder_add(&builder, "{sv}", "xesam:artist", g_variant_builder_end(&artists));
    }
    if (std::string uri = FileUri(track.path); !uri.empty()) {
        g_variant_builder_add(&builder, "{sv}", "xesam:url", g_variant_new_string(uri.c_str()));
    }
    if (std::string uri = FileUri(track.coverPath); !uri.empty()) {
        g_variant_builder_add(&builder, "{sv}", "mpris:artUrl", g_variant_new_string(uri.c_str()));
    }
    return g_variant_builder_end(&builder);
}

bool SameTrack(const MprisTrack& a, const MprisTrack& b) {
    return a.id == b.id && a.title == b.title && a.album == b.album && a.artists == b.artists &&
           a.lengthMicroseconds == b.lengthMicroseconds && a.path == b.path && a.coverPath == b.coverPath;
}

} // namespace

struct MprisService::Impl {
    MprisHost* host = nullptr;
    std::string busName;
    MprisState state;
    GDBusConnection* connection = nullptr;
    GDBusNodeInfo* node = nullptr;
    guint ownerId = 0;
    guint objects[3] = {0, 0, 0};
    bool ownsName = false;
    std::function<MprisState()> read;
    guint timer = 0;
    // The position at the last reading, to tell a jump made in the window
    // from the track playing on; -1 before the first.
    int64_t lastPosition = -1;
    int64_t lastTrack = -1;
    MprisStatus lastStatus = MprisStatus::Stopped;
    gint64 lastTime = 0;

    void Remember(int64_t position) {
        lastPosition = position;
        lastTrack = state.track.id;
        lastStatus = state.status;
        lastTime = g_get_monotonic_time();
    }

    // Announces Seeked when the position moved other than by playing: more
    // than a second off what the time since the last reading allows.
    void WatchPosition() {
        if (state.track.id < 0 || state.status == MprisStatus::Stopped) {
            lastPosition = -1;
            return;
        }
        int64_t position = host->Position();
        if (lastPosition >= 0 && lastTrack == state.track.id) {
            constexpr int64_t SLACK = 1'000'000;
            bool played = lastStatus == MprisStatus::Playing || state.status == MprisStatus::Playing;
            int64_t elapsed = played ? g_get_monotonic_time() - lastTime : 0;
            if (position < lastPosition - SLACK || position > lastPosition + elapsed + SLACK) {
                Emit(OBJECT_PATH, PLAYER_INTERFACE, "Seeked", g_variant_new("(x)", position));
            }
        }
        Remember(position);
    }

    GVariant* PlayerProperty(const char* name) {
        const MprisState& s = state;
        if (g_strcmp0(name, "PlaybackStatus") == 0) {
            return g_variant_new_string(StatusName(s.status));
        }
        if (g_strcmp0(name, "Rate") == 0 || g_strcmp0(name, "MinimumRate") == 0 ||
            g_strcmp0(name, "MaximumRate") == 0) {
            return g_variant_new_double(1.0);
        }
        if (g_strcmp0(name, "Metadata") == 0) {
            return Metadata(s.track);
        }
        if (g_strcmp0(name, "Volume") == 0) {
            return g_variant_new_double(s.volume);
        }
        if (g_strcmp0(name, "Position") == 0) {
            return g_variant_new_int64(s.track.id < 0 ? 0 : host->Position());
        }
        if (g_strcmp0(name, "CanGoNext") == 0) {
            return g_variant_new_boolean(s.canGoNext);
        }
        if (g_strcmp0(name, "CanGoPrevious") == 0) {
            return g_variant_new_boolean(s.canGoPrevious);
        }
        if (g_strcmp0(name, "CanPlay") == 0) {
            return g_variant_new_boolean(s.canPlay);
        }
        if (g_strcmp0(name, "CanPause") == 0) {
            return g_variant_new_boolean(s.canPause);
        }
        if (g_strcmp0(name, "CanSeek") == 0) {
            return g_variant_new_boolean(s.canSeek);
        }
        if (g_strcmp0(name, "CanControl") == 0) {
            return g_variant_new_boolean(TRUE);
        }
        return nullptr;
    }

    static GVariant* RootProperty(const char* name) {
        if (g_strcmp0(name, "CanQuit") == 0 || g_strcmp0(name, "CanRaise") == 0) {
            return g_variant_new_boolean(TRUE);
        }
        if (g_strcmp0(name, "HasTrackList") == 0) {
            return g_variant_new_boolean(FALSE);
        }
        if (g_strcmp0(name, "Identity") == 0) {
            return g_variant_new_string("Melkora Browser");
        }
        if (g_strcmp0(name, "DesktopEntry") == 0) {
            // The desktop entry's name without ".desktop".
            return g_variant_new_string("io.github.melkora.MelkoraBrowser");
        }
        if (g_strcmp0(name, "SupportedUriSchemes") == 0) {
            const gchar* schemes[] = {"file", nullptr};
            return g_variant_new_strv(schemes, -1);
        }
        if (g_strcmp0(name, "SupportedMimeTypes") == 0) {
            return g_variant_new_strv(nullptr, 0);
        }
        return nullptr;
    }

    void Emit(const char* path, const char* interface, const char* signal, GVariant* parameters) {
        if (connection == nullptr) {
            g_variant_unref(g_variant_ref_sink(parameters));
            return;
        }
        g_dbus_connection_emit_signal(connection, nullptr, path, interface, signal, parameters, nullptr);
    }

    void EmitChanged(GVariantBuilder* changed) {
        const gchar* invalidated[] = {nullptr};
        Emit(OBJECT_PATH, "org.freedesktop.DBus.Properties", "PropertiesChanged",
             g_variant_new("(sa{sv}^as)", PLAYER_INTERFACE, changed, invalidated));
    }

    // Moves to `position` in the current track when the player can seek
    // there; past the end goes on to the next track.
    void SeekTo(int64_t position) {
        if (position < 0) {
            position = 0;
        }
        if (state.track.lengthMicroseconds > 0 && position > state.track.lengthMicroseconds) {
            if (state.canGoNext) {
                host->Next();
            }
            return;
        }
        host->SetPosition(position);
        Emit(OBJECT_PATH, PLAYER_INTERFACE, "Seeked", g_variant_new("(x)", position));
        if (lastPosition >= 0) {
            Remember(position);
        }
    }

    void Call(const char* interface, const char* method, GVariant* parameters,
              GDBusMethodInvocation* invocation) {
        if (g_strcmp0(interface, REMOTE_INTERFACE) == 0) {
            gint32 command = 0;
            g_variant_get(parameters, "(i)", &command);
            if (command < 1 || command > 4) {
                g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                                      "remote commands are 1 to 4, not %d", command);
                return;
            }
            // The reply goes first: a command may run a modal loop.
            g_dbus_method_invocation_return_value(invocation, nullptr);
            host->RemoteCommand(command);
            return;
        }
        // Every method answers at once, so that a client never waits on
        // what the window does.
        g_dbus_method_invocation_return_value(invocation, nullptr);
        if (g_strcmp0(interface, ROOT_INTERFACE) == 0) {
            if (g_strcmp0(method, "Raise") == 0) {
                host->Raise();
            } else if (g_strcmp0(method, "Quit") == 0) {
                host->Quit();
            }
            return;
        }
        if (g_strcmp0(method, "PlayPause") == 0) {
            // Something to start or something to pause.
            if (state.canPlay || state.canPause) {
                host->PlayPause();
            }
        } else if (g_strcmp0(method, "Play") == 0) {
            if (state.canPlay) {
                host->Play();
            }
        } else if (g_strcmp0(method, "Pause") == 0) {
            if (state.canPause) {
                host->Pause();
            }
        } else if (g_strcmp0(method, "Stop") == 0) {
            host->Stop();
        } else if (g_strcmp0(method, "Next") == 0) {
            if (state.canGoNext) {
                host->Next();
            }
        } else if (g_strcmp0(method, "Previous") == 0) {
            if (state.canGoPrevious) {
                host->Previous();
            }
        } else if (g_strcmp0(method, "Seek") == 0) {
            gint64 offset = 0;
            g_variant_get(parameters, "(x)", &offset);
            if (state.canSeek && state.track.id >= 0) {
                int64_t now = host->Position();
                // Saturates rather than overflows on an absurd offset.
                int64_t target = offset > 0 && now > INT64_MAX - offset ? INT64_MAX
                                 : offset < 0 && now < INT64_MIN - offset ? 0
                                                                          : now + offset;
                SeekTo(target);
            }
        } else if (g_strcmp0(method, "SetPosition") == 0) {
            const gchar* track = nullptr;
            gint64 position = 0;
            g_variant_get(parameters, "(&ox)", &track, &position);
            // A stale track id or a position outside the track is ignored.
            if (state.canSeek && state.track.id >= 0 && TrackPath(state.track.id) == track && position >= 0 &&
                (state.track.lengthMicroseconds <= 0 || position <= state.track.lengthMicroseconds)) {
                SeekTo(position);
            }
        }
        // OpenUri: the program plays what its folders hold; nothing to do.
    }
};

namespace {

void OnMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar* interface, const gchar* method,
                  GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
    static_cast<MprisService::Impl*>(data)->Call(interface, method, parameters, invocation);
}

GVariant* OnGetProperty(GDBusConnection*, const gchar*, const gchar*, const gchar* interface,
                        const gchar* property, GError** error, gpointer data) {
    auto* impl = static_cast<MprisService::Impl*>(data);
    GVariant* value = g_strcmp0(interface, ROOT_INTERFACE) == 0 ? MprisService::Impl::RootProperty(property)
                                                                : impl->PlayerProperty(property);
    if (value == nullptr) {
        g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_PROPERTY, "no property %s", property);
    }
    return value;
}

gboolean OnSetProperty(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* property,
                       GVariant* value, GError** error, gpointer data) {
    auto* impl = static_cast<MprisService::Impl*>(data);
    if (g_strcmp0(property, "Volume") == 0) {
        double volume = g_variant_get_double(value);
        if (std::isnan(volume)) {
            g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS, "the volume is not a number");
            return FALSE;
        }
        impl->host->SetVolume(volume < 0 ? 0 : volume > 1 ? 1 : volume);
        return TRUE;
    }
    if (g_strcmp0(property, "Rate") == 0) {
        // Only the normal rate is played.
        return TRUE;
    }
    g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_PROPERTY_READ_ONLY, "%s is read-only", property);
    return FALSE;
}

const GDBusInterfaceVTable VTABLE = {OnMethodCall, OnGetProperty, OnSetProperty, {nullptr}};

} // namespace

MprisService::MprisService(MprisHost* host, const char* busName) : impl(std::make_unique<Impl>()) {
    impl->host = host;
    impl->busName = busName;
}

MprisService::~MprisService() { Stop(); }

bool MprisService::Start() {
    if (impl->connection != nullptr) {
        return true;
    }
    GError* error = nullptr;
    impl->connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    if (impl->connection == nullptr) {
        g_clear_error(&error);
        return false;
    }
    impl->node = g_dbus_node_info_new_for_xml(INTROSPECTION, nullptr);
    const struct {
        const char* path;
        const char* interface;
    } objects[] = {{OBJECT_PATH, ROOT_INTERFACE}, {OBJECT_PATH, PLAYER_INTERFACE}, {REMOTE_PATH, REMOTE_INTERFACE}};
    for (int i = 0; i < 3; ++i) {
        GDBusInterfaceInfo* info = g_dbus_node_info_lookup_interface(impl->node, objects[i].interface);
        impl->objects[i] = g_dbus_connection_register_object(impl->connection, objects[i].path, info, &VTABLE,
                                                             impl.get(), nullptr, nullptr);
    }
    impl->ownerId = g_bus_own_name_on_connection(
        impl->connection, impl->busName.c_str(), G_BUS_NAME_OWNER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, gpointer data) { static_cast<Impl*>(data)->ownsName = true; },
        [](GDBusConnection*, const gchar*, gpointer data) { static_cast<Impl*>(data)->ownsName = false; },
        impl.get(), nullptr);
    return true;
}

void MprisService::Watch(std::function<MprisState()> read, unsigned milliseconds) {
    if (impl->timer != 0) {
        g_source_remove(impl->timer);
        impl->timer = 0;
    }
    impl->read = std::move(read);
    impl->lastPosition = -1;
    if (!impl->read) {
        return;
    }
    impl->timer = g_timeout_add(
        milliseconds,
        [](gpointer data) -> gboolean {
            auto* service = static_cast<MprisService*>(data);
            service->Update(service->impl->read());
            service->impl->WatchPosition();
            return G_SOURCE_CONTINUE;
        },
        this);
}

void MprisService::Stop() {
    Watch(nullptr, 0);
    if (impl->ownerId != 0) {
        g_bus_unown_name(impl->ownerId);
        impl->ownerId = 0;
    }
    for (guint& object : impl->objects) {
        if (object != 0) {
            g_dbus_connection_unregister_object(impl->connection, object);
            object = 0;
        }
    }
    if (impl->node != nullptr) {
        g_dbus_node_info_unref(impl->node);
        impl->node = nullptr;
    }
    if (impl->connection != nullptr) {
        g_dbus_connection_flush_sync(impl->connection, nullptr, nullptr);
        g_object_unref(impl->connection);
        impl->connection = nullptr;
    }
    impl->ownsName = false;
}

bool MprisService::OwnsName() const { return impl->ownsName; }

const MprisState& MprisService::State() const { return impl->state; }

void MprisService::Update(const MprisState& state) {
    MprisState old = impl->state;
    impl->state = state;
    GVariantBuilder changed;
    g_variant_builder_init(&changed, G_VARIANT_TYPE("a{sv}"));
    bool any = false;
    auto add = [&](bool differs, const char* name) {
        if (differs) {
            g_variant_builder_add(&changed, "{sv}", name, impl->PlayerProperty(name));
            any = true;
        }
    };
    add(old.status != state.status, "PlaybackStatus");
    add(!SameTrack(old.track, state.track), "Metadata");
    add(old.volume != state.volume, "Volume");
    add(old.canGoNext != state.canGoNext, "CanGoNext");
    add(old.canGoPrevious != state.canGoPrevious, "CanGoPrevious");
    add(old.canPlay != state.canPlay, "CanPlay");
    add(old.canPause != state.canPause, "CanPause");
    add(old.canSeek != state.canSeek, "CanSeek");
    if (any) {
        impl->EmitChanged(&changed);
    } else {
        g_variant_builder_clear(&changed);
    }
}

void MprisService::Seeked(int64_t microseconds) {
    impl->Emit(OBJECT_PATH, PLAYER_INTERFACE, "Seeked", g_variant_new("(x)", microseconds));
}

int SendRemoteCommand(int command, std::string* error, const char* busName) {
    if (command < 1 || command > 4) {
        *error = "remote commands are 1 to 4";
        return 1;
    }
    GError* failure = nullptr;
    GDBusConnection* connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &failure);
    if (connection == nullptr) {
        *error = std::string("no session bus: ") + failure->message;
        g_error_free(failure);
        return 1;
    }
    GVariant* reply = g_dbus_connection_call_sync(connection, busName, REMOTE_PATH, REMOTE_INTERFACE, "Command",
                                                  g_variant_new("(i)", command), nullptr,
                                                  G_DBUS_CALL_FLAGS_NO_AUTO_START, 5000, nullptr, &failure);
    g_object_unref(connection);
    if (reply == nullptr) {
        bool absent = g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
                      g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER);
        *error = absent ? std::string("no running instance") : std::string(failure->message);
        g_error_free(failure);
        return 1;
    }
    g_variant_unref(reply);
    return 0;
}

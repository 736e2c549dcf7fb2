#include "toolkit/platform/gtk/gtk_tray.h"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <map>
#include <memory>
#include <string>

#ifdef MELKORA_HAVE_APPINDICATOR
#include <libayatana-appindicator/app-indicator.h>
#endif

#include "foundation/image.h"
#include "toolkit/platform/events.h"

// GtkStatusIcon is deprecated in GTK 3 but is the only way into an XEmbed tray.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS

namespace {

struct Tray {
    int id = 0;
#ifdef MELKORA_HAVE_APPINDICATOR
    AppIndicator* indicator = nullptr;
    std::string iconFolder; // the pictures written for the host, by name
    int iconSerial = 0;
#endif
    GtkStatusIcon* status = nullptr;
    GtkWidget* menu = nullptr;
    GdkPixbuf* pixbuf = nullptr;
    std::string iconName; // of the theme; empty: the picture
    std::string tip;
};

std::map<int, std::unique_ptr<Tray>>& Trays() {
    static std::map<int, std::unique_ptr<Tray>> trays;
    return trays;
}

Tray* Find(int tray) {
    auto it = Trays().find(tray);
    return it != Trays().end() ? it->second.get() : nullptr;
}

GdkPixbuf* PixbufOf(const SImage& icon) {
    cairo_surface_t* surface = icon.CreateSurface();
    if (surface == nullptr) {
        return nullptr;
    }
    GdkPixbuf* pixbuf =
        gdk_pixbuf_get_from_surface(surface, 0, 0, cairo_image_surface_get_width(surface),
                                    cairo_image_surface_get_height(surface));
    cairo_surface_destroy(surface);
    return pixbuf;
}

bool ThemeHas(const char* iconName) {
    return iconName != nullptr && *iconName != 0 &&
           gtk_icon_theme_has_icon(gtk_icon_theme_get_default(), iconName);
}

void TakeIcon(Tray* tray, const SImage& icon, const char* iconName) {
    if (tray->pixbuf != nullptr) {
        g_object_unref(tray->pixbuf);
    }
    tray->pixbuf = PixbufOf(icon);
    tray->iconName = ThemeHas(iconName) ? iconName : "";
}

// An XEmbed tray: a client owns the selection _NET_SYSTEM_TRAY_S<screen>.
bool HasXEmbedTray() {
    GdkDisplay* display = gdk_display_get_default();
    if (display == nullptr || !GDK_IS_X11_DISPLAY(display)) {
        return false;
    }
    int screen = gdk_x11_screen_get_screen_number(gdk_screen_get_default());
    std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
    Atom selection = gdk_x11_get_xatom_by_name_for_display(display, name.c_str());
    return XGetSelectionOwner(GDK_DISPLAY_XDISPLAY(display), selection) != None;
}

// --- the menu ---------------------------------------------------------

void OnItemActivate(GtkMenuItem* item, gpointer data) {
    int id = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(item), "melkora-command"));
    PlatformTrayCommand(GPOINTER_TO_INT(data), id);
}

// The menu of the items; the item marked secondary, if any, in *secondary.
GtkWidget* BuildMenu(int tray, const std::vector<STrayMenuItem>& items, GtkWidget** secondary) {
    GtkWidget* menu = gtk_menu_new();
    for (const STrayMenuItem& item : items) {
        GtkWidget* widget = nullptr;
        if (item.separator) {
            widget = gtk_separator_menu_item_new();
        } else if (item.checked) {
            widget = gtk_check_menu_item_new_with_mnemonic(item.text.c_str());
            // before the handler: setting the state activates the item
            gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(widget), TRUE);
        } else {
            widget = gtk_menu_item_new_with_mnemonic(item.text.c_str());
        }
        if (!item.separator) {
            gtk_widget_set_sensitive(widget, !item.disabled);
            if (!item.submenu.empty()) {
                gtk_menu_item_set_submenu(GTK_MENU_ITEM(widget),
                                          BuildMenu(tray, item.submenu, secondary));
            } else {
                g_object_set_data(G_OBJECT(widget), "melkora-command", GINT_TO_POINTER(item.id));
                g_signal_connect(widget, "activate", G_CALLBACK(OnItemActivate),
                                 GINT_TO_POINTER(tray));
                if (item.secondary && !item.disabled && *secondary == nullptr) {
                    *secondary = widget;
                }
            }
        }
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), widget);
    }
    gtk_widget_show_all(menu);
    return menu;
}

// --- GtkStatusIcon, in an XEmbed tray ---------------------------------------

void OnStatusActivate(GtkStatusIcon*, gpointer data) {
    PlatformTrayEvent(GPOINTER_TO_INT(data), STrayEvent::ACTIVATE);
}

void OnStatusPopupMenu(GtkStatusIcon*, guint, guint, gpointer data) {
    PlatformTrayEvent(GPOINTER_TO_INT(data), STrayEvent::CONTEXT_MENU);
}

gboolean OnStatusPress(GtkStatusIcon*, GdkEventButton* event, gpointer data) {
    if (event->type == GDK_BUTTON_PRESS && event->button == 2) {
        PlatformTrayEvent(GPOINTER_TO_INT(data), STrayEvent::SECONDARY_ACTIVATE);
        return TRUE;
    }
    return FALSE;
}

void ShowStatusIcon(Tray* tray) {
    if (!tray->iconName.empty()) {
        gtk_status_icon_set_from_icon_name(tray->status, tray->iconName.c_str());
    } else if (tray->pixbuf != nullptr) {
        gtk_status_icon_set_from_pixbuf(tray->status, tray->pixbuf);
    }
    gtk_status_icon_set_tooltip_text(tray->status, tray->tip.c_str());
    gtk_status_icon_set_title(tray->status, tray->tip.c_str());
}

GtkStatusIcon* MakeStatusIcon(Tray* tray) {
    tray->status = gtk_status_icon_new();
    ShowStatusIcon(tray);
    g_signal_connect(tray->status, "activate", G_CALLBACK(OnStatusActivate),
                     GINT_TO_POINTER(tray->id));
    g_signal_connect(tray->status, "popup-menu", G_CALLBACK(OnStatusPopupMenu),
                     GINT_TO_POINTER(tray->id));
    g_signal_connect(tray->status, "button-press-event", G_CALLBACK(OnStatusPress),
                     GINT_TO_POINTER(tray->id));
    gtk_status_icon_set_visible(tray->status, TRUE);
    return tray->status;
}

void DropStatusIcon(Tray* tray) {
    if (tray->status != nullptr) {
        g_signal_handlers_disconnect_by_data(tray->status, GINT_TO_POINTER(tray->id));
        gtk_status_icon_set_visible(tray->status, FALSE);
        g_object_unref(tray->status);
        tray->status = nullptr;
    }
}

#ifdef MELKORA_HAVE_APPINDICATOR
// --- a StatusNotifierItem ---------------------------------------------------

// Whether a StatusNotifierItem host watches on the session bus. Only a bus
// that exists is asked: GLib would otherwise start one.
bool HasNotifierWatcher() {
    const char* address = g_getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address == nullptr || *address == 0) {
        const char* runtime = g_getenv("XDG_RUNTIME_DIR");
        if (runtime == nullptr) {
            return false;
        }
        std::string bus = std::string(runtime) + "/bus";
        if (!g_file_test(bus.c_str(), G_FILE_TEST_EXISTS)) {
            return false;
        }
    }
    GDBusConnection* connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (connection == nullptr) {
        return false;
    }
    GVariant* reply = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "NameHasOwner", g_variant_new("(s)", "org.kde.StatusNotifierWatcher"),
        G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, 1000, nullptr, nullptr);
    gboolean owned = FALSE;
    if (reply != nullptr) {
        g_variant_get(reply, "(b)", &owned);
        g_variant_unref(reply);
    }
    g_object_unref(connection);
    return owned;
}

Tray* FindByIndicator(AppIndicator* indicator) {
    for (auto& [id, tray] : Trays()) {
        if (tray->indicator == indicator) {
            return tray.get();
        }
    }
    return nullptr;
}

// When the host goes away, the library asks for a GtkStatusIcon in its
// place: ours, with our own signals, rather than its own.
GtkStatusIcon* IndicatorFallback(AppIndicator* indicator) {
    Tray* tray = FindByIndicator(indicator);
    return tray != nullptr && tray->status == nullptr ? MakeStatusIcon(tray) : nullptr;
}

void IndicatorUnfallback(AppIndicator* indicator, GtkStatusIcon*) {
    if (Tray* tray = FindByIndicator(indicator)) {
        DropStatusIcon(tray);
    }
}

void RemoveIconFolder(Tray* tray) {
    if (tray->iconFolder.empty()) {
        return;
    }
    if (GDir* dir = g_dir_open(tray->iconFolder.c_str(), 0, nullptr)) {
        while (const char* name = g_dir_read_name(dir)) {
            std::string path = tray->iconFolder + "/" + name;
            g_unlink(path.c_str());
        }
        g_dir_close(dir);
    }
    g_rmdir(tray->iconFolder.c_str());
    tray->iconFolder.clear();
}

// The host reads an icon by name: the theme's, or a picture written into
// a folder of our own under a new name each time (hosts keep pictures by
// name).
void ShowIndicatorIcon(Tray* tray) {
    if (!tray->iconName.empty() || tray->pixbuf == nullptr) {
        app_indicator_set_icon_full(tray->indicator, tray->iconName.c_str(), tray->tip.c_str());
        return;
    }
    if (tray->iconFolder.empty()) {
        gchar* folder = g_dir_make_tmp("melkora-tray-XXXXXX", nullptr);
        if (folder == nullptr) {
            return;
        }
        tray->iconFolder = folder;
        g_free(folder);
        app_indicator_set_icon_theme_path(tray->indicator, tray->iconFolder.c_str());
    }
    std::string old =
        tray->iconFolder + "/melkora-tray-" + std::to_string(tray->iconSerial) + ".png";
    std::string name = "melkora-tray-" + std::to_string(++tray->iconSerial);
    std::string path = tray->iconFolder + "/" + name + ".png";
    if (gdk_pixbuf_save(tray->pixbuf, path.c_str(), "png", nullptr, nullptr)) {
        app_indicator_set_icon_full(tray->indicator, name.c_str(), tray->tip.c_str());
        g_unlink(old.c_str());
    }
}

bool MakeIndicator(Tray* tray) {
    AppIndicatorClass* klass = APP_INDICATOR_CLASS(g_type_class_ref(APP_INDICATOR_TYPE));
    klass->fallback = IndicatorFallback;
    klass->unfallback = IndicatorUnfallback;
    g_type_class_unref(klass);
    std::string id =
        tray->id == 1 ? "melkora-browser" : "melkora-browser-" + std::to_string(tray->id);
    tray->indicator = app_indicator_new(id.c_str(), "", APP_INDICATOR_CATEGORY_APPLICATION_STATUS);
    if (tray->indicator == nullptr) {
        return false;
    }
    ShowIndicatorIcon(tray);
    app_indicator_set_title(tray->indicator, tray->tip.c_str());
    // A menu from the start: a host shows no item without one.
    GtkWidget* secondary = nullptr;
    tray->menu = BuildMenu(tray->id, {}, &secondary);
    g_object_ref_sink(tray->menu);
    app_indicator_set_menu(tray->indicator, GTK_MENU(tray->menu));
    app_indicator_set_status(tray->indicator, APP_INDICATOR_STATUS_ACTIVE);
    return true;
}
#endif

void DropMenu(Tray* tray) {
    if (tray->menu != nullptr) {
        gtk_widget_destroy(tray->menu);
        g_object_unref(tray->menu);
        tray->menu = nullptr;
    }
}

void Destroy(Tray* tray) {
#ifdef MELKORA_HAVE_APPINDICATOR
    if (tray->indicator != nullptr) {
        app_indicator_set_status(tray->indicator, APP_INDICATOR_STATUS_PASSIVE);
        g_object_unref(tray->indicator); // the library drops its status icon by unfallback
        tray->indicator = nullptr;
    }
    RemoveIconFolder(tray);
#endif
    DropStatusIcon(tray);
    DropMenu(tray);
    if (tray->pixbuf != nullptr) {
        g_object_unref(tray->pixbuf);
        tray->pixbuf = nullptr;
    }
}

} // namespace

bool GtkTrayAdd(int id, const SImage& icon, const char* iconName, const char* tip) {
    if (Find(id) != nullptr) {
        return true;
    }
    auto tray = std::make_unique<Tray>();
    tray->id = id;
    tray->tip = tip != nullptr ? tip : "";
    TakeIcon(tray.get(), icon, iconName);
    bool made = false;
#ifdef MELKORA_HAVE_APPINDICATOR
    made = HasNotifierWatcher() && MakeIndicator(tray.get());
#endif
    if (!made && HasXEmbedTray()) {
        made = MakeStatusIcon(tray.get()) != nullptr;
    }
    if (!made) {
        Destroy(tray.get());
        return false;
    }
    Trays()[id] = std::move(tray);
    return true;
}

void GtkTraySetIcon(int id, const SImage& icon, const char* iconName) {
    Tray* tray = Find(id);
    if (tray == nullptr) {
        return;
    }
    TakeIcon(tray, icon, iconName);
#ifdef MELKORA_HAVE_APPINDICATOR
    if (tray->indicator != nullptr) {
        ShowIndicatorIcon(tray);
    }
#endif
    if (tray->status != nullptr) {
        ShowStatusIcon(tray);
    }
}

void GtkTraySetTip(int id, const char* tip) {
    Tray* tray = Find(id);
    if (tray == nullptr) {
        return;
    }
    tray->tip = tip != nullptr ? tip : "";
#ifdef MELKORA_HAVE_APPINDICATOR
    if (tray->indicator != nullptr) {
        app_indicator_set_title(tray->indicator, tray->tip.c_str());
    }
#endif
    if (tray->status != nullptr) {
        gtk_status_icon_set_tooltip_text(tray->status, tray->tip.c_str());
        gtk_status_icon_set_title(tray->status, tray->tip.c_str());
    }
}

void GtkTraySetMenu(int id, const std::vector<STrayMenuItem>& items) {
    Tray* tray = Find(id);
    if (tray == nullptr) {
        return;
    }
    GtkWidget* secondary = nullptr;
    GtkWidget* menu = BuildMenu(id, items, &secondary);
    g_object_ref_sink(menu);
#ifdef MELKORA_HAVE_APPINDICATOR
    if (tray->indicator != nullptr) {
        // A host's SecondaryActivate (a middle click) activates this item,
        // which must be a shown item of the menu in place.
        app_indicator_set_menu(tray->indicator, GTK_MENU(menu));
        app_indicator_set_secondary_activate_target(tray->indicator, secondary);
    }
#endif
    DropMenu(tray);
    tray->menu = menu;
}

bool GtkTrayPopupMenu(int id) {
    Tray* tray = Find(id);
    if (tray == nullptr || tray->status == nullptr || tray->menu == nullptr) {
        return false;
    }
    gtk_menu_popup_at_pointer(GTK_MENU(tray->menu), nullptr);
    return true;
}

void GtkTrayRemove(int id) {
    auto it = Trays().find(id);
    if (it != Trays().end()) {
        Destroy(it->second.get());
        Trays().erase(it);
    }
}

void GtkTrayRemoveAll() {
    for (auto& [id, tray] : Trays()) {
        Destroy(tray.get());
    }
    Trays().clear();
}

bool GtkTrayHasNotifierItems() {
#ifdef MELKORA_HAVE_APPINDICATOR
    return true;
#else
    return false;
#endif
}

int GtkTrayKind(int id) {
    Tray* tray = Find(id);
    if (tray == nullptr) {
        return 0;
    }
#ifdef MELKORA_HAVE_APPINDICATOR
    if (tray->indicator != nullptr && tray->status == nullptr) {
        return 1;
    }
#endif
    return tray->status != nullptr ? 2 : 0;
}

bool GtkTrayPretendXEmbedHost(bool on) {
    static GtkWidget* manager = nullptr;
    GdkDisplay* display = gdk_display_get_default();
    if (display == nullptr) {
        return false;
    }
    int screen = gdk_x11_screen_get_screen_number(gdk_screen_get_default());
    std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
    GdkAtom selection = gdk_atom_intern(name.c_str(), FALSE);
    if (!on) {
        if (manager != nullptr) {
            gtk_selection_owner_set_for_display(display, nullptr, selection, GDK_CURRENT_TIME);
            gtk_widget_destroy(manager);
            manager = nullptr;
        }
        return true;
    }
    if (manager == nullptr) {
        manager = gtk_invisible_new();
        gtk_widget_realize(manager);
    }
    return gtk_selection_owner_set_for_display(display, manager, selection, GDK_CURRENT_TIME);
}

namespace {

// The pretended watcher: the item that registered (its bus name and
// object path) and the answers of the item to what the test asked.
struct Watcher {
    GDBusConnection* connection = nullptr;
    std::string itemName;
    std::string itemPath;
    std::map<std::string, std::string> properties;
};

Watcher& TheWatcher() {
    static Watcher watcher;
    return watcher;
}

const char* WATCHER_XML =
    "<node><interface name='org.kde.StatusNotifierWatcher'>"
    "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
    "<method name='RegisterStatusNotifierHost'><arg type='s' direction='in'/></method>"
    "<property name='RegisteredStatusNotifierItems' type='as' access='read'/>"
    "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
    "<property name='ProtocolVersion' type='i' access='read'/>"
    "<signal name='StatusNotifierItemRegistered'><arg type='s'/></signal>"
    "</interface></node>";

void OnWatcherCall(GDBusConnection*, const gchar* sender, const gchar*, const gchar*,
                   const gchar* method, GVariant* parameters, GDBusMethodInvocation* invocation,
                   gpointer) {
    if (g_strcmp0(method, "RegisterStatusNotifierItem") == 0) {
        const gchar* item = nullptr;
        g_variant_get(parameters, "(&s)", &item);
        // An item names its object path (its bus name is the sender's) or
        // its bus name (its path is then the usual one).
        Watcher& watcher = TheWatcher();
        if (item != nullptr && item[0] == '/') {
            watcher.itemName = sender != nullptr ? sender : "";
            watcher.itemPath = item;
        } else {
            watcher.itemName = item != nullptr ? item : "";
            watcher.itemPath = "/StatusNotifierItem";
        }
    }
    g_dbus_method_invocation_return_value(invocation, nullptr);
}

GVariant* OnWatcherProperty(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                            const gchar* property, GError**, gpointer) {
    if (g_strcmp0(property, "IsStatusNotifierHostRegistered") == 0) {
        return g_variant_new_boolean(TRUE);
    }
    if (g_strcmp0(property, "ProtocolVersion") == 0) {
        return g_variant_new_int32(0);
    }
    const gchar* none[] = {nullptr};
    return g_variant_new_strv(none, 0);
}

void OnItemProperty(GObject* source, GAsyncResult* result, gpointer data) {
    std::string* property = static_cast<std::string*>(data);
    GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
    std::string value = "(no answer)";
    if (reply != nullptr) {
        GVariant* inner = nullptr;
        g_variant_get(reply, "(v)", &inner);
        if (inner != nullptr) {
            if (g_variant_is_of_type(inner, G_VARIANT_TYPE_STRING) ||
                g_variant_is_of_type(inner, G_VARIANT_TYPE_OBJECT_PATH)) {
                value = g_variant_get_string(inner, nullptr);
            }
            g_variant_unref(inner);
        }
        g_variant_unref(reply);
    }
    TheWatcher().properties[*property] = value;
    delete property;
}

} // namespace

bool GtkTrayPretendNotifierWatcher() {
    Watcher& watcher = TheWatcher();
    if (watcher.connection != nullptr) {
        return true;
    }
    GDBusConnection* connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (connection == nullptr) {
        return false;
    }
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(WATCHER_XML, nullptr);
    static const GDBusInterfaceVTable vtable = {OnWatcherCall, OnWatcherProperty, nullptr, {}};
    guint object = node != nullptr
                       ? g_dbus_connection_register_object(connection, "/StatusNotifierWatcher",
                                                           node->interfaces[0], &vtable, nullptr,
                                                           nullptr, nullptr)
                       : 0;
    if (node != nullptr) {
        g_dbus_node_info_unref(node);
    }
    // 4: DBUS_NAME_FLAG_DO_NOT_QUEUE; the answer 1 is "primary owner".
    GVariant* reply = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.kde.StatusNotifierWatcher", 4u),
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, 2000, nullptr, nullptr);
    guint answer = 0;
    if (reply != nullptr) {
        g_variant_get(reply, "(u)", &answer);
        g_variant_unref(reply);
    }
    if (object == 0 || answer != 1) {
        g_object_unref(connection);
        return false;
    }
    // Kept for the rest of the process: the bus is shared only while someone
    // holds it, and the name goes with the connection.
    watcher.connection = connection;
    return true;
}

bool GtkTrayWatcherHasItem() {
    return !TheWatcher().itemName.empty();
}

bool GtkTrayCallItem(const char* method) {
    Watcher& watcher = TheWatcher();
    if (watcher.connection == nullptr || watcher.itemName.empty()) {
        return false;
    }
    // Asynchronous: the item answers on this same thread's loop.
    g_dbus_connection_call(watcher.connection, watcher.itemName.c_str(), watcher.itemPath.c_str(),
                           "org.kde.StatusNotifierItem", method, g_variant_new("(ii)", 0, 0),
                           nullptr, G_DBUS_CALL_FLAGS_NONE, 2000, nullptr, nullptr, nullptr);
    return true;
}

bool GtkTrayAskItemProperty(const char* property) {
    Watcher& watcher = TheWatcher();
    if (watcher.connection == nullptr || watcher.itemName.empty()) {
        return false;
    }
    watcher.properties.erase(property);
    g_dbus_connection_call(watcher.connection, watcher.itemName.c_str(), watcher.itemPath.c_str(),
                           "org.freedesktop.DBus.Properties", "Get",
                           g_variant_new("(ss)", "org.kde.StatusNotifierItem", property),
                           G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, 2000, nullptr,
                           OnItemProperty, new std::string(property));
    return true;
}

bool GtkTrayItemProperty(const char* property, SString* value) {
    auto it = TheWatcher().properties.find(property);
    if (it == TheWatcher().properties.end()) {
        return false;
    }
    *value = it->second.c_str();
    return true;
}

G_GNUC_END_IGNORE_DEPRECATIONS

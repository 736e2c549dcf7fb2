#include "toolkit/platform/gtk/gtk_platform.h"

#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <X11/Xatom.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <climits>
#include <map>
#include <string>
#include <vector>

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/keyboard.h"
#include "toolkit/draw.h"
#include "toolkit/hosted_child.h"
#include "toolkit/messages.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/gtk/gtk_theme.h"
#include "toolkit/platform/gtk/gtk_tray.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

struct Surface {
    HWND hwnd = 0;
    GtkWidget* window = nullptr;
    GtkWidget* area = nullptr;
    GtkWidget* overlay = nullptr; // holds the area and the hosted children over it
    // Smooth scrolling not yet given as whole notches, in wheel units.
    double wheelX = 0;
    double wheelY = 0;
    bool popup = false; // grabs the pointer and keyboard while mapped
    // The input method: keys pass through it while a window that takes
    // text has the focus; what it commits while filtering a key is held in
    // pending and given after the key.
    GtkIMContext* im = nullptr;
    bool imFocused = false;
    bool inFilter = false;
    std::string pending;
    // Docked at the bottom edge: where, and whether it reserved its space.
    bool docked = false;
    bool reserved = false;
    SRect dockRect;
    // The window manager kept dockRect's space at the last dock; it may
    // still leave it out of the work area a moment after the undock.
    bool keptSpace = false;
    // How many times a docked window was put back after the window manager
    // placed it elsewhere; a few at most, so that none is fought forever.
    int dockReturns = 0;
};

// The properties by which a window keeps the space of a bar from the other
// windows (X11 only): the bottom strut is measured from the root window's
// bottom edge and spans the bar's columns. False where the display is not
// X11 or the window manager does not read them, so that nothing is kept.
bool SetStruts(GtkWidget* widget, const SRect& rect) {
    GdkWindow* window = gtk_widget_get_window(widget);
    GdkDisplay* display = window != nullptr ? gdk_window_get_display(window) : nullptr;
    if (display == nullptr || !GDK_IS_X11_DISPLAY(display)) {
        return false;
    }
    Display* x = GDK_DISPLAY_XDISPLAY(display);
    Window xid = GDK_WINDOW_XID(window);
    GdkScreen* screen = gdk_window_get_screen(window);
    long rootHeight = HeightOfScreen(gdk_x11_screen_get_xscreen(screen));
    long bottom = std::max(0L, rootHeight - rect.top);
    // Left, right, top and bottom; then the first and last row of the left
    // and right struts, and the first and last column of the top and bottom.
    long partial[12] = {0, 0, 0, bottom};
    partial[10] = rect.left;
    partial[11] = std::max(rect.left, rect.right - 1);
    long strut[4] = {0, 0, 0, bottom};
    XChangeProperty(x, xid, XInternAtom(x, "_NET_WM_STRUT_PARTIAL", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<unsigned char*>(partial), 12);
    XChangeProperty(x, xid, XInternAtom(x, "_NET_WM_STRUT", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<unsigned char*>(strut), 4);
    XFlush(x);
    return gdk_x11_screen_supports_net_wm_hint(
               screen, gdk_atom_intern_static_string("_NET_WM_STRUT_PARTIAL")) ||
           gdk_x11_screen_supports_net_wm_hint(screen,
                                               gdk_atom_intern_static_string("_NET_WM_STRUT"));
}

// The lowest row that the bottom struts of the other windows (those of
// _NET_CLIENT_LIST but the widget's own) leave free across the columns of
// columns, in root coordinates; false where that cannot be read (not X11,
// no client list).
bool BottomFreeOfOtherStruts(GtkWidget* widget, const SRect& columns, int* bottom) {
    GdkWindow* window = gtk_widget_get_window(widget);
    GdkDisplay* display = window != nullptr ? gdk_window_get_display(window) : nullptr;
    if (display == nullptr || !GDK_IS_X11_DISPLAY(display)) {
        return false;
    }
    Display* x = GDK_DISPLAY_XDISPLAY(display);
    Window own = GDK_WINDOW_XID(window);
    Window root = GDK_WINDOW_XID(gdk_screen_get_root_window(gdk_window_get_screen(window)));
    long rootHeight = HeightOfScreen(gdk_x11_screen_get_xscreen(gdk_window_get_screen(window)));
    // A property as 32-bit items, at most limit of them; empty when absent.
    auto read = [&](Window from, const char* name, Atom type, long limit) {
        std::vector<long> values;
        Atom actual = None;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        if (XGetWindowProperty(x, from, XInternAtom(x, name, False), 0, limit, False, type, &actual,
                               &format, &count, &after, &data) == Success &&
            data != nullptr && format == 32) {
            const long* items = reinterpret_cast<const long*>(data);
            values.assign(items, items + count);
        }
        if (data != nullptr) {
            XFree(data);
        }
        return values;
    };
    // A client may go away while it is read: its errors are ignored.
    gdk_x11_display_error_trap_push(display);
    std::vector<long> clients = read(root, "_NET_CLIENT_LIST", XA_WINDOW, 4096);
    bool found = !clients.empty();
    long reserved = 0;
    for (long client : clients) {
        if (static_cast<Window>(client) == own) {
            continue;
        }
        std::vector<long> strut =
            read(static_cast<Window>(client), "_NET_WM_STRUT_PARTIAL", XA_CARDINAL, 12);
        long first = 0, last = LONG_MAX;
        if (strut.size() == 12) {
            first = strut[10];
            last = strut[11];
        } else {
            strut = read(static_cast<Window>(client), "_NET_WM_STRUT", XA_CARDINAL, 4);
        }
        if (strut.size() >= 4 && first < columns.right && last >= columns.left) {
            reserved = std::max(reserved, strut[3]);
        }
    }
    gdk_x11_display_error_trap_pop_ignored(display);
    if (found) {
        *bottom = static_cast<int>(std::max(0L, rootHeight - reserved));
    }
    return found;
}

void ClearStruts(GtkWidget* widget) {
    GdkWindow* window = gtk_widget_get_window(widget);
    GdkDisplay* display = window != nullptr ? gdk_window_get_display(window) : nullptr;
    if (display == nullptr || !GDK_IS_X11_DISPLAY(display)) {
        return;
    }
    Display* x = GDK_DISPLAY_XDISPLAY(display);
    Window xid = GDK_WINDOW_XID(window);
    XDeleteProperty(x, xid, XInternAtom(x, "_NET_WM_STRUT_PARTIAL", False));
    XDeleteProperty(x, xid, XInternAtom(x, "_NET_WM_STRUT", False));
    XFlush(x);
}

unsigned KeyFlags(guint state) {
    unsigned flags = 0;
    if ((state & GDK_BUTTON1_MASK) != 0) {
        flags |= MK_LBUTTON;
    }
    if ((state & GDK_BUTTON2_MASK) != 0) {
        flags |= MK_MBUTTON;
    }
    if ((state & GDK_BUTTON3_MASK) != 0) {
        flags |= MK_RBUTTON;
    }
    if ((state & GDK_SHIFT_MASK) != 0) {
        flags |= MK_SHIFT;
    }
    if ((state & GDK_CONTROL_MASK) != 0) {
        flags |= MK_CONTROL;
    }
    return flags;
}

// The virtual key code of a GDK key value; 0 for keys the toolkit ignores.
unsigned VirtualKey(guint keyval) {
    guint upper = gdk_keyval_to_upper(keyval);
    if ((upper >= 'A' && upper <= 'Z') || (upper >= '0' && upper <= '9')) {
        return upper;
    }
    if (keyval >= GDK_KEY_F1 && keyval <= GDK_KEY_F24) {
        return 112 + (keyval - GDK_KEY_F1);
    }
    if (keyval >= GDK_KEY_KP_0 && keyval <= GDK_KEY_KP_9) {
        return 96 + (keyval - GDK_KEY_KP_0);
    }
    switch (keyval) {
    case GDK_KEY_BackSpace: return 8;
    case GDK_KEY_Tab:
    case GDK_KEY_ISO_Left_Tab: return 9;
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter: return 13;
    case GDK_KEY_Shift_L:
    case GDK_KEY_Shift_R: return 16;
    case GDK_KEY_Control_L:
    case GDK_KEY_Control_R: return 17;
    case GDK_KEY_Alt_L:
    case GDK_KEY_Alt_R: return 18;
    case GDK_KEY_Pause: return 19;
    case GDK_KEY_Caps_Lock: return 20;
    case GDK_KEY_Escape: return 27;
    case GDK_KEY_space: return 32;
    case GDK_KEY_Page_Up: return 33;
    case GDK_KEY_Page_Down: return 34;
    case GDK_KEY_End: return 35;
    case GDK_KEY_Home: return 36;
    case GDK_KEY_Left: return 37;
    case GDK_KEY_Up: return 38;
    case GDK_KEY_Right: return 39;
    case GDK_KEY_Down: return 40;
    case GDK_KEY_Insert: return 45;
    case GDK_KEY_Delete: return 46;
    case GDK_KEY_Menu: return 93;
    default: return 0;
    }
}

// The GDK key value of a virtual key code, the reverse of VirtualKey; 0 for
// a code without one.
guint KeyvalOf(unsigned code) {
    if (code >= 'A' && code <= 'Z') {
        return GDK_KEY_a + (code - 'A');
    }
    if (code >= '0' && code <= '9') {
        return GDK_KEY_0 + (code - '0');
    }
    if (code >= 112 && code <= 135) {
        return GDK_KEY_F1 + (code - 112);
    }
    if (code >= 96 && code <= 105) {
        return GDK_KEY_KP_0 + (code - 96);
    }
    for (guint keyval : {GDK_KEY_BackSpace, GDK_KEY_Tab, GDK_KEY_Return, GDK_KEY_Shift_L,
                         GDK_KEY_Control_L, GDK_KEY_Alt_L, GDK_KEY_Pause, GDK_KEY_Caps_Lock,
                         GDK_KEY_Escape, GDK_KEY_space, GDK_KEY_Page_Up, GDK_KEY_Page_Down,
                         GDK_KEY_End, GDK_KEY_Home, GDK_KEY_Left, GDK_KEY_Up, GDK_KEY_Right,
                         GDK_KEY_Down, GDK_KEY_Insert, GDK_KEY_Delete, GDK_KEY_Menu}) {
        if (VirtualKey(keyval) == code) {
            return keyval;
        }
    }
    return 0;
}

unsigned ButtonMessage(guint button, bool down) {
    switch (button) {
    case 1: return down ? WM_LBUTTONDOWN : WM_LBUTTONUP;
    case 2: return down ? WM_MBUTTONDOWN : WM_MBUTTONUP;
    case 3: return down ? WM_RBUTTONDOWN : WM_RBUTTONUP;
    default: return 0;
    }
}

gboolean OnDraw(GtkWidget* widget, cairo_t* cr, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    PlatformPaint(surface->hwnd, cr, gtk_widget_get_allocated_width(widget),
                  gtk_widget_get_allocated_height(widget));
    return TRUE;
}

gboolean OnMotion(GtkWidget*, GdkEventMotion* event, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    PlatformMouse(surface->hwnd, WM_MOUSEMOVE, static_cast<int>(event->x),
                  static_cast<int>(event->y), KeyFlags(event->state));
    return TRUE;
}

gboolean OnButton(GtkWidget* widget, GdkEventButton* event, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    bool down = event->type == GDK_BUTTON_PRESS;
    if (!down && event->type != GDK_BUTTON_RELEASE) {
        return TRUE; // the double and triple press events repeat a press
    }
    unsigned message = ButtonMessage(event->button, down);
    if (message == 0) {
        return TRUE;
    }
    if (down) {
        gtk_widget_grab_focus(widget);
    }
    PlatformMouse(surface->hwnd, message, static_cast<int>(event->x), static_cast<int>(event->y),
                  KeyFlags(event->state));
    return TRUE;
}

// Hands whole notches of an accumulated smooth scroll to the toolkit and
// keeps the rest.
void GiveNotches(Surface* surface, double* accumulated, bool horizontal, int x, int y,
                 unsigned keys) {
    int notches = static_cast<int>(*accumulated / WHEEL_DELTA);
    if (notches != 0) {
        *accumulated -= notches * WHEEL_DELTA;
        PlatformWheel(surface->hwnd, x, y, notches * WHEEL_DELTA, horizontal, keys);
    }
}

gboolean OnScroll(GtkWidget*, GdkEventScroll* event, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    int x = static_cast<int>(event->x);
    int y = static_cast<int>(event->y);
    unsigned keys = KeyFlags(event->state);
    switch (event->direction) {
    case GDK_SCROLL_UP: PlatformWheel(surface->hwnd, x, y, WHEEL_DELTA, false, keys); break;
    case GDK_SCROLL_DOWN: PlatformWheel(surface->hwnd, x, y, -WHEEL_DELTA, false, keys); break;
    case GDK_SCROLL_LEFT: PlatformWheel(surface->hwnd, x, y, -WHEEL_DELTA, true, keys); break;
    case GDK_SCROLL_RIGHT: PlatformWheel(surface->hwnd, x, y, WHEEL_DELTA, true, keys); break;
    case GDK_SCROLL_SMOOTH:
        // One unit of GDK's deltas is one notch; down and left are
        // positive there, and down is negative for the wheel message.
        surface->wheelY -= event->delta_y * WHEEL_DELTA;
        surface->wheelX += event->delta_x * WHEEL_DELTA;
        GiveNotches(surface, &surface->wheelY, false, x, y, keys);
        GiveNotches(surface, &surface->wheelX, true, x, y, keys);
        if (gdk_event_is_scroll_stop_event(reinterpret_cast<GdkEvent*>(event))) {
            surface->wheelX = surface->wheelY = 0;
        }
        break;
    default: break;
    }
    return TRUE;
}

gboolean OnLeave(GtkWidget*, GdkEventCrossing* event, gpointer data) {
    if (event->mode == GDK_CROSSING_NORMAL) {
        PlatformMouseLeave(static_cast<Surface*>(data)->hwnd);
    }
    return TRUE;
}

// A key, outside the input method, to the toolkit's focus window of top.
void GiveKey(HWND top, const GdkEventKey* event) {
    bool down = event->type == GDK_KEY_PRESS;
    unsigned code = VirtualKey(event->keyval);
    bool alt = (event->state & GDK_MOD1_MASK) != 0;
    if (code != 0) {
        unsigned message = alt ? (down ? WM_SYSKEYDOWN : WM_SYSKEYUP) : (down ? WM_KEYDOWN : WM_KEYUP);
        PlatformKey(top, message, code);
    }
    guint32 character = gdk_keyval_to_unicode(event->keyval);
    if (down && character >= 32 && (event->state & GDK_CONTROL_MASK) == 0) {
        PlatformKey(top, WM_CHAR, character);
    }
}

gboolean OnKey(GtkWidget*, GdkEventKey* event, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(surface->window));
    if (focus != nullptr && focus != surface->area) {
        return FALSE; // a hosted child has the keyboard: GTK hands the key to it
    }
    bool down = event->type == GDK_KEY_PRESS;
    unsigned code = VirtualKey(event->keyval);
    bool alt = (event->state & GDK_MOD1_MASK) != 0;
    if (surface->im != nullptr && surface->imFocused) {
        surface->inFilter = true;
        surface->pending.clear();
        bool filtered = gtk_im_context_filter_keypress(surface->im, event) != 0;
        surface->inFilter = false;
        if (filtered) {
            // The method took the key: a step of a composition, or text it
            // commits at once (the key comes first, as typed).
            if (!surface->pending.empty()) {
                std::string text = std::move(surface->pending);
                surface->pending.clear();
                if (down && code != 0 && !alt) {
                    PlatformKey(surface->hwnd, WM_KEYDOWN, code);
                }
                PlatformImCommit(surface->hwnd, text.c_str());
            } else if (!down && code != 0) {
                PlatformKey(surface->hwnd, alt ? WM_SYSKEYUP : WM_KEYUP, code);
            }
            return TRUE;
        }
    }
    GiveKey(surface->hwnd, event);
    return TRUE;
}

void OnImCommit(GtkIMContext*, const gchar* text, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    if (surface->inFilter) {
        surface->pending += text != nullptr ? text : "";
    } else {
        PlatformImCommit(surface->hwnd, text);
    }
}

void OnImPreedit(GtkIMContext* im, gpointer data) {
    gchar* text = nullptr;
    gint cursor = 0;
    gtk_im_context_get_preedit_string(im, &text, nullptr, &cursor);
    const gchar* caret = text != nullptr ? g_utf8_offset_to_pointer(text, cursor) : nullptr;
    PlatformImPreedit(static_cast<Surface*>(data)->hwnd, text != nullptr ? text : "",
                      text != nullptr ? static_cast<int>(caret - text) : 0);
    g_free(text);
}

void OnAreaRealize(GtkWidget* area, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    gtk_im_context_set_client_window(surface->im, gtk_widget_get_window(area));
}

void ReleaseInputMethod(Surface* surface) {
    if (surface->im != nullptr) {
        g_signal_handlers_disconnect_by_data(surface->im, surface);
        gtk_im_context_set_client_window(surface->im, nullptr);
        g_object_unref(surface->im);
        surface->im = nullptr;
    }
}

// The choosers' modal wait: the toolkit's loop runs until the dialog
// answers; a WM_NULL posted by the answer wakes the wait.
struct ChooserWait {
    bool done = false;
    int response = GTK_RESPONSE_CANCEL;
    unsigned thread = 0;
};

void OnChooserResponse(gpointer, gint response, gpointer data) {
    auto* wait = static_cast<ChooserWait*>(data);
    wait->done = true;
    wait->response = response;
    PostThreadMessage(wait->thread, WM_NULL, 0, 0);
}

void WaitForChooser(ChooserWait* wait) {
    SMessage message;
    while (!wait->done) {
        if (!GetMessage(&message)) {
            PostQuitMessage(static_cast<int>(message.wParam)); // for the outer loop
            break;
        }
        DispatchLoopMessage(&message);
    }
}

SString PathOfFile(GFile* file) {
    gchar* path = file != nullptr ? g_file_get_path(file) : nullptr;
    SString result(path != nullptr ? path : "");
    g_free(path);
    return result;
}

bool RunFileChooser(GtkWindow* parent, const SChooserRequest& request, SChooserAnswer* answer) {
    GtkFileChooserAction action = request.kind == SChooserRequest::SAVE_FILE ? GTK_FILE_CHOOSER_ACTION_SAVE
                                  : request.kind == SChooserRequest::FOLDER
                                      ? GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER
                                      : GTK_FILE_CHOOSER_ACTION_OPEN;
    GtkFileChooserNative* native = gtk_file_chooser_native_new(
        request.title.c_str(), parent, action,
        request.kind == SChooserRequest::SAVE_FILE ? "_Save" : "_Open", "_Cancel");
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(native);
    gtk_file_chooser_set_select_multiple(chooser, request.multiple &&
                                                      request.kind == SChooserRequest::OPEN_FILE);
    if (!request.folder.IsEmpty()) {
        gtk_file_chooser_set_current_folder(chooser, request.folder.c_str());
    }
    if (request.kind == SChooserRequest::SAVE_FILE) {
        gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
        if (!request.name.IsEmpty()) {
            gtk_file_chooser_set_current_name(chooser, request.name.c_str());
        }
    }
    for (const SString& filter : request.filters) {
        std::string text = filter.c_str();
        size_t bar = text.find('|');
        GtkFileFilter* fileFilter = gtk_file_filter_new();
        gtk_file_filter_set_name(fileFilter, text.substr(0, bar).c_str());
        std::string patterns = bar == std::string::npos ? text : text.substr(bar + 1);
        size_t start = 0;
        while (start <= patterns.size()) {
            size_t end = patterns.find(';', start);
            std::string pattern = patterns.substr(start, end == std::string::npos ? std::string::npos
                                                                                  : end - start);
            if (!pattern.empty()) {
                gtk_file_filter_add_pattern(fileFilter, pattern.c_str());
            }
            if (end == std::string::npos) {
                break;
            }
            start = end + 1;
        }
        gtk_file_chooser_add_filter(chooser, fileFilter);
    }
    ChooserWait wait;
    wait.thread = GetCurrentThreadId();
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(native), TRUE);
    g_signal_connect(native, "response", G_CALLBACK(OnChooserResponse), &wait);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(native));
    WaitForChooser(&wait);
    g_signal_handlers_disconnect_by_data(native, &wait);
    if (wait.response == GTK_RESPONSE_ACCEPT) {
        GSList* files = gtk_file_chooser_get_files(chooser);
        for (GSList* item = files; item != nullptr; item = item->next) {
            SString path = PathOfFile(G_FILE(item->data));
            if (!path.IsEmpty()) {
                answer->paths.push_back(path);
            }
        }
        g_slist_free_full(files, g_object_unref);
        answer->accepted = !answer->paths.empty();
    } else {
        gtk_native_dialog_hide(GTK_NATIVE_DIALOG(native));
    }
    g_object_unref(native);
    return answer->accepted;
}

// A message box as a GtkMessageDialog; the response ids are the answers.
bool RunMessageBox(GtkWindow* parent, const SChooserRequest& request, SChooserAnswer* answer) {
    unsigned icon = request.boxFlags & 0xF0;
    GtkMessageType type = icon == 0x10   ? GTK_MESSAGE_ERROR
                          : icon == 0x20 ? GTK_MESSAGE_QUESTION
                          : icon == 0x30 ? GTK_MESSAGE_WARNING
                                         : GTK_MESSAGE_INFO;
    GtkWidget* dialog = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, type, GTK_BUTTONS_NONE,
                                               "%s", request.text.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), request.title.c_str());
    constexpr int OK = 1, CANCEL = 2, YES = 6, NO = 7;
    switch (request.boxFlags & 0xF) {
    case 0x1:
        gtk_dialog_add_buttons(GTK_DIALOG(dialog), "_Cancel", CANCEL, "_OK", OK, nullptr);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), OK);
        break;
    case 0x3:
        gtk_dialog_add_buttons(GTK_DIALOG(dialog), "_Cancel", CANCEL, "_No", NO, "_Yes", YES, nullptr);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), YES);
        break;
    case 0x4:
        gtk_dialog_add_buttons(GTK_DIALOG(dialog), "_No", NO, "_Yes", YES, nullptr);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), YES);
        break;
    default:
        gtk_dialog_add_buttons(GTK_DIALOG(dialog), "_OK", OK, nullptr);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), OK);
        break;
    }
    ChooserWait wait;
    wait.thread = GetCurrentThreadId();
    g_signal_connect(dialog, "response", G_CALLBACK(OnChooserResponse), &wait);
    gtk_widget_show_all(dialog);
    gtk_window_present(GTK_WINDOW(dialog));
    WaitForChooser(&wait);
    g_signal_handlers_disconnect_by_data(dialog, &wait);
    gtk_widget_destroy(dialog);
    answer->button = wait.response > 0 ? wait.response : 0;
    answer->accepted = answer->button != 0;
    return answer->accepted;
}

bool RunDialogChooser(GtkWindow* parent, const SChooserRequest& request, SChooserAnswer* answer) {
    GtkWidget* dialog = request.kind == SChooserRequest::COLOR
                            ? gtk_color_chooser_dialog_new(request.title.c_str(), parent)
                            : gtk_font_chooser_dialog_new(request.title.c_str(), parent);
    if (request.kind == SChooserRequest::COLOR) {
        GdkRGBA rgba = {(request.color & 0xFF) / 255.0, ((request.color >> 8) & 0xFF) / 255.0,
                        ((request.color >> 16) & 0xFF) / 255.0, 1.0};
        gtk_color_chooser_set_use_alpha(GTK_COLOR_CHOOSER(dialog), FALSE);
        gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(dialog), &rgba);
    } else if (!request.fontFace.IsEmpty()) {
        PangoFontDescription* description = pango_font_description_new();
        pango_font_description_set_family(description, request.fontFace.c_str());
        if (request.fontPoints > 0) {
            pango_font_description_set_size(description,
                                            static_cast<gint>(request.fontPoints * PANGO_SCALE));
        }
        pango_font_description_set_weight(description, (request.fontFlags & FONT_BOLD) != 0
                                                           ? PANGO_WEIGHT_BOLD
                                                           : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_style(description, (request.fontFlags & FONT_ITALIC) != 0
                                                          ? PANGO_STYLE_ITALIC
                                                          : PANGO_STYLE_NORMAL);
        gtk_font_chooser_set_font_desc(GTK_FONT_CHOOSER(dialog), description);
        pango_font_description_free(description);
    }
    ChooserWait wait;
    wait.thread = GetCurrentThreadId();
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    g_signal_connect(dialog, "response", G_CALLBACK(OnChooserResponse), &wait);
    gtk_widget_show(dialog);
    WaitForChooser(&wait);
    g_signal_handlers_disconnect_by_data(dialog, &wait);
    if (wait.response == GTK_RESPONSE_OK) {
        if (request.kind == SChooserRequest::COLOR) {
            GdkRGBA rgba;
            gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(dialog), &rgba);
            auto channel = [](double value) {
                return static_cast<uint32_t>(std::clamp(value, 0.0, 1.0) * 255.0 + 0.5);
            };
            answer->color = channel(rgba.red) | (channel(rgba.green) << 8) | (channel(rgba.blue) << 16);
            answer->accepted = true;
        } else {
            PangoFontDescription* description =
                gtk_font_chooser_get_font_desc(GTK_FONT_CHOOSER(dialog));
            if (description != nullptr) {
                const char* family = pango_font_description_get_family(description);
                answer->fontFace = family != nullptr ? family : "";
                answer->fontPoints =
                    static_cast<double>(pango_font_description_get_size(description)) / PANGO_SCALE;
                answer->fontFlags =
                    (pango_font_description_get_weight(description) >= PANGO_WEIGHT_BOLD ? FONT_BOLD
                                                                                         : 0) |
                    (pango_font_description_get_style(description) != PANGO_STYLE_NORMAL
                         ? FONT_ITALIC
                         : 0);
                pango_font_description_free(description);
                answer->accepted = !answer->fontFace.IsEmpty() && answer->fontPoints > 0;
            }
        }
    }
    gtk_widget_destroy(dialog);
    return answer->accepted;
}

gboolean OnFocus(GtkWidget*, GdkEventFocus* event, gpointer data) {
    PlatformFocus(static_cast<Surface*>(data)->hwnd, event->in != 0);
    return FALSE;
}

void OnSizeAllocate(GtkWidget*, GdkRectangle* allocation, gpointer data) {
    PlatformResized(static_cast<Surface*>(data)->hwnd, allocation->width, allocation->height,
                    SIZE_RESTORED);
}

gboolean OnConfigure(GtkWidget* widget, GdkEventConfigure* event, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    // A window manager that reparents gives the event's place relative to
    // its frame; the place of the window on the screen is asked instead.
    int x = event->x;
    int y = event->y;
    GdkWindow* window = gtk_widget_get_window(widget);
    bool mapped = window != nullptr && gtk_widget_get_mapped(widget);
    if (mapped) {
        gdk_window_get_origin(window, &x, &y);
    }
    // A bar just mapped may be placed by the window manager where it puts
    // new windows, whatever place was asked (openbox: the top left corner,
    // free while the main window is hidden for a reload): it goes back.
    if (mapped && surface->docked && (x != surface->dockRect.left || y != surface->dockRect.top) &&
        surface->dockReturns < 3) {
        ++surface->dockReturns;
        gdk_window_move(window, surface->dockRect.left, surface->dockRect.top);
        return FALSE;
    }
    PlatformMoved(surface->hwnd, x, y);
    return FALSE;
}

gboolean OnDelete(GtkWidget*, GdkEvent*, gpointer data) {
    PlatformClose(static_cast<Surface*>(data)->hwnd);
    return TRUE; // the toolkit destroys the window itself
}

gboolean OnWindowState(GtkWidget* widget, GdkEventWindowState* event, gpointer data) {
    if ((event->changed_mask & (GDK_WINDOW_STATE_ICONIFIED | GDK_WINDOW_STATE_MAXIMIZED)) == 0) {
        return FALSE;
    }
    unsigned kind = SIZE_RESTORED;
    if ((event->new_window_state & GDK_WINDOW_STATE_ICONIFIED) != 0) {
        kind = SIZE_MINIMIZED;
    } else if ((event->new_window_state & GDK_WINDOW_STATE_MAXIMIZED) != 0) {
        kind = SIZE_MAXIMIZED;
    }
    auto* surface = static_cast<Surface*>(data);
    PlatformResized(surface->hwnd, gtk_widget_get_allocated_width(surface->area),
                    gtk_widget_get_allocated_height(surface->area), kind);
    (void)widget;
    return FALSE;
}

void OnDragData(GtkWidget*, GdkDragContext* context, gint x, gint y, GtkSelectionData* data,
                guint, guint time, gpointer user) {
    gchar** uris = gtk_selection_data_get_uris(data);
    SStringArray files;
    for (int i = 0; uris != nullptr && uris[i] != nullptr; ++i) {
        gchar* path = g_filename_from_uri(uris[i], nullptr, nullptr);
        if (path != nullptr) {
            files.Add(path);
            g_free(path);
        }
    }
    g_strfreev(uris);
    gtk_drag_finish(context, files.GetCount() > 0, FALSE, time);
    if (files.GetCount() > 0) {
        PlatformDropFiles(static_cast<Surface*>(user)->hwnd, x, y, &files);
    }
}

// The tool tip: a popup window of the tool tip kind showing the picture the
// toolkit painted.
struct ToolTipWindow {
    GtkWidget* window = nullptr;
    SImage picture;
};

// A popup surface takes the pointer and the keyboard once it is on the
// screen; events elsewhere then come to it, in its own coordinates.
gboolean OnPopupMapped(GtkWidget*, GdkEvent*, gpointer data) {
    auto* surface = static_cast<Surface*>(data);
    GdkDisplay* display = gdk_display_get_default();
    GdkWindow* window = gtk_widget_get_window(surface->area);
    if (display != nullptr && window != nullptr) {
        gdk_seat_grab(gdk_display_get_default_seat(display), window, GDK_SEAT_CAPABILITY_ALL,
                      FALSE, nullptr, nullptr, nullptr, nullptr);
    }
    return FALSE;
}

void UngrabPopup() {
    GdkDisplay* display = gdk_display_get_default();
    if (display != nullptr) {
        gdk_seat_ungrab(gdk_display_get_default_seat(display));
    }
}

gboolean OnToolTipDraw(GtkWidget*, cairo_t* cr, gpointer data) {
    static_cast<ToolTipWindow*>(data)->picture.Draw(cr);
    return TRUE;
}

// A block of the clipboard in a private format, served while we own it.
struct ClipboardBlock {
    SString format;
    std::vector<uint8_t> data;
};

void OnClipboardGet(GtkClipboard*, GtkSelectionData* selection, guint, gpointer data) {
    auto* block = static_cast<ClipboardBlock*>(data);
    gtk_selection_data_set(selection, gdk_atom_intern(block->format.c_str(), FALSE), 8,
                           block->data.data(), static_cast<gint>(block->data.size()));
}

void OnClipboardClear(GtkClipboard*, gpointer data) {
    delete static_cast<ClipboardBlock*>(data);
}

class GtkPlatform : public SPlatform {
public:
    ~GtkPlatform() override {
        GtkTrayRemoveAll();
        if (toolTip.window != nullptr) {
            g_signal_handlers_disconnect_by_data(toolTip.window, &toolTip);
            gtk_widget_destroy(toolTip.window);
        }
        for (auto& [hwnd, surface] : surfaces) {
            ReleaseInputMethod(surface);
            g_signal_handlers_disconnect_by_data(surface->window, surface);
            g_signal_handlers_disconnect_by_data(surface->area, surface);
            gtk_widget_destroy(surface->window);
            delete surface;
        }
    }

    bool AddTrayIcon(int tray, const SImage& icon, const char* iconName, const char* tip) override {
        return GtkTrayAdd(tray, icon, iconName, tip);
    }
    void SetTrayIcon(int tray, const SImage& icon, const char* iconName) override {
        GtkTraySetIcon(tray, icon, iconName);
    }
    void SetTrayTip(int tray, const char* tip) override { GtkTraySetTip(tray, tip); }
    void SetTrayMenu(int tray, const std::vector<STrayMenuItem>& items) override {
        GtkTraySetMenu(tray, items);
    }
    bool PopupTrayMenu(int tray) override { return GtkTrayPopupMenu(tray); }
    void RemoveTrayIcon(int tray) override { GtkTrayRemove(tray); }

    Surface* Find(HWND hwnd) {
        auto it = surfaces.find(hwnd);
        return it != surfaces.end() ? it->second : nullptr;
    }

    void SetSurfaceOwner(HWND hwnd, HWND owner) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr) {
            return;
        }
        Surface* over = owner != 0 ? Find(owner) : nullptr;
        gtk_window_set_transient_for(GTK_WINDOW(surface->window),
                                     over != nullptr ? GTK_WINDOW(over->window) : nullptr);
    }

    void ActivateSurface(HWND hwnd) override {
        Surface* surface = Find(hwnd);
        if (surface != nullptr && gtk_widget_get_visible(surface->window)) {
            gtk_window_present(GTK_WINDOW(surface->window));
        }
    }

    // A bar: a dock window (which window managers neither frame nor give
    // the keyboard, and keep above the others) that reserves its space by
    // its struts. Where no space is kept (a window manager without struts,
    // or a display that is not X11) it is still a bar above the others.
    SDockState DockSurface(HWND hwnd, int height, SRect* placed) override {
        Surface* surface = Find(hwnd);
        SRect area;
        if (surface == nullptr || surface->popup || height <= 0 || !GetWorkArea(&area)) {
            return SDockState::NONE;
        }
        // The window manager may not yet have given back the bar's own
        // space of an earlier dock (docked still, or undocked a moment
        // ago): the work area then ends at the top of that space. The
        // space is the bar's again, unless another window's struts keep it.
        if (surface->keptSpace && area.bottom == surface->dockRect.top) {
            int free = surface->dockRect.bottom;
            if (BottomFreeOfOtherStruts(surface->window, area, &free)) {
                free = std::min(free, surface->dockRect.bottom);
            }
            area.bottom = std::max(area.bottom, free);
        }
        if (area.Width() <= 0 || area.Height() < height) {
            return SDockState::NONE;
        }
        SRect rect{area.left, area.bottom - height, area.right, area.bottom};
        GtkWindow* window = GTK_WINDOW(surface->window);
        gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_DOCK);
        gtk_window_set_decorated(window, FALSE);
        gtk_window_set_keep_above(window, TRUE);
        gtk_window_set_skip_taskbar_hint(window, TRUE);
        gtk_window_set_skip_pager_hint(window, TRUE);
        gtk_window_set_accept_focus(window, FALSE);
        gtk_window_set_focus_on_map(window, FALSE);
        gtk_window_stick(window);
        gtk_window_move(window, rect.left, rect.top);
        gtk_window_resize(window, rect.Width(), rect.Height());
        gtk_widget_realize(surface->window);
        surface->reserved = SetStruts(surface->window, rect);
        surface->keptSpace = surface->reserved;
        surface->dockReturns = 0;
        surface->docked = true;
        surface->dockRect = rect;
        if (placed != nullptr) {
            *placed = rect;
        }
        return surface->reserved ? SDockState::RESERVED : SDockState::ABOVE;
    }

    bool UndockSurface(HWND hwnd) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr || !surface->docked) {
            return false;
        }
        ClearStruts(surface->window);
        gtk_widget_hide(surface->window);
        surface->docked = false;
        surface->reserved = false;
        return true;
    }

    void ImFocus(HWND top, bool in) override {
        Surface* surface = Find(top);
        if (surface == nullptr || surface->im == nullptr || surface->imFocused == in) {
            return;
        }
        surface->imFocused = in;
        if (in) {
            gtk_im_context_focus_in(surface->im);
        } else {
            gtk_im_context_reset(surface->im);
            gtk_im_context_focus_out(surface->im);
        }
    }

    void ImSetCursor(HWND top, const SRect& caret) override {
        Surface* surface = Find(top);
        if (surface != nullptr && surface->im != nullptr) {
            GdkRectangle area = {caret.left, caret.top, std::max(caret.Width(), 1),
                                 std::max(caret.Height(), 1)};
            gtk_im_context_set_cursor_location(surface->im, &area);
        }
    }

    void ImReset(HWND top) override {
        Surface* surface = Find(top);
        if (surface != nullptr && surface->im != nullptr) {
            gtk_im_context_reset(surface->im);
        }
    }

    bool RunChooser(HWND owner, const SChooserRequest& request, SChooserAnswer* answer) override {
        SChooserAnswer result;
        SWnd* ownerWnd = SWnd::FromHandle(owner);
        Surface* surface = ownerWnd != nullptr ? Find(ownerWnd->GetTopWindow()) : nullptr;
        GtkWindow* parent = surface != nullptr ? GTK_WINDOW(surface->window) : nullptr;
        if (request.kind == SChooserRequest::MESSAGE) {
            RunMessageBox(parent, request, &result);
        } else if (request.kind == SChooserRequest::COLOR || request.kind == SChooserRequest::FONT) {
            RunDialogChooser(parent, request, &result);
        } else {
            RunFileChooser(parent, request, &result);
        }
        if (answer != nullptr) {
            *answer = result;
        }
        return result.accepted;
    }

    bool CreateSurface(HWND hwnd, const SRect& rect, const char* title) override {
        return MakeSurface(hwnd, rect, title, false);
    }

    bool CreatePopupSurface(HWND hwnd, const SRect& rect) override {
        return MakeSurface(hwnd, rect, "", true);
    }

    bool MakeSurface(HWND hwnd, const SRect& rect, const char* title, bool popup) {
        auto* surface = new Surface;
        surface->hwnd = hwnd;
        surface->popup = popup;
        surface->window = gtk_window_new(popup ? GTK_WINDOW_POPUP : GTK_WINDOW_TOPLEVEL);
        if (popup) {
            gtk_window_set_type_hint(GTK_WINDOW(surface->window), GDK_WINDOW_TYPE_HINT_COMBO);
            g_signal_connect(surface->window, "map-event", G_CALLBACK(OnPopupMapped), surface);
        }
        surface->area = gtk_drawing_area_new();
        gtk_window_set_title(GTK_WINDOW(surface->window), title != nullptr ? title : "");
        // A window's place is that of its client area, as the configure
        // events report it (gdk_window_get_origin): with the static gravity
        // a move places the client area there, not the window manager's
        // frame, so a placement stored and applied again stays put.
        gtk_window_set_gravity(GTK_WINDOW(surface->window), GDK_GRAVITY_STATIC);
        gtk_window_move(GTK_WINDOW(surface->window), rect.left, rect.top);
        gtk_window_set_default_size(GTK_WINDOW(surface->window), std::max(1, rect.Width()),
                                    std::max(1, rect.Height()));
        surface->overlay = gtk_overlay_new();
        gtk_container_add(GTK_CONTAINER(surface->overlay), surface->area);
        gtk_container_add(GTK_CONTAINER(surface->window), surface->overlay);
        gtk_widget_show(surface->overlay);
        gtk_widget_set_can_focus(surface->area, TRUE);
        gtk_widget_add_events(surface->area, GDK_POINTER_MOTION_MASK | GDK_BUTTON_PRESS_MASK |
                                                 GDK_BUTTON_RELEASE_MASK | GDK_LEAVE_NOTIFY_MASK |
                                                 GDK_KEY_PRESS_MASK | GDK_KEY_RELEASE_MASK |
                                                 GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
        GtkWidget* area = surface->area;
        GtkWidget* window = surface->window;
        g_signal_connect(area, "draw", G_CALLBACK(OnDraw), surface);
        g_signal_connect(area, "motion-notify-event", G_CALLBACK(OnMotion), surface);
        g_signal_connect(area, "button-press-event", G_CALLBACK(OnButton), surface);
        g_signal_connect(area, "button-release-event", G_CALLBACK(OnButton), surface);
        g_signal_connect(area, "leave-notify-event", G_CALLBACK(OnLeave), surface);
        g_signal_connect(area, "scroll-event", G_CALLBACK(OnScroll), surface);
        g_signal_connect(area, "size-allocate", G_CALLBACK(OnSizeAllocate), surface);
        g_signal_connect(window, "key-press-event", G_CALLBACK(OnKey), surface);
        g_signal_connect(window, "key-release-event", G_CALLBACK(OnKey), surface);
        g_signal_connect(window, "focus-in-event", G_CALLBACK(OnFocus), surface);
        g_signal_connect(window, "focus-out-event", G_CALLBACK(OnFocus), surface);
        g_signal_connect(window, "configure-event", G_CALLBACK(OnConfigure), surface);
        g_signal_connect(window, "delete-event", G_CALLBACK(OnDelete), surface);
        g_signal_connect(window, "window-state-event", G_CALLBACK(OnWindowState), surface);
        static GtkTargetEntry uriList = {const_cast<gchar*>("text/uri-list"), 0, 0};
        gtk_drag_dest_set(area, GTK_DEST_DEFAULT_ALL, &uriList, 1, GDK_ACTION_COPY);
        g_signal_connect(area, "drag-data-received", G_CALLBACK(OnDragData), surface);
        surface->im = gtk_im_multicontext_new();
        g_signal_connect(surface->im, "commit", G_CALLBACK(OnImCommit), surface);
        g_signal_connect(surface->im, "preedit-changed", G_CALLBACK(OnImPreedit), surface);
        g_signal_connect(surface->im, "preedit-end", G_CALLBACK(OnImPreedit), surface);
        g_signal_connect(area, "realize", G_CALLBACK(OnAreaRealize), surface);
        gtk_widget_show(area);
        surfaces[hwnd] = surface;
        return true;
    }

    void DestroySurface(HWND hwnd) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr) {
            return;
        }
        surfaces.erase(hwnd);
        if (surface->popup) {
            UngrabPopup();
        }
        ReleaseInputMethod(surface);
        for (auto it = hosted.begin(); it != hosted.end();) {
            it = it->second.surface == surface ? hosted.erase(it) : std::next(it);
        }
        g_signal_handlers_disconnect_by_data(surface->window, surface);
        g_signal_handlers_disconnect_by_data(surface->area, surface);
        gtk_widget_destroy(surface->window);
        delete surface;
    }

    void ShowSurface(HWND hwnd, int command) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr) {
            return;
        }
        GtkWindow* window = GTK_WINDOW(surface->window);
        switch (command) {
        case SW_HIDE:
            if (surface->popup) {
                UngrabPopup();
            }
            gtk_widget_hide(surface->window);
            break;
        case SW_SHOWMINIMIZED:
        case SW_MINIMIZE: gtk_window_iconify(window); break;
        case SW_SHOWMAXIMIZED: gtk_window_maximize(window); break;
        case SW_RESTORE:
            gtk_window_deiconify(window);
            gtk_window_unmaximize(window);
            break;
        default: gtk_widget_show(surface->window); break;
        }
    }

    void MoveSurface(HWND hwnd, const SRect& rect) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr) {
            return;
        }
        gtk_window_move(GTK_WINDOW(surface->window), rect.left, rect.top);
        gtk_window_resize(GTK_WINDOW(surface->window), std::max(1, rect.Width()),
                          std::max(1, rect.Height()));
    }

    void SetSurfaceTitle(HWND hwnd, const char* title) override {
        Surface* surface = Find(hwnd);
        if (surface != nullptr) {
            gtk_window_set_title(GTK_WINDOW(surface->window), title != nullptr ? title : "");
        }
    }

    void SetSurfaceAlpha(HWND hwnd, int alpha) override {
        Surface* surface = Find(hwnd);
        if (surface != nullptr) {
            gtk_widget_set_opacity(surface->window, alpha / 255.0);
        }
    }

    void SetSurfaceFullScreen(HWND hwnd, bool on) override {
        Surface* surface = Find(hwnd);
        if (surface != nullptr) {
            GtkWindow* window = GTK_WINDOW(surface->window);
            on ? gtk_window_fullscreen(window) : gtk_window_unfullscreen(window);
        }
    }

    void InvalidateSurface(HWND hwnd, const SRect& area) override {
        Surface* surface = Find(hwnd);
        if (surface != nullptr) {
            gtk_widget_queue_draw_area(surface->area, area.left, area.top, area.Width(),
                                       area.Height());
        }
    }

    void CaptureMouse(HWND hwnd) override {
        GdkDisplay* display = gdk_display_get_default();
        if (display == nullptr) {
            return;
        }
        GdkSeat* seat = gdk_display_get_default_seat(display);
        Surface* surface = Find(hwnd);
        GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
        if (window != nullptr && gdk_window_is_visible(window)) {
            gdk_seat_grab(seat, window, GDK_SEAT_CAPABILITY_ALL_POINTING, FALSE, nullptr, nullptr,
                          nullptr, nullptr);
        } else {
            gdk_seat_ungrab(seat);
        }
    }

    void SetSurfaceCursor(HWND hwnd, int cursorIndex) override {
        Surface* surface = Find(hwnd);
        GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
        if (window == nullptr) {
            return;
        }
        const char* name = cursorIndex < 0 ? "none" : GetCursorName(cursorIndex);
        GdkCursor* cursor = gdk_cursor_new_from_name(gdk_window_get_display(window), name);
        gdk_window_set_cursor(window, cursor);
        if (cursor != nullptr) {
            g_object_unref(cursor);
        }
    }

    void SetSurfaceLimits(HWND hwnd, const SSize& minimum, const SSize& maximum) override {
        Surface* surface = Find(hwnd);
        if (surface == nullptr) {
            return;
        }
        // Geometry hints: the window manager keeps resizes inside them, and
        // GTK itself holds the sizes it asks for to them.
        GdkGeometry hints = {};
        unsigned mask = 0;
        if (minimum.width >= 0 || minimum.height >= 0) {
            hints.min_width = std::max(1, minimum.width);
            hints.min_height = std::max(1, minimum.height);
            mask |= GDK_HINT_MIN_SIZE;
        }
        if (maximum.width >= 0 || maximum.height >= 0) {
            hints.max_width = maximum.width >= 0 ? std::max(1, maximum.width) : G_MAXINT / 2;
            hints.max_height = maximum.height >= 0 ? std::max(1, maximum.height) : G_MAXINT / 2;
            mask |= GDK_HINT_MAX_SIZE;
        }
        gtk_window_set_geometry_hints(GTK_WINDOW(surface->window), nullptr, &hints,
                                      static_cast<GdkWindowHints>(mask));
    }

    void ShowToolTip(HWND /*owner*/, const SRect& rect, const SImage& picture) override {
        if (toolTip.window == nullptr) {
            toolTip.window = gtk_window_new(GTK_WINDOW_POPUP);
            gtk_window_set_type_hint(GTK_WINDOW(toolTip.window), GDK_WINDOW_TYPE_HINT_TOOLTIP);
            gtk_widget_set_app_paintable(toolTip.window, TRUE);
            g_signal_connect(toolTip.window, "draw", G_CALLBACK(OnToolTipDraw), &toolTip);
        }
        toolTip.picture.CopyFrom(&picture);
        gtk_window_move(GTK_WINDOW(toolTip.window), rect.left, rect.top);
        gtk_window_resize(GTK_WINDOW(toolTip.window), std::max(1, rect.Width()),
                          std::max(1, rect.Height()));
        gtk_widget_set_size_request(toolTip.window, std::max(1, rect.Width()),
                                    std::max(1, rect.Height()));
        gtk_widget_show(toolTip.window);
        gtk_widget_queue_draw(toolTip.window);
    }

    void HideToolTip() override {
        if (toolTip.window != nullptr) {
            gtk_widget_hide(toolTip.window);
        }
    }

    GtkWidget* GetToolTipWindow() const { return toolTip.window; }

    bool SetClipboardData(const char* format, const std::vector<uint8_t>& data) override {
        if (format == nullptr || *format == 0) {
            return false;
        }
        auto* block = new ClipboardBlock{SString(format), data};
        GtkTargetEntry target = {const_cast<gchar*>(block->format.c_str()), 0, 0};
        GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
        if (!gtk_clipboard_set_with_data(clipboard, &target, 1, OnClipboardGet, OnClipboardClear,
                                         block)) {
            delete block;
            return false;
        }
        return true;
    }

    bool GetClipboardData(const char* format, std::vector<uint8_t>* data) override {
        if (format == nullptr || *format == 0 || data == nullptr) {
            return false;
        }
        GtkSelectionData* selection = gtk_clipboard_wait_for_contents(
            gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), gdk_atom_intern(format, FALSE));
        if (selection == nullptr) {
            return false;
        }
        gint length = gtk_selection_data_get_length(selection);
        const guchar* bytes = gtk_selection_data_get_data(selection);
        bool found = length >= 0 && (bytes != nullptr || length == 0);
        if (found) {
            data->assign(bytes, bytes + length);
        }
        gtk_selection_data_free(selection);
        return found;
    }

    bool PressKey(unsigned code) override {
        GdkDisplay* display = gdk_display_get_default();
        guint keyval = KeyvalOf(code);
        if (display == nullptr || keyval == 0 || !GDK_IS_X11_DISPLAY(display)) {
            return false;
        }
        Display* x = GDK_DISPLAY_XDISPLAY(display);
        int eventBase = 0, errorBase = 0, major = 0, minor = 0;
        if (!XTestQueryExtension(x, &eventBase, &errorBase, &major, &minor)) {
            return false;
        }
        KeyCode keycode = XKeysymToKeycode(x, keyval);
        if (keycode == 0) {
            return false;
        }
        XTestFakeKeyEvent(x, keycode, True, CurrentTime);
        XTestFakeKeyEvent(x, keycode, False, CurrentTime);
        XFlush(x);
        return true;
    }

    bool GetInterfaceFont(SString* face, double* points) override {
        return GtkInterfaceFont(face, points);
    }

    void LoadThemeColors() override { GtkLoadThemeColors(); }

    // The icon of the content type guessed from the name (a folder's is
    // inode/directory), looked up in the icon theme and drawn into picture.
    bool GetFileIcon(const char* path, bool folder, int size, SImage* picture) override {
        if (picture == nullptr || size <= 0) {
            return false;
        }
        gboolean uncertain = FALSE;
        gchar* type = folder ? g_strdup("inode/directory")
                             : g_content_type_guess(path, nullptr, 0, &uncertain);
        GIcon* icon = type != nullptr ? g_content_type_get_icon(type) : nullptr;
        g_free(type);
        GtkIconInfo* info = icon != nullptr
                                ? gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon,
                                                                 size, GTK_ICON_LOOKUP_FORCE_SIZE)
                                : nullptr;
        if (icon != nullptr) {
            g_object_unref(icon);
        }
        GdkPixbuf* pixbuf = info != nullptr ? gtk_icon_info_load_icon(info, nullptr) : nullptr;
        if (info != nullptr) {
            g_object_unref(info);
        }
        if (pixbuf == nullptr) {
            return SPlatform::GetFileIcon(path, folder, size, picture);
        }
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size);
        cairo_t* cr = cairo_create(surface);
        gdk_cairo_set_source_pixbuf(cr, pixbuf, 0, 0);
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_flush(surface);
        bool loaded = picture->LoadSurface(surface, 0, 0, size, size);
        cairo_surface_destroy(surface);
        g_object_unref(pixbuf);
        return loaded || SPlatform::GetFileIcon(path, folder, size, picture);
    }

    void GetDoubleClick(unsigned* milliseconds, int* distance) override {
        SPlatform::GetDoubleClick(milliseconds, distance);
        GtkSettings* settings = gtk_settings_get_default();
        if (settings == nullptr) {
            return;
        }
        gint time = 0, pixels = 0;
        g_object_get(settings, "gtk-double-click-time", &time, "gtk-double-click-distance",
                     &pixels, nullptr);
        if (time > 0) {
            *milliseconds = static_cast<unsigned>(time);
        }
        if (pixels >= 0) {
            *distance = pixels;
        }
    }

    bool SetClipboardText(const char* text) override {
        if (text == nullptr) {
            return false;
        }
        gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text, -1);
        gtk_clipboard_store(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
        return true;
    }

    SString GetClipboardText() override {
        gchar* text = gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
        SString result(text);
        g_free(text);
        return result;
    }

    static GdkMonitor* Monitor() {
        GdkDisplay* display = gdk_display_get_default();
        if (display == nullptr) {
            return nullptr;
        }
        GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
        return monitor != nullptr ? monitor : gdk_display_get_monitor(display, 0);
    }

    bool GetScreenRect(SRect* rect) override {
        GdkMonitor* monitor = Monitor();
        if (rect == nullptr || monitor == nullptr) {
            return false;
        }
        GdkRectangle area;
        gdk_monitor_get_geometry(monitor, &area);
        *rect = SRect{area.x, area.y, area.x + area.width, area.y + area.height};
        return true;
    }

    bool GetWorkArea(SRect* rect) override {
        GdkMonitor* monitor = Monitor();
        if (rect == nullptr || monitor == nullptr) {
            return false;
        }
        GdkRectangle area;
        gdk_monitor_get_workarea(monitor, &area);
        *rect = SRect{area.x, area.y, area.x + area.width, area.y + area.height};
        return true;
    }

    double GetDpi() override {
        GdkScreen* screen = gdk_screen_get_default();
        double dpi = screen != nullptr ? gdk_screen_get_resolution(screen) : -1;
        return dpi > 0 ? dpi : 96.0;
    }

    unsigned GetModifiers() override {
        GdkDisplay* display = gdk_display_get_default();
        if (display == nullptr) {
            return 0;
        }
        guint state = gdk_keymap_get_modifier_state(gdk_keymap_get_for_display(display));
        unsigned result = 0;
        if ((state & GDK_SHIFT_MASK) != 0) {
            result |= SKeyboard::MODIFIER_SHIFT;
        }
        if ((state & GDK_CONTROL_MASK) != 0) {
            result |= SKeyboard::MODIFIER_CTRL;
        }
        if ((state & GDK_MOD1_MASK) != 0) {
            result |= SKeyboard::MODIFIER_ALT;
        }
        return result;
    }

    SPoint GetPointer() override {
        GdkDisplay* display = gdk_display_get_default();
        if (display == nullptr) {
            return SPoint();
        }
        GdkDevice* pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(display));
        int x = 0, y = 0;
        gdk_device_get_position(pointer, nullptr, &x, &y);
        return SPoint{x, y};
    }

    std::map<HWND, Surface*> surfaces;

public:
    struct Hosted {
        Surface* surface = nullptr;
        GtkWidget* widget = nullptr;
        HWND owner = 0;
    };
    std::map<HWND, Hosted> hosted;

    bool HostChild(HWND owner, HWND top, void* widget) override {
        Surface* surface = Find(top);
        if (surface == nullptr || widget == nullptr || hosted.count(owner) != 0) {
            return false;
        }
        auto* child = GTK_WIDGET(widget);
        gtk_widget_set_halign(child, GTK_ALIGN_START);
        gtk_widget_set_valign(child, GTK_ALIGN_START);
        gtk_overlay_add_overlay(GTK_OVERLAY(surface->overlay), child);
        hosted[owner] = Hosted{surface, child, owner};
        auto tag = reinterpret_cast<gpointer>(static_cast<uintptr_t>(owner));
        g_signal_connect(child, "focus-in-event", G_CALLBACK(OnHostedFocus), tag);
        // The program's own keys before the child sees them; after the
        // child's own handler, the keys it did not use. WebKit's view
        // answers every key at once and, when the page did not use it,
        // sends it through again with its handler passing it on, so the
        // second handler meets exactly the keys the page left.
        g_signal_connect(child, "key-press-event", G_CALLBACK(OnHostedKeyBefore), tag);
        g_signal_connect(child, "key-release-event", G_CALLBACK(OnHostedKeyBefore), tag);
        g_signal_connect_after(child, "key-press-event", G_CALLBACK(OnHostedKeyAfter), tag);
        g_signal_connect_after(child, "key-release-event", G_CALLBACK(OnHostedKeyAfter), tag);
        return true;
    }

    void MoveHostedChild(HWND owner, const SRect& rect) override {
        auto it = hosted.find(owner);
        if (it == hosted.end()) {
            return;
        }
        GtkWidget* child = it->second.widget;
        gtk_widget_set_margin_start(child, std::max(0, rect.left));
        gtk_widget_set_margin_top(child, std::max(0, rect.top));
        gtk_widget_set_size_request(child, std::max(1, rect.Width()), std::max(1, rect.Height()));
        gtk_widget_queue_resize(child);
    }

    void ShowHostedChild(HWND owner, bool show) override {
        auto it = hosted.find(owner);
        if (it != hosted.end()) {
            gtk_widget_set_visible(it->second.widget, show ? TRUE : FALSE);
        }
    }

    void FocusHostedChild(HWND owner, bool focus) override {
        auto it = hosted.find(owner);
        if (it == hosted.end()) {
            return;
        }
        if (focus) {
            gtk_widget_grab_focus(it->second.widget);
        } else if (gtk_widget_has_focus(it->second.widget)) {
            gtk_widget_grab_focus(it->second.surface->area);
        }
    }

    void DestroyHostedChild(HWND owner) override {
        auto it = hosted.find(owner);
        if (it == hosted.end()) {
            return;
        }
        GtkWidget* child = it->second.widget;
        hosted.erase(it);
        for (gpointer handler : {reinterpret_cast<gpointer>(OnHostedFocus),
                                 reinterpret_cast<gpointer>(OnHostedKeyBefore),
                                 reinterpret_cast<gpointer>(OnHostedKeyAfter)}) {
            g_signal_handlers_disconnect_matched(child, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr, handler,
                                                 nullptr);
        }
        gtk_widget_destroy(child);
    }

    static gboolean OnHostedFocus(GtkWidget*, GdkEventFocus*, gpointer data) {
        PlatformHostedFocus(static_cast<HWND>(reinterpret_cast<uintptr_t>(data)));
        return FALSE;
    }

    // The top-level window of the hosted child over the owner in data and
    // where its key goes; 0 when the child is gone.
    static HWND RouteOf(gpointer data, const GdkEventKey* event, SHostedKey* route);

    static gboolean OnHostedKeyBefore(GtkWidget*, GdkEventKey* event, gpointer data) {
        SHostedKey route = SHostedKey::EITHER;
        HWND top = RouteOf(data, event, &route);
        if (top == 0 || route != SHostedKey::WINDOW) {
            return FALSE;
        }
        GiveKey(top, event);
        return TRUE;
    }

    static gboolean OnHostedKeyAfter(GtkWidget*, GdkEventKey* event, gpointer data) {
        SHostedKey route = SHostedKey::EITHER;
        HWND top = RouteOf(data, event, &route);
        if (top == 0 || route == SHostedKey::CHILD) {
            return FALSE;
        }
        GiveKey(top, event);
        return TRUE;
    }
    ToolTipWindow toolTip;
};

GtkPlatform* Current() {
    return dynamic_cast<GtkPlatform*>(GetPlatform());
}

HWND GtkPlatform::RouteOf(gpointer data, const GdkEventKey* event, SHostedKey* route) {
    GtkPlatform* platform = Current();
    if (platform == nullptr) {
        return 0;
    }
    auto it = platform->hosted.find(static_cast<HWND>(reinterpret_cast<uintptr_t>(data)));
    if (it == platform->hosted.end() || it->second.surface == nullptr) {
        return 0;
    }
    *route = RouteHostedKey(VirtualKey(event->keyval), (event->state & GDK_CONTROL_MASK) != 0,
                            (event->state & GDK_MOD1_MASK) != 0);
    return it->second.surface->hwnd;
}

// The surface of a top-level window on the GTK platform, or null.
Surface* FindSurface(HWND top) {
    GtkPlatform* platform = Current();
    return platform != nullptr ? platform->Find(top) : nullptr;
}

} // namespace

bool GtkHostedChildHasFocus(HWND owner) {
    GtkPlatform* platform = Current();
    if (platform == nullptr) {
        return false;
    }
    auto it = platform->hosted.find(owner);
    return it != platform->hosted.end() && gtk_widget_has_focus(it->second.widget);
}

bool UseGtkPlatform() {
    gdk_set_allowed_backends("x11");
    if (!gtk_init_check(nullptr, nullptr)) {
        return false;
    }
    SetPlatform(new GtkPlatform);
    return true;
}

void GtkSync() {
    GdkDisplay* display = gdk_display_get_default();
    if (display != nullptr) {
        gdk_display_sync(display);
    }
}

// An opaque picture of the pixbuf's pixels, which it then releases.
static bool TakePixbuf(GdkPixbuf* pixbuf, int width, int height, SImage* picture) {
    int channels = gdk_pixbuf_get_n_channels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    const guchar* pixels = gdk_pixbuf_read_pixels(pixbuf);
    std::vector<uint32_t> argb(static_cast<size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const guchar* p = pixels + y * stride + x * channels;
            argb[static_cast<size_t>(y) * width + x] =
                0xFF000000u | (static_cast<uint32_t>(p[0]) << 16) |
                (static_cast<uint32_t>(p[1]) << 8) | p[2];
        }
    }
    g_object_unref(pixbuf);
    return picture->LoadPixels(argb.data(), width, height);
}

bool GtkCaptureSurface(HWND top, SImage* picture) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    if (window == nullptr || picture == nullptr) {
        return false;
    }
    int width = gdk_window_get_width(window);
    int height = gdk_window_get_height(window);
    GdkPixbuf* pixbuf = gdk_pixbuf_get_from_window(window, 0, 0, width, height);
    if (pixbuf == nullptr) {
        return false;
    }
    return TakePixbuf(pixbuf, width, height, picture);
}

bool GtkGetDockProperties(HWND top, std::vector<long>* strut, bool* dock) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->window) : nullptr;
    GdkDisplay* display = window != nullptr ? gdk_window_get_display(window) : nullptr;
    if (display == nullptr || !GDK_IS_X11_DISPLAY(display) || strut == nullptr || dock == nullptr) {
        return false;
    }
    Display* x = GDK_DISPLAY_XDISPLAY(display);
    Window xid = GDK_WINDOW_XID(window);
    auto read = [&](const char* name, Atom type, std::vector<long>* values) {
        Atom actual = None;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        values->clear();
        if (XGetWindowProperty(x, xid, XInternAtom(x, name, False), 0, 64, False, type, &actual,
                               &format, &count, &after, &data) == Success &&
            data != nullptr && format == 32) {
            const long* items = reinterpret_cast<const long*>(data);
            values->assign(items, items + count);
        }
        if (data != nullptr) {
            XFree(data);
        }
    };
    read("_NET_WM_STRUT_PARTIAL", XA_CARDINAL, strut);
    std::vector<long> types;
    read("_NET_WM_WINDOW_TYPE", XA_ATOM, &types);
    Atom dockType = XInternAtom(x, "_NET_WM_WINDOW_TYPE_DOCK", False);
    *dock = std::find(types.begin(), types.end(), static_cast<long>(dockType)) != types.end();
    return true;
}

bool GtkCaptureScreen(const SRect& area, SImage* picture) {
    GdkWindow* root = gdk_get_default_root_window();
    if (root == nullptr || picture == nullptr || area.IsEmpty()) {
        return false;
    }
    int width = area.Width(), height = area.Height();
    GdkPixbuf* pixbuf = gdk_pixbuf_get_from_window(root, area.left, area.top, width, height);
    if (pixbuf == nullptr) {
        return false;
    }
    return TakePixbuf(pixbuf, width, height, picture);
}

bool GtkResizeSurface(HWND top, int width, int height) {
    Surface* surface = FindSurface(top);
    if (surface == nullptr) {
        return false;
    }
    gtk_window_resize(GTK_WINDOW(surface->window), std::max(1, width), std::max(1, height));
    return true;
}

bool GtkGetSurfaceSize(HWND top, SSize* size) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    if (window == nullptr || size == nullptr) {
        return false;
    }
    *size = SSize{gdk_window_get_width(window), gdk_window_get_height(window)};
    return true;
}

bool GtkGetSurfaceOrigin(HWND top, SPoint* origin) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    if (window == nullptr || origin == nullptr || !gtk_widget_get_mapped(surface->window)) {
        return false;
    }
    gdk_window_get_origin(window, &origin->x, &origin->y);
    return true;
}

void GtkSetInterfaceFontName(const char* name) {
    GtkSettings* settings = gtk_settings_get_default();
    if (settings != nullptr && name != nullptr) {
        g_object_set(settings, "gtk-font-name", name, nullptr);
    }
}

bool GtkAddStyleSheet(const char* css) {
    GdkScreen* screen = gdk_screen_get_default();
    if (screen == nullptr || css == nullptr) {
        return false;
    }
    GtkCssProvider* provider = gtk_css_provider_new();
    bool loaded = gtk_css_provider_load_from_data(provider, css, -1, nullptr) != FALSE;
    if (loaded) {
        gtk_style_context_add_provider_for_screen(screen, GTK_STYLE_PROVIDER(provider),
                                                  GTK_STYLE_PROVIDER_PRIORITY_USER);
    }
    g_object_unref(provider);
    return loaded;
}

bool GtkGetToolTipRect(SRect* rect) {
    GtkPlatform* platform = Current();
    GtkWidget* window = platform != nullptr ? platform->GetToolTipWindow() : nullptr;
    if (window == nullptr || rect == nullptr || !gtk_widget_get_visible(window)) {
        return false;
    }
    int x = 0, y = 0, width = 0, height = 0;
    gtk_window_get_position(GTK_WINDOW(window), &x, &y);
    gtk_window_get_size(GTK_WINDOW(window), &width, &height);
    *rect = SRect{x, y, x + width, y + height};
    return true;
}

bool GtkSimulateClick(HWND top, int x, int y) {
    return GtkSimulateButtonClick(top, x, y, 1);
}

bool GtkSimulateButtonClick(HWND top, int x, int y, int button) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    if (window == nullptr || !GDK_IS_X11_DISPLAY(gdk_window_get_display(window))) {
        return false;
    }
    int originX = 0, originY = 0;
    gdk_window_get_origin(window, &originX, &originY);
    Display* display = GDK_DISPLAY_XDISPLAY(gdk_window_get_display(window));
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(display, &eventBase, &errorBase, &major, &minor)) {
        return false;
    }
    if (button < 1 || button > 3) {
        return false;
    }
    XTestFakeMotionEvent(display, -1, originX + x, originY + y, CurrentTime);
    XTestFakeButtonEvent(display, static_cast<unsigned>(button), True, CurrentTime);
    XTestFakeButtonEvent(display, static_cast<unsigned>(button), False, CurrentTime);
    XFlush(display);
    return true;
}

bool GtkSimulateWheel(HWND top, int x, int y, int button) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    if (window == nullptr || button < 4 || button > 7 ||
        !GDK_IS_X11_DISPLAY(gdk_window_get_display(window))) {
        return false;
    }
    int originX = 0, originY = 0;
    gdk_window_get_origin(window, &originX, &originY);
    Display* display = GDK_DISPLAY_XDISPLAY(gdk_window_get_display(window));
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(display, &eventBase, &errorBase, &major, &minor)) {
        return false;
    }
    XTestFakeMotionEvent(display, -1, originX + x, originY + y, CurrentTime);
    XTestFakeButtonEvent(display, static_cast<unsigned>(button), True, CurrentTime);
    XTestFakeButtonEvent(display, static_cast<unsigned>(button), False, CurrentTime);
    XFlush(display);
    return true;
}

bool GtkSimulateSmoothScroll(HWND top, int x, int y, double deltaX, double deltaY) {
    Surface* surface = FindSurface(top);
    GdkWindow* window = surface != nullptr ? gtk_widget_get_window(surface->area) : nullptr;
    GdkDisplay* display = gdk_display_get_default();
    if (window == nullptr || display == nullptr) {
        return false;
    }
    GdkEvent* event = gdk_event_new(GDK_SCROLL);
    event->scroll.window = GDK_WINDOW(g_object_ref(window));
    event->scroll.send_event = TRUE;
    event->scroll.time = GDK_CURRENT_TIME;
    event->scroll.x = x;
    event->scroll.y = y;
    event->scroll.direction = GDK_SCROLL_SMOOTH;
    event->scroll.delta_x = deltaX;
    event->scroll.delta_y = deltaY;
    gdk_event_set_device(event, gdk_seat_get_pointer(gdk_display_get_default_seat(display)));
    gtk_main_do_event(event);
    gdk_event_free(event);
    return true;
}

void GtkSetDoubleClick(int milliseconds, int distance) {
    GtkSettings* settings = gtk_settings_get_default();
    if (settings != nullptr) {
        g_object_set(settings, "gtk-double-click-time", milliseconds, "gtk-double-click-distance",
                     distance, nullptr);
    }
}

namespace {

struct SessionWatch {
    void (*handler)(void*) = nullptr;
    void* argument = nullptr;
    guint sources[2] = {0, 0};
};

SessionWatch& Watch() {
    static SessionWatch watch;
    return watch;
}

gboolean OnSessionSignal(gpointer) {
    SessionWatch& watch = Watch();
    if (watch.handler != nullptr) {
        watch.handler(watch.argument);
    }
    return G_SOURCE_CONTINUE;
}

} // namespace

void GtkWatchSessionEnd(void (*handler)(void* argument), void* argument) {
    SessionWatch& watch = Watch();
    for (guint& source : watch.sources) {
        if (source != 0) {
            g_source_remove(source);
            source = 0;
        }
    }
    watch.handler = handler;
    watch.argument = argument;
    if (handler != nullptr) {
        watch.sources[0] = g_unix_signal_add(SIGTERM, OnSessionSignal, nullptr);
        watch.sources[1] = g_unix_signal_add(SIGHUP, OnSessionSignal, nullptr);
    }
}

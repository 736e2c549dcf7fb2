#include "toolkit/platform/gtk/gtk_theme.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>

#include "toolkit/sys_colors.h"

namespace {

// One node of a style path: the widget type, its CSS name and a class (may
// be null).
struct Node {
    GType type;
    const char* name;
    const char* styleClass;
};

// A style context for a path of nodes, as a widget at that place would
// have it; the caller unrefs it.
GtkStyleContext* ContextFor(std::initializer_list<Node> nodes, GtkStyleContext* parent) {
    GtkWidgetPath* path = gtk_widget_path_new();
    for (const Node& node : nodes) {
        gtk_widget_path_append_type(path, node.type);
        gtk_widget_path_iter_set_object_name(path, -1, node.name);
        if (node.styleClass != nullptr) {
            gtk_widget_path_iter_add_class(path, -1, node.styleClass);
        }
    }
    GtkStyleContext* context = gtk_style_context_new();
    gtk_style_context_set_path(context, path);
    gtk_style_context_set_screen(context, gdk_screen_get_default());
    if (parent != nullptr) {
        gtk_style_context_set_parent(context, parent);
    }
    gtk_widget_path_unref(path);
    return context;
}

uint32_t Channel(double value) {
    return static_cast<uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
}

// The program colour (0x00BBGGRR) of rgba laid over under.
uint32_t ProgramColor(const GdkRGBA& rgba, uint32_t under) {
    double a = std::clamp(rgba.alpha, 0.0, 1.0);
    double red = rgba.red * a + (under & 0xFF) / 255.0 * (1 - a);
    double green = rgba.green * a + ((under >> 8) & 0xFF) / 255.0 * (1 - a);
    double blue = rgba.blue * a + ((under >> 16) & 0xFF) / 255.0 * (1 - a);
    return Channel(red) | (Channel(green) << 8) | (Channel(blue) << 16);
}

uint32_t Foreground(GtkStyleContext* context, GtkStateFlags state, uint32_t under) {
    GdkRGBA color = {};
    gtk_style_context_get_color(context, state, &color);
    return ProgramColor(color, under);
}

// The background colour, laid over under (a clear background is under).
uint32_t Background(GtkStyleContext* context, GtkStateFlags state, uint32_t under) {
    GdkRGBA* color = nullptr;
    gtk_style_context_get(context, state, GTK_STYLE_PROPERTY_BACKGROUND_COLOR, &color, nullptr);
    uint32_t result = color != nullptr ? ProgramColor(*color, under) : under;
    if (color != nullptr) {
        gdk_rgba_free(color);
    }
    return result;
}

} // namespace

bool GtkInterfaceFont(SString* face, double* points) {
    GtkSettings* settings = gtk_settings_get_default();
    if (settings == nullptr || face == nullptr || points == nullptr) {
        return false;
    }
    gchar* name = nullptr;
    g_object_get(settings, "gtk-font-name", &name, nullptr);
    if (name == nullptr) {
        return false;
    }
    PangoFontDescription* description = pango_font_description_from_string(name);
    g_free(name);
    const char* family = pango_font_description_get_family(description);
    double size = pango_font_description_get_size(description) / static_cast<double>(PANGO_SCALE);
    if (pango_font_description_get_size_is_absolute(description)) {
        GdkScreen* screen = gdk_screen_get_default();
        double dpi = screen != nullptr ? gdk_screen_get_resolution(screen) : -1;
        size = size * 72.0 / (dpi > 0 ? dpi : 96.0);
    }
    bool usable = family != nullptr && *family != 0 && size > 0;
    if (usable) {
        *face = family;
        *points = size;
    }
    pango_font_description_free(description);
    return usable;
}

void GtkLoadThemeColors() {
    if (gdk_screen_get_default() == nullptr) {
        return;
    }
    // The window's background carries the button face; a view (a list, a
    // text) the window colour and its text; its selection the highlight.
    GtkStyleContext* window = ContextFor({{GTK_TYPE_WINDOW, "window", "background"}}, nullptr);
    uint32_t face = Background(window, GTK_STATE_FLAG_NORMAL, GetSysColor(SYS_COLOR_BTNFACE));
    SetSysColor(SYS_COLOR_BTNFACE, face);
    SetSysColor(SYS_COLOR_BTNTEXT, Foreground(window, GTK_STATE_FLAG_NORMAL, face));
    GtkStyleContext* label = ContextFor(
        {{GTK_TYPE_WINDOW, "window", "background"}, {GTK_TYPE_LABEL, "label", nullptr}}, window);
    SetSysColor(SYS_COLOR_GRAYTEXT, Foreground(label, GTK_STATE_FLAG_INSENSITIVE, face));

    GtkStyleContext* view = ContextFor(
        {{GTK_TYPE_WINDOW, "window", "background"}, {GTK_TYPE_TEXT_VIEW, "textview", "view"}},
        window);
    uint32_t base = Background(view, GTK_STATE_FLAG_NORMAL, GetSysColor(SYS_COLOR_WINDOW));
    SetSysColor(SYS_COLOR_WINDOW, base);
    SetSysColor(SYS_COLOR_WINDOWTEXT, Foreground(view, GTK_STATE_FLAG_NORMAL, base));

    GtkStyleContext* text = ContextFor({{GTK_TYPE_WINDOW, "window", "background"},
                                        {GTK_TYPE_TEXT_VIEW, "textview", "view"},
                                        {G_TYPE_NONE, "text", nullptr}},
                                       view);
    GtkStyleContext* selection = ContextFor({{GTK_TYPE_WINDOW, "window", "background"},
                                             {GTK_TYPE_TEXT_VIEW, "textview", "view"},
                                             {G_TYPE_NONE, "text", nullptr},
                                             {G_TYPE_NONE, "selection", nullptr}},
                                            text);
    GtkStateFlags selected =
        static_cast<GtkStateFlags>(GTK_STATE_FLAG_SELECTED | GTK_STATE_FLAG_FOCUSED);
    uint32_t highlight = Background(selection, selected, GetSysColor(SYS_COLOR_HIGHLIGHT));
    SetSysColor(SYS_COLOR_HIGHLIGHT, highlight);
    SetSysColor(SYS_COLOR_HIGHLIGHTTEXT, Foreground(selection, selected, highlight));

    GtkStyleContext* link = ContextFor({{GTK_TYPE_WINDOW, "window", "background"},
                                        {GTK_TYPE_LABEL, "label", nullptr},
                                        {G_TYPE_NONE, "link", nullptr}},
                                       window);
    SetSysColor(SYS_COLOR_HOTLIGHT, Foreground(link, GTK_STATE_FLAG_LINK, face));

    GtkStyleContext* tip = ContextFor({{GTK_TYPE_WINDOW, "tooltip", "background"}}, nullptr);
    // A tool tip's background may be see-through; it is laid over black,
    // as a desktop without compositing shows it.
    uint32_t tipBack = Background(tip, GTK_STATE_FLAG_NORMAL, 0x000000);
    GtkStyleContext* tipLabel = ContextFor(
        {{GTK_TYPE_WINDOW, "tooltip", "background"}, {GTK_TYPE_LABEL, "label", nullptr}}, tip);
    SetSysColor(SYS_COLOR_INFOBK, tipBack);
    SetSysColor(SYS_COLOR_INFOTEXT, Foreground(tipLabel, GTK_STATE_FLAG_NORMAL, tipBack));

    for (GtkStyleContext* context : {tipLabel, tip, link, selection, text, view, label, window}) {
        g_object_unref(context);
    }
}

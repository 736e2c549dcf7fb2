// The tray icons of the GTK platform (gtk_tray.cpp): a StatusNotifierItem
// through libayatana-appindicator3 where a host watches for one on the
// session bus, a GtkStatusIcon where only an XEmbed tray holds the
// notification area, nothing where the desktop has neither. Without the
// library at build time, the GtkStatusIcon alone. No GTK header here.
#pragma once

#include <vector>

#include "toolkit/platform/platform.h"

bool GtkTrayAdd(int tray, const SImage& icon, const char* iconName, const char* tip);
void GtkTraySetIcon(int tray, const SImage& icon, const char* iconName);
void GtkTraySetTip(int tray, const char* tip);
void GtkTraySetMenu(int tray, const std::vector<STrayMenuItem>& items);
bool GtkTrayPopupMenu(int tray);
void GtkTrayRemove(int tray);
void GtkTrayRemoveAll();

// Whether the platform was built with libayatana-appindicator3.
bool GtkTrayHasNotifierItems();
// For the window tests: how the icon is shown. 0 none, 1 a
// StatusNotifierItem, 2 a GtkStatusIcon.
int GtkTrayKind(int tray);
// Takes (or gives up) the X selection of an XEmbed tray's manager, as a
// panel with a tray does, so that a test sees the GtkStatusIcon chosen.
bool GtkTrayPretendXEmbedHost(bool on);
// A StatusNotifierItem watcher on the session bus, as a desktop's panel
// runs one, for the window tests: takes its name and answers its calls;
// false without a bus or when another holds the name. Then: whether an
// item registered, a call of the item's (Activate, SecondaryActivate, each
// at 0, 0), and a string property of the item asked for and, once the
// answer came (the loop runs meanwhile), read.
bool GtkTrayPretendNotifierWatcher();
bool GtkTrayWatcherHasItem();
bool GtkTrayCallItem(const char* method);
bool GtkTrayAskItemProperty(const char* property);
bool GtkTrayItemProperty(const char* property, SString* value);

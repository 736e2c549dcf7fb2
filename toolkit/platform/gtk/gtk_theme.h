// The desktop theme on GTK: the interface font (the gtk-font-name setting,
// which the desktop's settings daemon or settings.ini gives) and the main
// system colours from the theme's style contexts. Read when the toolkit
// starts, after GTK is.
#pragma once

#include "foundation/string.h"

// The face and size in points of the interface font; false without a
// display or a usable setting.
bool GtkInterfaceFont(SString* face, double* points);
// Fills the window, text, button face, selection, grey text, link and tool
// tip entries of the system colour table.
void GtkLoadThemeColors();

// SSelector: the platform's own choosers, run modally over a window: open
// one or several files, save a file, a folder, a colour and a font. On the
// GTK platform they are GtkFileChooserNative (so a desktop portal serves
// them where there is one), GtkColorChooserDialog and
// GtkFontChooserDialog; the headless platform answers from a queue that
// tests fill.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/array.h"
#include "foundation/message.h"
#include "foundation/string.h"

class SWnd;

class SSelector {
public:
    // owner: the window the choosers sit over (null for none).
    explicit SSelector(SWnd* owner);

    // Filters are "Name|*.mp3;*.ogg". Each returns false when the user
    // cancelled, leaving the result as it was.
    bool OpenFile(const char* title, const std::vector<SString>& filters, const char* folder,
                  SStringArray* files, bool multiple = false);
    bool SaveFile(const char* title, const std::vector<SString>& filters, const char* folder,
                  const char* name, SString* path);
    bool Folder(const char* title, const char* folder, SString* path);
    // color: 0x00BBGGRR, shown first and replaced by the choice.
    bool Color(const char* title, uint32_t* color);
    // flags: FONT_BOLD and FONT_ITALIC (toolkit/draw.h).
    bool Font(const char* title, SString* face, double* points, unsigned* flags);

private:
    HWND owner = 0;
};

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

// Message boxes: the buttons (one of the first four), the icon, and the
// answers.
constexpr unsigned MB_OK = 0x0;
constexpr unsigned MB_OKCANCEL = 0x1;
constexpr unsigned MB_YESNOCANCEL = 0x3;
constexpr unsigned MB_YESNO = 0x4;
constexpr unsigned MB_ICONERROR = 0x10;
constexpr unsigned MB_ICONQUESTION = 0x20;
constexpr unsigned MB_ICONWARNING = 0x30;
constexpr unsigned MB_ICONINFORMATION = 0x40;
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDYES = 6;
constexpr int IDNO = 7;

// Shows a modal message box over owner (0 for none) and returns the
// button pressed; closing the box counts as Cancel (as No when the box
// has no Cancel, as OK when it has only OK). The headless platform answers
// from its queue (SChooserAnswer::button), Cancel when it is empty.
int MessageBox(HWND owner, const char* text, const char* caption, unsigned flags);
// Routes the network layer's message boxes (the update check) here.
void InstallMessageBox();

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

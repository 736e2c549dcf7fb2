// The small boxes of the code editor, drawn by the toolkit: Find, Replace
// and Go To (each a top-level window with one or two text fields, the
// direction and case choices and its buttons), and the popup menu of the
// right button. The platform has no find dialog of its own.
#pragma once

#include <vector>

#include "foundation/string.h"
#include "toolkit/wnd.h"

class SCodeEditCtrl;

class SCodeEditDialog : public SWnd {
public:
    enum Kind { FIND = 0, REPLACE = 1, GOTO = 2 };
    enum Button { FIND_NEXT, REPLACE_ONE, REPLACE_ALL, GO, CANCEL, MATCH_CASE, DIRECTION_UP };

    SCodeEditDialog(SCodeEditCtrl* editor, Kind kind);
    // Makes the window by the editor's and gives it the keyboard.
    bool Open();
    Kind GetKind() const { return kind; }

    // The fields: 0 the text to find (the line number for Go To), 1 the
    // replacement.
    int GetFieldCount() const { return kind == REPLACE ? 2 : 1; }
    const SString& GetField(int index) const;
    void SetField(int index, const char* text);
    int GetActiveField() const { return activeField; }
    bool GetMatchCase() const { return matchCase; }
    bool GetUp() const { return up; }
    // What a click on a button or choice does. False when the search found
    // nothing (the box stays).
    bool Press(Button button);
    // The rectangle of a button or choice, client coordinates; empty when
    // this kind has none.
    SRect GetButtonRect(Button button) const;
    SString GetStatus() const { return status; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Paint(cairo_t* cr);
    SRect FieldRect(int index) const;
    void CloseBox();

    SCodeEditCtrl* editor;
    Kind kind;
    SString fields[2];
    int activeField = 0;
    bool matchCase = false;
    bool up = false;
    SString status; // "Not found." after a search that failed
};

class SCodePopupMenu : public SWnd {
public:
    explicit SCodePopupMenu(SCodeEditCtrl* editor);
    // Shows the editor's items at a point of the screen.
    bool Open(SPoint screen);
    int GetHotItem() const { return hot; }
    // Runs an item (when enabled) and closes.
    bool Choose(int item);
    int GetItemCount() const;
    // Closes without running anything (Escape, a press outside).
    void Dismiss();

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Paint(cairo_t* cr);
    int ItemAt(int y) const;

    SCodeEditCtrl* editor;
    int hot = -1;
};

// Draws one line of text with Pango at (x, y), the top of the line; returns
// its width. family null is the interface font.
int DrawCodeBoxText(cairo_t* cr, const char* text, int x, int y, uint32_t color,
                    const char* family = nullptr, int pixels = 12);

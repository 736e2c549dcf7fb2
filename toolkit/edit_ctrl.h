// SEditCtrl: the edit control, single or multi line, drawn with Cairo and
// Pango over the text model SEditText (toolkit/edit_text.h). Keys,
// mouse, clipboard, undo, its own popup menu, the password and number
// styles, a maximum length and read-only; text arrives through the
// platform's input method as WM_CHAR (composed text too), and a
// composition in progress shows underlined at the caret.
//
// The parent hears SN_EDIT_CHANGE (SNotification::Control) when the user
// changes the text while the edit has the focus.
#pragma once

#include <memory>
#include <string>

#include "toolkit/edit_text.h"
#include "toolkit/wnd.h"

typedef struct _PangoLayout PangoLayout;
typedef struct _PangoContext PangoContext;

// Styles (the low 16 bits of the window style).
constexpr unsigned EDIT_MULTILINE = 0x0004;
constexpr unsigned EDIT_PASSWORD = 0x0020;
constexpr unsigned EDIT_READONLY = 0x0800;
constexpr unsigned EDIT_NUMBER = 0x2000;
constexpr unsigned EDIT_NOPOPUPMENU = 0x4000;

// The commands of the edit's popup menu, in its order.
enum class SEditCommand { UNDO, CUT, COPY, PASTE, DELETE, SELECT_ALL };

class SEditCtrl : public SWnd {
public:
    SEditCtrl();
    ~SEditCtrl() override;

    // A child of parent at rect; style holds EDIT_* bits (WS_CHILD,
    // WS_VISIBLE and WS_TABSTOP are added).
    bool Create(SWnd* parent, const SRect& rect, uintptr_t id, unsigned style,
                const char* text = "");

    // The model: text, caret, selection, undo. Change it through the
    // control (SetText, SetSel...) so that the window follows.
    const SEditText& Model() const { return model; }
    void SetSel(size_t from, size_t to);
    void SetMaxLength(int characters);
    void SetReadOnly(bool on);
    // EDIT_SELECTALL: the whole text is selected when the edit gains the
    // focus.
    void SetSelectAllOnFocus(bool on) { selectAllOnFocus = on; }
    // The composition the input method shows now ("" when none).
    const std::string& GetPreedit() const { return preedit; }
    // The horizontal and vertical scroll of the text, in pixels.
    int GetScrollX() const { return scrollX; }
    int GetScrollY() const { return scrollY; }
    // The byte offset of the text under a client point.
    size_t IndexFromPoint(int x, int y);
    // The caret's rectangle in client coordinates.
    SRect CaretRect();
    // Whether the caret shows now (it blinks while the edit has the focus).
    bool IsCaretOn() const { return caretOn; }

    // The popup menu: shown at a client point (null when the style has
    // EDIT_NOPOPUPMENU); whether a command is available now; running one.
    SWnd* ShowPopupMenu(int x, int y);
    SWnd* GetPopupMenu() const;
    bool IsCommandEnabled(SEditCommand command) const;
    void RunCommand(SEditCommand command);

    // Slots of SWnd.
    void OnUndo() override;
    void OnCut() override;
    void OnCopy() override;
    void OnPaste() override;
    void OnDelete() override;
    void OnSelectAll() override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    class Popup;
    PangoLayout* MakeLayout();
    // The text as shown: bullets for a password, the composition at the caret.
    std::string DisplayText() const;
    int ToDisplay(size_t index) const;
    size_t FromDisplay(int index) const;
    SRect TextArea() const;
    void Paint(cairo_t* cr);
    bool HandleKey(unsigned key);
    void TypeCharacter(unsigned code);
    void MoveVertically(int lines, bool extend);
    // After a change of the text (changed) or of the caret: scroll, the
    // window's text, the notification, the input method, the caret's blink.
    void Changed(bool textChanged);
    void EnsureCaretVisible();
    void RestartBlink();
    void TellInputMethod();
    void Notify();

    SEditText model;
    std::string preedit;
    int preeditCaret = 0;
    bool selectAllOnFocus = false;
    bool caretOn = false;
    bool dragging = false;
    int scrollX = 0;
    int scrollY = 0;
    uint64_t lastDoubleClick = 0;
    SPoint lastDoubleClickPoint;
    PangoContext* pangoContext = nullptr;
    std::unique_ptr<Popup> popup;
};

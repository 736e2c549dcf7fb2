// SComboCtrl: the combo box, in two forms: a drop-down list (the field
// shows the chosen item) and an editable one (the field is a one-line text
// field of its own: caret, typing, Backspace, Delete, arrows, Home, End,
// select all). The list drops down in a popup surface below the field (or
// above it when there is no room): Alt+Down or F4 or a press opens it,
// arrows, Page Up, Page Down, Home and End move in it, Enter, a click or
// F4 (Alt+Up, Alt+Down) again picks, Escape or a press elsewhere closes it;
// with the list closed the arrows choose the next or previous item; letters
// jump to the next item starting with them in the drop-down form.
//
// It tells its parent SN_COMBO_SELECT_CHANGE when the chosen item changes
// by the user's hand, and SN_COMBO_EDIT_CHANGE when the user changes the
// text of the editable form.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "toolkit/list_draw.h"
#include "toolkit/wnd.h"

enum COMBO_FORM { COMBO_DROP_LIST, COMBO_EDITABLE };

class SListCtrl;

class SComboCtrl : public SWnd {
public:
    SComboCtrl();
    ~SComboCtrl() override;

    bool Create(SWnd* parent, const SRect& rect, uintptr_t id, COMBO_FORM form = COMBO_DROP_LIST,
                unsigned style = WS_VISIBLE);
    COMBO_FORM GetForm() const { return form; }

    // Items; AddText returns the new item's index.
    int AddText(const char* text);
    void Clear();
    int GetCount() const { return static_cast<int>(items.size()); }
    SString GetItemText(int index) const;
    // The chosen item, -1 for none. Setting it shows its text in the field
    // (and tells the parent nothing).
    int GetSelectedIndex() const { return selected; }
    bool SetSelectedIndex(int index);
    // The text of the field: the chosen item's, or what was typed.
    SString GetEditText() const;
    void SetEditText(const char* text);
    // The caret and the selection of the editable form, as byte offsets.
    int GetCaret() const { return caret; }
    int GetSelectionStart() const;
    int GetSelectionEnd() const;

    // The drop-down.
    void OpenList();
    void CloseList(bool pick);
    bool IsListOpen() const { return popup != nullptr; }
    // The popup window and its list while open (null otherwise).
    SWnd* GetPopup() const;
    SListCtrl* GetPopupList() const;
    // The most items the list shows without scrolling.
    static constexpr int VISIBLE_ITEMS = 8;
    // The button's place at the field's right.
    SRect GetButtonRect() const;

    void OnSelectAll() override;

protected:
    bool PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    class Popup;
    friend class Popup;
    void Paint(cairo_t* cr);
    // Keys; true when the key was used.
    bool HandleKey(unsigned key, bool alt);
    void HandleChar(unsigned character);
    bool EditKey(unsigned key, bool shift);
    void ReplaceSelection(const std::string& text);
    void EditChanged();
    // The user chose index: shown, and the parent told when it changed.
    void Choose(int index);
    void Notify(unsigned message);
    int ItemHeight();

    COMBO_FORM form = COMBO_DROP_LIST;
    std::vector<std::string> items;
    int selected = -1;
    std::string editText;
    int caret = 0;
    int anchor = 0; // the other end of the selection
    bool focused = false;
    std::unique_ptr<SListFont> font;
    std::unique_ptr<Popup> popup;
    std::vector<std::unique_ptr<Popup>> retired; // closed, deleted at the next chance
    bool opening = false;
    STypeAhead typeAhead;
};

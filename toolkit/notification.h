// Reading a control's notification without casts. Every notification
// (SN_* of foundation/message_numbers.h) reaches the parent with the
// control's SWnd* as wParam; lParam holds, by the notification's kind,
// nothing, a code, a mouse record (the point), a text or an item. A reader
// of another kind than the message's gives null or 0, never a cast of the
// wrong thing (SN_TRAY, from the tray icon, which is no window, has a
// null wParam):
//
//     SNotification note(message, wParam, lParam);
//     if (note.Is(SN_MEDIA_MOUSE) && note.From(&coverCtrl)) {
//         ShowMenuAt(note.Mouse()->screen);
//     }
#pragma once

#include <cstdint>

#include "foundation/message_numbers.h"
#include "toolkit/mouse_event.h"
#include "toolkit/wnd.h"

enum class SNotifyKind {
    NONE,    // not a notification
    CONTROL, // the control alone
    CODE,    // a number: a key, a state, a command, a position, a height
    MOUSE,   // an SMouseEvent*: the mouse code and the point
    TEXT,    // a const char*: a link, an address
    ITEM,    // an item of the control (a tree item)
};

constexpr SNotifyKind NotificationKind(unsigned message) {
    switch (message) {
    case SN_BUTTON_CLICKED:
    case SN_COMBO_EDIT_CHANGE:
    case SN_COMBO_SELECT_CHANGE:
    case SN_EDIT_CHANGE:
    case SN_EDITOR_CHANGE:
    case SN_LIST_SELECT:
    case SN_LIST_DOUBLE_CLICK:
    case SN_MEDIA_BUTTON_CLICKED:
    case SN_PLAYER_ENDED:
    case SN_PLAYER_LOOPED:
    case SN_WEB_TITLE:
    case SN_WEB_STATUS_TEXT:
    case SN_WEB_QUIT:
        return SNotifyKind::CONTROL;
    case SN_CHECK_CLICKED:
    case SN_CONTROL_BAR_HEIGHT:
    case SN_LIST_KEY:
    case SN_EXLIST_COLUMN_CLICK:
    case SN_TREE_KEY:
    case SN_PLAYER_BUFFERING:
    case SN_MENU_COMMAND:
    case SN_TOOLBAR_COMMAND:
    case SN_TRAY:
    case SN_SCROLL_CHANGED:
    case SN_SCROLL_FORWARD:
    case SN_WEB_PROGRESS:
    case SN_WEB_DOCUMENT_DONE:
    case SN_TAB_SELECT:
    case SN_PANEL_ITEM:
        return SNotifyKind::CODE;
    case SN_LIST_MOUSE:
    case SN_MEDIA_MOUSE:
    case SN_PLAYER_MOUSE:
    case SN_SPLITTER_MOUSE:
    case SN_TREE_MOUSE:
    case SN_BUTTON_MOUSE:
    case SN_CHECK_MOUSE:
    case SN_RADIO_MOUSE:
    case SN_SCROLL_MOUSE:
    case SN_SLIDER_MOUSE:
    case SN_PROGRESS_MOUSE:
    case SN_LABEL_MOUSE:
    case SN_STATIC_MOUSE:
    case SN_GROUP_MOUSE:
    case SN_TAB_MOUSE:
    case SN_PANEL_MOUSE:
    case SN_GUI_MOUSE:
    case SN_TOOLBAR_MOUSE:
    case SN_STATUS_BAR_MOUSE:
    case SN_CONTROL_BAR_MOUSE:
        return SNotifyKind::MOUSE;
    case SN_MEDIA_LINK_CLICKED:
    case SN_WEB_BEFORE_NAVIGATE:
        return SNotifyKind::TEXT;
    case SN_TREE_CHECK:
    case SN_TREE_LABEL:
        return SNotifyKind::ITEM;
    default:
        return SNotifyKind::NONE;
    }
}

class SNotification {
public:
    SNotification(unsigned message, WPARAM wParam, LPARAM lParam)
        : message(message), kind(NotificationKind(message)), wParam(wParam), lParam(lParam) {}

    SNotifyKind Kind() const { return kind; }
    bool IsNotification() const { return kind != SNotifyKind::NONE; }
    bool Is(unsigned notification) const { return IsNotification() && message == notification; }

    // The control that sent it; null for a message that is no notification.
    SWnd* Control() const { return IsNotification() ? reinterpret_cast<SWnd*>(wParam) : nullptr; }
    // The control as its own class; null when it is another one.
    template <class T> T* ControlAs() const { return dynamic_cast<T*>(Control()); }
    bool From(const SWnd* control) const { return control != nullptr && Control() == control; }

    // CODE: the number; 0 for other kinds.
    int64_t Code() const { return kind == SNotifyKind::CODE ? static_cast<int64_t>(lParam) : 0; }
    // MOUSE: the record; null for other kinds.
    const SMouseEvent* Mouse() const {
        return kind == SNotifyKind::MOUSE ? reinterpret_cast<const SMouseEvent*>(lParam) : nullptr;
    }
    // MOUSE: the mouse code (MOUSE_CLICK | MOUSE_LEFT...) and the point in
    // the control's client coordinates; 0 and (0, 0) for other kinds.
    unsigned MouseCode() const { return Mouse() != nullptr ? Mouse()->code : 0; }
    SPoint Point() const { return Mouse() != nullptr ? Mouse()->client : SPoint{}; }
    // TEXT: the text, valid while the message is handled; null for other kinds.
    const char* Text() const {
        return kind == SNotifyKind::TEXT ? reinterpret_cast<const char*>(lParam) : nullptr;
    }
    // ITEM: the control's item; 0 for other kinds.
    uintptr_t Item() const {
        return kind == SNotifyKind::ITEM ? static_cast<uintptr_t>(lParam) : 0;
    }

private:
    unsigned message;
    SNotifyKind kind;
    WPARAM wParam;
    LPARAM lParam;
};

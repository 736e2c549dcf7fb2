// SHostedChild: a widget of the platform (the web view) laid over a toolkit
// window and kept on it. The owner's client area, in its top-level surface's
// coordinates, is the widget's place; the widget shows while the owner is
// visible, and has the keyboard while the owner has the focus. Each frame
// of the top-level window brings every hosted child of it up to date, so a
// move or resize of the owner or of any window above it is followed; the
// owner also calls Sync when it learns of a change itself.
//
// Keys pressed while the widget has the keyboard go by RouteHostedKey: the
// widget keeps what it uses, and the rest reaches the toolkit's focus window
// (the owner, which then hands it to its top-level window as SM_KEY) as if
// the widget were not there.
#pragma once

#include "foundation/geometry.h"
#include "foundation/message.h"

class SWnd;

class SHostedChild {
public:
    SHostedChild() = default;
    SHostedChild(const SHostedChild&) = delete;
    SHostedChild& operator=(const SHostedChild&) = delete;
    ~SHostedChild();

    // Hands widget (a platform widget, taken over) to the platform over
    // owner, which must have a handle. False when the platform cannot host
    // it; the widget is then still the caller's.
    bool Attach(SWnd* owner, void* widget);
    // Places, shows or hides the widget as the owner stands now.
    void Sync();
    // The owner gained (true) or lost the keyboard focus.
    void Focus(bool focus);
    // Destroys the widget.
    void Detach();

    bool IsAttached() const { return owner != 0; }
    // Where the widget is, in surface coordinates, as last placed.
    const SRect& GetRect() const { return rect; }
    bool IsShown() const { return shown; }
    HWND GetTop() const { return top; }

private:
    HWND owner = 0;
    HWND top = 0;
    SRect rect;
    bool placed = false;
    bool shown = false;
};

// Where a key pressed while a hosted child has the keyboard goes.
enum class SHostedKey {
    WINDOW, // the window alone, the child never sees it
    CHILD,  // the child alone, even when it does nothing with it
    EITHER, // the child first; the window when the child did not use it
};
// The rule for virtualKey (VK_*) with Ctrl or Alt held or not. The function
// keys and Escape belong to the program: they go to the window whatever
// the page makes of them. Space, the arrows, Page Up, Page Down, Home and
// End without Ctrl or Alt move through the page: they stay with it even
// where the page cannot move further, so that a page read to its end by
// Space never pauses the music. Everything else (typing into a form,
// Ctrl+C, Tab through the links, Backspace, Enter) is the page's when it
// uses it and the window's when not.
SHostedKey RouteHostedKey(unsigned virtualKey, bool ctrl, bool alt);

// Brings every hosted child of the top-level window top up to date; the
// toolkit calls it after each frame.
void SyncHostedChildren(HWND top);

// STrayIcon: the program's icon in the desktop's notification area, with a
// tip and a menu. The platform shows it (a StatusNotifierItem, or an icon
// of an XEmbed tray); where the desktop has neither, the icon simply does
// not show and every call still succeeds.
//
// What the user does reaches the owner window as SN_TRAY, sent on the
// owner's thread with wParam 0 (the icon is no window) and the mouse code
// of a notification (toolkit/mouse_event.h) as lParam:
//
//   activation (a click, the host's Activate)         0x41, a left double click
//   a request for the menu (a right click, where the
//   platform leaves the menu to the program)          0x14, a right button up
//
// so the owner toggles its window on 0x41 and, on 0x14, brings the menu up
// to date and calls ShowMenu. Secondary activation (a middle click, the
// host's SecondaryActivate) picks the menu's secondary item
// (SetSecondaryItem: WM_COMMAND with its ID, as a pick in the menu); with
// none named it is 0x41 as well where the platform reports it (a
// StatusNotifierItem host can only activate an item of the menu, so there
// it does nothing). The menu is mirrored from an SMenu the owner keeps:
// SetMenu gives it, UpdateMenu copies it again after the owner changed it
// (a StatusNotifierItem host shows the copy by itself, without asking
// first). A pick in the copy reaches the owner as WM_COMMAND with the
// item's ID, as from the SMenu itself.
#pragma once

#include <vector>

#include "foundation/image.h"
#include "foundation/message.h"
#include "foundation/string.h"
#include "toolkit/platform/platform.h"

class SMenu;

class STrayIcon {
public:
    STrayIcon();
    ~STrayIcon(); // removes the icon
    STrayIcon(const STrayIcon&) = delete;
    STrayIcon& operator=(const STrayIcon&) = delete;

    // Adds the icon for owner: the picture, or iconName of the icon theme
    // where the theme has it, with the tip. False only for a null owner or
    // an icon added already; true also where the desktop has no
    // notification area (IsShown tells).
    bool Add(HWND owner, const SImage& icon, const SString& tip, const char* iconName = nullptr);
    bool ChangeIcon(const SImage& icon, const char* iconName = nullptr);
    bool ChangeTip(const SString& tip);
    void Remove();

    // The menu the desktop shows for the icon: a copy of menu (not owned;
    // null for none), made now and again by UpdateMenu.
    void SetMenu(SMenu* menu);
    void UpdateMenu();
    // The ID of the item a secondary activation picks (the show and hide
    // item, say); 0 for none.
    void SetSecondaryItem(int commandId);
    // Shows the menu at the pointer: the platform's copy where it shows
    // one, the SMenu itself otherwise. False without a menu.
    bool ShowMenu();

    bool IsAdded() const { return owner != 0; }
    // Whether the desktop shows the icon.
    bool IsShown() const { return shown; }
    HWND GetOwner() const { return owner; }
    int GetId() const { return id; }
    const SString& GetTip() const { return tip; }

    // The mouse code the owner gets for an event (above).
    static unsigned NotifyCode(STrayEvent event);
    // The copy of a menu the platform shows, the first item with the ID
    // secondaryId (0: none) marked secondary; submenus deeper than 16
    // levels are left out.
    static std::vector<STrayMenuItem> MirrorMenu(const SMenu& menu, int secondaryId = 0);
    // "&"-marked item text as desktop menus mark it: "&Open" gives
    // "_Open", "&&" a plain "&", "_" becomes "__"; only the first mark
    // underlines, and the shortcut part is not shown.
    static SString MnemonicText(const SString& text);

    // What PlatformTrayEvent and PlatformTrayCommand do for this icon.
    void OnEvent(STrayEvent event);
    void OnCommand(int commandId);

private:
    int id;
    HWND owner = 0;
    bool shown = false;
    SString tip;
    SMenu* menu = nullptr;
    int secondaryId = 0;
    std::vector<STrayMenuItem> mirrored;
};

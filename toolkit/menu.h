// SMenu: a menu the toolkit draws itself. A menu holds items (a command,
// a separator or a submenu), opens as a popup at a screen point on popup
// surfaces, one per open level, and is the menu bar of a top-level window.
//
// Item text: "&" marks the next letter as the mnemonic ("&&" is a plain
// "&"); a tab parts the text from the shortcut text shown at the right.
//
// While open, the deepest level holds the keys: Up and Down move over the
// items (skipping separators and disabled items), Right opens a submenu,
// Left and Escape close a level, Enter and mnemonic letters pick. The
// pointer highlights; resting on a submenu item opens it after a short
// delay; a click picks; a press outside closes every level. A pick closes
// the menu and posts WM_COMMAND with the item's ID (wParam) to the owner.
#pragma once

#include <memory>
#include <vector>

#include "foundation/geometry.h"
#include "foundation/string.h"
#include "toolkit/wnd.h"

class SImage;
class SMenuDefinition;

// Flags of SMenu::AppendItem.
constexpr unsigned MENU_ITEM_CHECKED = 1;
constexpr unsigned MENU_ITEM_DISABLED = 2;

// How long the pointer rests on a submenu item before it opens.
constexpr unsigned MENU_SUBMENU_DELAY = 300;

struct SMenuItem {
    int id = 0;
    SString text;     // with "&" marks, without the shortcut
    SString shortcut; // the part after a tab
    bool separator = false;
    bool checked = false;
    bool disabled = false;
    std::unique_ptr<class SMenu> submenu;
    const SImage* image = nullptr; // not owned; drawn at the left
    SString imageName;

    // The mnemonic letter, lower case; 0 for none.
    char32_t Mnemonic() const;
    bool IsSelectable() const { return !separator && !disabled; }
};

class SMenu {
public:
    SMenu();
    ~SMenu();
    SMenu(const SMenu&) = delete;
    SMenu& operator=(const SMenu&) = delete;

    // Building. text may hold a tab and the shortcut text.
    SMenuItem& AppendItem(int id, const SString& text, unsigned flags = 0);
    void AppendSeparator();
    // A new, empty submenu the menu owns.
    SMenu* AppendSubmenu(const SString& text, unsigned flags = 0);
    // Replaces the items by those of menu index of the definition, with
    // its submenus (a menu met again on the way down is left out, so that
    // a loop cannot recurse). False for an index outside the definition.
    bool Load(const SMenuDefinition& definition, int index = 0);
    void Clear();

    int GetItemCount() const { return static_cast<int>(items.size()); }
    SMenuItem& GetItem(int index) { return items[index]; }
    const SMenuItem& GetItem(int index) const { return items[index]; }
    // The first item with the ID, here or in a submenu; null for none.
    SMenuItem* FindItem(int id);
    bool CheckItem(int id, bool checked);
    bool EnableItem(int id, bool enabled);

    // Opens the menu as a popup with its top left at the screen point
    // (moved to the other side of the point where the work area ends).
    // Picks go to owner as WM_COMMAND. False when the menu has no items,
    // is open already or the surface cannot be made.
    bool TrackPopup(HWND owner, int screenX, int screenY);
    // Closes every open level without a pick.
    void Close();
    bool IsOpen() const;
    // The open levels, 0 for the menu itself; their windows and the
    // highlighted item of each (-1 for none).
    int GetLevelCount() const;
    SWnd* GetLevel(int level) const;
    int GetHot(int level) const;
    SMenu* GetLevelMenu(int level) const;

    // The menu bar. UseAsMenuBar puts the menu in window's menu bar slot
    // and draws it there; a press on a title opens its submenu below it,
    // and Left and Right in an open menu move to the next title. F10 in
    // the window opens the first menu.
    bool UseAsMenuBar(SWnd* window, bool keepClientHeight);
    // The bar's titles: the rectangle of item index in window
    // coordinates; empty past the end.
    SRect GetBarItemRect(int index) const;
    // Opens the submenu of bar item index; false when there is none.
    bool OpenBarItem(int index);
    int GetOpenBarItem() const { return openBarItem; }

    // The size of the popup the menu opens as.
    SSize MeasurePopup() const;

    class Level;
    class Tracker;

private:
    friend class Level;
    friend class Tracker;
    bool LoadFrom(const SMenuDefinition& definition, int index, std::vector<bool>& visiting);
    void PaintBar(cairo_t* cr, const SRect& bar);
    static void BarPainter(SWnd* window, SMenu* menu, cairo_t* cr, const SRect& bar);
    static void BarPress(SWnd* window, SMenu* menu, int x, int y);
    static bool BarKey(SWnd* window, SMenu* menu);

    std::vector<SMenuItem> items;
    std::unique_ptr<Tracker> tracker;
    SWnd* barWindow = nullptr;
    int openBarItem = -1;
};

// SMenuDefinition: the menus of a menu definition file and their item
// records, read and written without any window. SMenu builds its platform
// items from these.
//
// The file: the first line exactly "TAVORA MENU 1.0.0.0" with CR LF, then
// ini text read by SIni from there on:
//
//   []                 the leading part
//   count=2            number of menus; below 1 the file is refused
//   [0]                menu 0 (the menu bar when asked for), then popups
//   name=Main
//   count=3            items of menu 0
//   [0:0]              item 0 of menu 0
//   id=100             command number
//   name=FILE_OPEN     given to the name-to-ID callback
//   separator=0
//   menu=1             submenu index: 1 up to count less 1, else none
//   text=&Open
//   tip=Ctrl+O         shortcut text: shown after a tab
//   image=open.png     empty for none
//   data=0
//   checked=0
//   disabled=0
//
// Booleans are true when exactly "1". Counts that add up to more menus and
// items than the file has section lines besides "[]" are refused, so that
// a damaged count cannot make millions of empty records.
#pragma once

#include <functional>
#include <vector>

#include "foundation/string.h"

class SFile;

constexpr const char* MENU_MAGIC = "TAVORA MENU 1.0.0.0";
// Menu item images are always this size, whatever their files hold.
constexpr int MENU_IMAGE_SIZE = 16;

struct SMenuItemRecord {
    int id = 0;
    SString name;
    bool separator = false;
    int submenu = -1; // index of the submenu, -1 for none
    SString text;
    SString tip;
    SString image;       // file name, empty for none
    int imageIndex = -1; // place of image among the definition's images
    int data = 0;
    bool checked = false;
    bool disabled = false;

    bool operator==(const SMenuItemRecord&) const = default;
    // The text shown: text, and a tab and the tip when the tip is not empty.
    SString GetShownText() const;
    bool IsSubmenu() const { return !separator && submenu >= 0; }
};

struct SMenuRecord {
    SString name;
    std::vector<SMenuItemRecord> items;
    bool operator==(const SMenuRecord&) const = default;
};

// The name-to-ID callback: the command number for an item's name.
using SMenuNameToId = std::function<int(const SString& name)>;

class SMenuDefinition {
public:
    // Reads the definition from the file's position. Clears first. False,
    // with the definition empty, for a null file, a wrong first line, a
    // menu count below 1 or counts beyond the file. With a callback, each
    // item's ID is what it gives for the item's name. A menu value outside
    // 1 to count less 1 makes a plain item (menu 0 is never a submenu; a
    // menu naming itself is let be). error (may be null) receives a
    // one-line reason.
    bool Load(SFile* file, const SMenuNameToId& nameToId = nullptr, SString* error = nullptr);
    // Writes magic and ini text that Load reads back to the same records.
    // False for a null file, no menus, a short write, or a text holding
    // CR LF, which the ini text cannot carry.
    bool Save(SFile* file) const;
    // The file's text as Save writes it.
    SString Format() const;

    void Clear();
    std::vector<SMenuRecord>& GetMenus() { return menus; }
    const std::vector<SMenuRecord>& GetMenus() const { return menus; }
    // The distinct non-empty image names, in order of first use over all
    // items of all menus; each item's imageIndex points into it. Rebuilt
    // by Load and by UpdateImages.
    const std::vector<SString>& GetImages() const { return images; }
    void UpdateImages();

private:
    std::vector<SMenuRecord> menus;
    std::vector<SString> images;
};

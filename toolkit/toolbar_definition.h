// SToolbarDefinition: the buttons of a toolbar definition file, read and
// written without any window. SToolBarCtrl makes its buttons from these.
//
// The file: the first line exactly "TAVORA TOOLBAR 1.0.0.0" with CR LF,
// then ini text read by SIni from there on:
//
//   []                 the leading part
//   width=16           size of the button images
//   height=16
//   count=3            number of buttons; 0 makes an empty bar
//   [0]                button 0
//   name=PLAY          given to the name-to-ID callback
//   image=play.png     file name of the image, empty for none
//   separator=0
//   data=0
//   disabled=0
//   text=Play
//
// The file holds no command numbers: a button's ID comes from the
// callback, and a button left with ID 0 gets -2 less its index, so that
// each has one of its own below -1 (the third button: -4). Booleans are
// true when exactly "1". A count above the file's section lines besides
// "[]" is refused, so that a damaged count cannot make millions of buttons.
#pragma once

#include <functional>
#include <vector>

#include "foundation/string.h"

class SFile;

constexpr const char* TOOLBAR_MAGIC = "TAVORA TOOLBAR 1.0.0.0";

// The style and states the bar and its buttons are made with.
constexpr unsigned TOOLBAR_STYLE = 0x90C;
constexpr unsigned TOOLBAR_BUTTON_STYLE = 0x50;
constexpr unsigned TOOLBAR_STATE_ENABLED = 4;
constexpr unsigned TOOLBAR_STATE_DISABLED = 0;

struct SToolbarButtonRecord {
    int id = 0; // from the callback; see above
    SString name;
    SString image;
    bool separator = false;
    int data = 0;
    bool disabled = false;
    SString text;

    bool operator==(const SToolbarButtonRecord&) const = default;
    unsigned GetState() const { return disabled ? TOOLBAR_STATE_DISABLED : TOOLBAR_STATE_ENABLED; }
};

using SToolbarNameToId = std::function<int(const SString& name)>;

class SToolbarDefinition {
public:
    // Reads the definition from the file's position. Clears first. False,
    // with the definition empty, for a null file, a wrong first line or a
    // count beyond the file; a negative count reads as 0. error (may be
    // null) receives a one-line reason.
    bool Load(SFile* file, const SToolbarNameToId& nameToId = nullptr, SString* error = nullptr);
    // Writes magic and ini text that Load reads back to the same buttons
    // (IDs aside, which the file does not hold). False for a null file, a
    // short write or a text holding CR LF.
    bool Save(SFile* file) const;
    SString Format() const; // empty when a text holds CR LF

    void Clear();
    int width = 0; // of the button images
    int height = 0;
    std::vector<SToolbarButtonRecord> buttons;
};

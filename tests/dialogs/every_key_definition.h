// A dialog definition that holds every control type, each record with
// every property key its type's rows hold, every style word of its type
// and values of every kind: shared by the definition and factory tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/dialog_definition.h"

namespace every_key {

using Record = SDialogDefinition::_SCtrl;

// Every key each type's property rows hold in the file (the fixed keys
// FONT, BACKCOLOR, TEXTCOLOR and TRANSPARENT have lines of their own).
struct TypeKeys {
    const char* section;
    const char* keys;
};
inline const TypeKeys TYPE_KEYS[] = {
    {"DIALOG", "DIALOG_LAYER DIALOG_SHAPE DIALOG_CAPTION DIALOG_BUTTON DIALOG_NOCLOSE "
               "DIALOG_MAXIMIZEBOX DIALOG_MINIMIZEBOX DIALOG_RESIZE DIALOG_TOOLWINDOW "
               "DIALOG_MAXIMIZED DIALOG_MINIMIZED DIALOG_TOPMOST DIALOG_MINSIZE DIALOG_MAXSIZE "
               "DIALOG_DRAGFILES DIALOG_MOVEWITHMOUSE DIALOG_NOMODALRETURN DIALOG_NOMODALESCAPE "
               "DIALOG_STATUSBARTEXT DIALOG_FOCUS DIALOG_ICON DIALOG_IMAGE DIALOG_IMAGEDRAWMODE "
               "DIALOG_MENU DIALOG_TOOLBAR BORDER CLIENTEDGE STATICEDGE "},
    {"BROWSER", "BROWSER_DIALOGS BROWSER_URL BORDER BROWSER_FILE "},
    {"BUTTON", "BUTTON_DEFAULT BUTTON_FLAT BUTTON_MULTILINE BUTTON_HALIGN BUTTON_VALIGN TOOLTIP "},
    {"CHECK", "TOOLTIP CHECK_CHECKED BORDER CLIENTEDGE STATICEDGE "},
    {"CODEEDIT", "CODEEDIT_BR CODEEDIT_COMMENT CODEEDIT_FINDREPLACELOCAL CODEEDIT_INDENT "
                 "CODEEDIT_SINGLELINE CODEEDIT_STRINGS CODEEDIT_UPPERWORDS CODEEDIT_SHOWNUMBER "
                 "CODEEDIT_READONLY TOOLTIP CODEEDIT_BARWIDTH CODEEDIT_TABSIZE CODEEDIT_SELECTALL "
                 "CODEEDIT_BACKCOLOR CODEEDIT_BACKFOCUSCOLOR CODEEDIT_BARCOLOR "
                 "CODEEDIT_BARGRAYCOLOR CODEEDIT_BARCHECKCOLOR CODEEDIT_BARMARKCOLOR "
                 "CODEEDIT_TEXTCOLOR CODEEDIT_TEXTKEYCOLOR CODEEDIT_TEXTSTRCOLOR "
                 "CODEEDIT_TEXTUPCOLOR CODEEDIT_TEXTCOMMENTCOLOR CODEEDIT_HIGHLIGHTCOLOR "
                 "CODEEDIT_FILE BORDER CLIENTEDGE STATICEDGE "},
    {"COMBO", "COMBO_TYPE COMBO_AUTOHSCROLL COMBO_DISABLENOSCROLL COMBO_NOINTEGRALHEIGHT "
              "COMBO_SORT COMBO_VSCROLL TOOLTIP COMBO_CONTENT COMBO_FILE "},
    {"EDIT", "EDIT_AUTOHSCROLL EDIT_AUTOVSCROLL EDIT_HSCROLL EDIT_VSCROLL EDIT_READONLY "
             "EDIT_NEVERHIDESELECTION EDIT_ALIGN EDIT_LOWER EDIT_UPPER EDIT_MULTILINE "
             "EDIT_PASSWORD EDIT_NUMBER EDIT_NOPOPUPMENU TOOLTIP EDIT_SELECTALL "
             "EDIT_MAXLENGTH EDIT_TEXT BORDER CLIENTEDGE STATICEDGE "},
    {"EXTENDEDLIST", "EXLIST_TYPE EXLIST_EDITLABELS EXLIST_AUTOARRANGE EXLIST_FULLROWSELECT "
                     "EXLIST_GRIDLINES EXLIST_SINGLESELECTION EXLIST_NOLABELWRAP EXLIST_NOSCROLL "
                     "EXLIST_NEVERHIDESELECTION EXLIST_SORTASCENDING EXLIST_SORTDESCENDING "
                     "EXLIST_NOCOLUMNHEADER TOOLTIP BORDER CLIENTEDGE STATICEDGE "},
    {"GROUP", "GROUP_ALIGN "},
    {"GUI", "BORDER CLIENTEDGE STATICEDGE "},
    {"IMAGEEDITOR", "IMAGEEDITOR_FILE BORDER CLIENTEDGE STATICEDGE "},
    {"LABEL", "LABEL_HALIGN LABEL_VALIGN TOOLTIP LABEL_TEXT LABEL_IMAGE LABEL_IMAGEDRAWMODE "
              "BORDER CLIENTEDGE STATICEDGE "},
    {"LCD", "LCD_HALIGN TOOLTIP LCD_PIXELWIDTH LCD_PIXELHEIGHT LCD_CHARCOUNT LCD_LINECOUNT "
            "LCD_SCROLL LCD_SCROLLSPEED LCD_CELLCOLOR LCD_TEXT BORDER CLIENTEDGE STATICEDGE "},
    {"LEVEL", "LEVEL_HORIZONTAL LEVEL_TICK TOOLTIP LEVEL_CHANNELCOUNT LEVEL_VALUE "
              "LEVEL_MINVALUE LEVEL_MAXVALUE LEVEL_BACKCOLOR LEVEL_LOWCOLOR LEVEL_HIGHCOLOR "
              "BORDER CLIENTEDGE STATICEDGE "},
    {"LIST", "LIST_SELECTION LIST_HSCROLL LIST_VSCROLL LIST_DISABLENOSCROLL "
             "LIST_NOINTEGRALHEIGHT LIST_SORT TOOLTIP LIST_CONTENT LIST_SELBACKCOLOR "
             "LIST_SELTEXTCOLOR LIST_FILE BORDER CLIENTEDGE STATICEDGE "},
    {"MEDIA", "MEDIA_SHAPE MEDIA_HALIGN MEDIA_VALIGN MEDIA_WRAPPING MEDIA_TRIMMING MEDIA_TAGS "
              "MEDIA_BUTTON TOOLTIP MEDIA_LEFTMARGIN MEDIA_TOPMARGIN MEDIA_RIGHTMARGIN "
              "MEDIA_BOTTOMMARGIN MEDIA_AUTOSCROLLX MEDIA_AUTOSCROLLY MEDIA_AUTOSCROLLLOOP "
              "MEDIA_CHECKED MEDIA_LINKCOLOR MEDIA_TEXT MEDIA_IMAGE MEDIA_IMAGEDRAWMODE "
              "MEDIA_BUTTONOVER MEDIA_BUTTONPUSH MEDIA_BUTTONCHECK MEDIA_BUTTONDISABLED BORDER "
              "CLIENTEDGE STATICEDGE "},
    {"MEDIAPLAYER", "MEDIAPLAYER_LOOP BORDER CLIENTEDGE STATICEDGE "},
    {"PANEL", "BORDER CLIENTEDGE STATICEDGE "},
    {"PROGRESS", "PROGRESS_VERTICAL PROGRESS_SMOOTH PROGRESS_MARQUEE TOOLTIP PROGRESS_VALUE "
                 "PROGRESS_MINVALUE PROGRESS_MAXVALUE "},
    {"PROPERTY", "BORDER CLIENTEDGE STATICEDGE "},
    {"RADIO", "TOOLTIP RADIO_CHECKED RADIO_GROUP BORDER CLIENTEDGE STATICEDGE "},
    {"RICHEDIT", "RICHEDIT_AUTOHSCROLL RICHEDIT_AUTOVSCROLL RICHEDIT_HSCROLL RICHEDIT_VSCROLL "
                 "RICHEDIT_READONLY RICHEDIT_NEVERHIDESELECTION RICHEDIT_WANTRETURN "
                 "RICHEDIT_ALIGN TOOLTIP RICHEDIT_SUNKEN STATICEDGE RICHEDIT_FILE "},
    {"SCROLL", "SCROLL_VERTICAL TOOLTIP SCROLL_VALUE SCROLL_MINVALUE SCROLL_MAXVALUE "},
    {"SLIDER", "SLIDER_TOOLTIPS SLIDER_VERTICAL TOOLTIP SLIDER_VALUE SLIDER_MINVALUE "
               "SLIDER_MAXVALUE BORDER CLIENTEDGE STATICEDGE "},
    {"SPLITTER", "SPLITTER_COLCOUNT SPLITTER_ROWCOUNT SPLITTER_WINDOWBACKCOLOR BORDER CLIENTEDGE "
                 "STATICEDGE "},
    {"SPREAD", "SPREAD_FILE BORDER CLIENTEDGE STATICEDGE "},
    {"STATIC", "STATIC_EDGE STATIC_LEFTBORDER STATIC_TOPBORDER STATIC_RIGHTBORDER "
               "STATIC_BOTTOMBORDER STATIC_IMAGE STATIC_IMAGEDRAWMODE "},
    {"TAB", "TAB_TYPE TAB_TOOLTIPS TAB_FOCUSONBUTTONDOWN TAB_FOCUSNEVER TAB_CONTENT "
            "TAB_TIPCONTENT TAB_SELECTION "},
    {"TABDOC", "TABDOC_CLOSE TABDOC_MOVE TABDOC_CONTENT TABDOC_SELECTION TABDOC_BACKCOLOR "
               "TABDOC_BACKSELCOLOR TABDOC_TEXTCOLOR TABDOC_TEXTSELCOLOR TABDOC_WINDOWBACKCOLOR "
               "BORDER CLIENTEDGE STATICEDGE "},
    {"TOOLBAR", "TOOLBAR_TOOLTIPS TOOLBAR_TRANSPARENT TOOLBAR_IMAGEWIDTH TOOLBAR_IMAGEHEIGHT "
                "TOOLBAR_CONTENT BORDER CLIENTEDGE STATICEDGE "},
    {"TREE", "TREE_CHECKBOXES TREE_DRAGDROP TREE_EDITLABELS TREE_FULLROWSELECT "
             "TREE_HASBUTTONS TREE_HASLINES TREE_LINESATROOT TREE_NEVERHIDESELECTION "
             "TREE_HOTTRACKING TREE_FILE BORDER CLIENTEDGE STATICEDGE "},
    {"WAVEEDITOR", "WAVEEDITOR_POPUPMENU WAVEEDITOR_COLORBACKENABLED WAVEEDITOR_COLORBACKDISABLED "
                   "WAVEEDITOR_COLORLINE WAVEEDITOR_COLORCARET WAVEEDITOR_COLORCARETPLAY "
                   "WAVEEDITOR_COLORWAVEENABLED WAVEEDITOR_COLORWAVEDISABLED "
                   "WAVEEDITOR_COLORPROGRESSBACK WAVEEDITOR_COLORPROGRESSSTART "
                   "WAVEEDITOR_COLORPROGRESSEND WAVEEDITOR_FILE WAVEEDITOR_LEVEL BORDER CLIENTEDGE "
                   "STATICEDGE "},
    {"WINDOW", "BORDER CLIENTEDGE STATICEDGE "},
    {"EXTERN", "EXTERN_NAME EXTERN_FILENAME BORDER CLIENTEDGE STATICEDGE "},
};
inline const char* const GENERAL_KEYS = "HALIGN VALIGN TOOLTIP TABENABLED TABGROUP TABINDEX";

inline std::vector<std::string> Words(const char* text) {
    std::vector<std::string> words;
    std::string word;
    for (const char* c = text;; ++c) {
        if (*c == ' ' || *c == 0) {
            if (!word.empty()) {
                words.push_back(word);
            }
            word.clear();
            if (*c == 0) {
                break;
            }
        } else {
            word += *c;
        }
    }
    return words;
}

// A value of the key's kind: colours as signed decimal, choices as words.
inline std::string ValueFor(const std::string& key, int n) {
    if (key.find("COLOR") != std::string::npos) {
        return std::to_string(-16777216 + n);
    }
    if (key.find("DRAWMODE") != std::string::npos) {
        return DrawModeWord(n % DRAW_MODE_COUNT);
    }
    if (key.find("ALIGN") != std::string::npos || key.find("TYPE") != std::string::npos) {
        return n % 2 != 0 ? "_CENTER" : "_RIGHT";
    }
    if (key.find("CONTENT") != std::string::npos || key.find("TEXT") != std::string::npos ||
        key.find("TIP") != std::string::npos || key.find("URL") != std::string::npos) {
        return "a|b = c|" + std::to_string(n);
    }
    return std::to_string(n % 7);
}

// Fills definition with the dialog and one control of every other type.
inline void Fill(SDialogDefinition& definition) {
    ASSERT_EQ(sizeof(TYPE_KEYS) / sizeof(TYPE_KEYS[0]), static_cast<size_t>(CTRL_TYPE_COUNT));
    int n = 0;
    for (const TypeKeys& entry : TYPE_KEYS) {
        int type = FindControlType(entry.section);
        EXPECT_GE(type, 0) << entry.section;
        Record record;
        record.type = static_cast<int16_t>(type);
        record.id = static_cast<int16_t>(100 + type);
        record.name = SString(entry.section) + "_X";
        record.caption = "Caption = " + SString::FromInt(type);
        record.fontFace = type % 2 != 0 ? "DejaVu Sans" : "";
        record.fontSize = static_cast<uint16_t>(type % 2 != 0 ? 8 + type : 0);
        record.fontFlags = static_cast<uint32_t>(type % 16);
        record.x = static_cast<int16_t>(type * 3 - 20);
        record.y = static_cast<int16_t>(type * 5);
        record.width = static_cast<int16_t>(40 + type);
        record.height = static_cast<int16_t>(20 + type);
        record.locked = type % 3 == 0;
        record.transparent = type % 4 == 0;
        record.backColor = type % 2 != 0 ? 0x00804000u : 0xFE00000Fu;
        record.textColor = type % 3 != 0 ? 0xFF000000u : 0x123456u;
        // Every word of the type: the values survive.
        int count = 0;
        const SStyleWord* words = GetStyleWords(type, &count);
        for (int i = 0; i < count; ++i) {
            record.style |= words[i].value;
        }
        words = GetExStyleWords(type, &count);
        for (int i = 0; i < count; ++i) {
            record.exStyle |= words[i].value;
        }
        std::vector<std::string> keys = Words(GENERAL_KEYS);
        for (const std::string& key : Words(entry.keys)) {
            keys.push_back(key);
        }
        if (type == CTRL_TAB) {
            keys.push_back("TAB_CHILDREN_PRIVATE");
        }
        for (const std::string& key : keys) {
            EXPECT_TRUE(record.SetProperty(key.c_str(), ValueFor(key, n++).c_str()));
        }
        if (type == CTRL_DIALOG) {
            definition.SetDialog(record);
        } else {
            EXPECT_NE(definition.AddControl(record, true, true), nullptr) << entry.section;
        }
    }
}

} // namespace every_key

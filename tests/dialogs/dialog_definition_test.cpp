// Dialog definitions: the reader's edge cases, the writer's exact text, the
// property text, the binary record, and round trips of a definition with
// every control type and every property key.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/dialog_definition.h"
#include "foundation/file.h"

namespace {

using Record = SDialogDefinition::_SCtrl;

std::string Crlf(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\n') {
            out += "\r\n";
        } else {
            out += c;
        }
    }
    return out;
}

SFileMem Memory(const std::string& bytes) {
    SFileMem file;
    file.Reset(0);
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    return file;
}

bool LoadText(SDialogDefinition& definition, const std::string& bytes) {
    SFileMem file = Memory(bytes);
    return definition.Load(&file);
}

std::string Saved(const SDialogDefinition& definition) {
    SFileMem file;
    file.Reset(0);
    EXPECT_TRUE(definition.Save(&file));
    return std::string(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
}

const std::string HEAD = "TAVORA DIALOG 1.0.0.0\nanything at all\n";
const std::string DIALOG_BLOCK = "[DIALOG]\nID=0\nNAME=PREF\n\n";

TEST(DialogDefinitionLoad, WhatIsRefusedAndWhatIsRead) {
    struct Case {
        const char* what;
        std::string text; // LF becomes CR LF unless raw
        bool raw;
        bool loads;
        bool hasDialog;
        int controls;
    } cases[] = {
        {"magic in lower case", "tavora dialog 1.0.0.0\n\n" + DIALOG_BLOCK, false, false, false, 0},
        {"bare LF", HEAD + DIALOG_BLOCK, true, false, false, 0},
        {"blank after the magic", "TAVORA DIALOG 1.0.0.0 \n\n" + DIALOG_BLOCK, false, false, false,
         0},
        {"empty file", "", false, false, false, 0},
        {"magic with a zero byte and more",
         std::string("TAVORA DIALOG 1.0.0.0\0x\n\n", 25) + DIALOG_BLOCK, false, false, false, 0},
        {"magic alone", "TAVORA DIALOG 1.0.0.0\n", false, true, false, 0},
        {"magic and the discarded line", HEAD, false, true, false, 0},
        {"dialog only", HEAD + DIALOG_BLOCK, false, true, true, 0},
        {"unknown section", HEAD + DIALOG_BLOCK + "[KNOB]\nID=1\n\n", false, false, false, 0},
        {"no opening bracket", HEAD + "DIALOG]\nID=0\n\n", false, false, false, 0},
        {"any two characters round the name", HEAD + "xDIALOGx\n\n<button>\n\n", false, true, true,
         1},
        {"section name in lower case", HEAD + DIALOG_BLOCK + "[edit]\n\n", false, true, true, 1},
        {"line without =", HEAD + "[DIALOG]\nID=0\nNAME\n\n", false, false, false, 0},
        {"blank line inside a block", HEAD + "[DIALOG]\nID=0\n \n\n", false, false, false, 0},
        {"two empty lines between blocks", HEAD + DIALOG_BLOCK + "\n[EDIT]\n\n", false, false,
         false, 0},
        {"last block without its empty line", HEAD + DIALOG_BLOCK + "[EDIT]\nID=4", false, true,
         true, 1},
        {"first block of another type is the dialog", HEAD + "[BUTTON]\n\n[BUTTON]\n\n", false,
         true, true, 1},
        {"a later DIALOG block is a control", HEAD + DIALOG_BLOCK + DIALOG_BLOCK, false, true, true,
         1},
        {"every type", HEAD + DIALOG_BLOCK + "[TREE]\n\n[EXTERN]\n\n[WINDOW]\n\n", false, true,
         true, 3},
    };
    for (const Case& c : cases) {
        SDialogDefinition definition;
        bool loaded = LoadText(definition, c.raw ? c.text : Crlf(c.text));
        EXPECT_EQ(loaded, c.loads) << c.what;
        EXPECT_EQ(definition.IsLoaded(), c.loads) << c.what;
        EXPECT_EQ(definition.HasDialog(), c.hasDialog) << c.what;
        EXPECT_EQ(definition.GetControlCount(), c.controls) << c.what;
    }
    SDialogDefinition definition;
    EXPECT_FALSE(definition.Load(nullptr));
    SString error;
    SFileMem wrong = Memory("TAVORA MENU 1.0.0.0\r\n");
    EXPECT_FALSE(definition.Load(&wrong, &error));
    EXPECT_NE(error.Find("first line"), -1);
}

TEST(DialogDefinitionLoad, FixedKeysAndTheirOddities) {
    SDialogDefinition definition;
    ASSERT_TRUE(LoadText(definition, Crlf(HEAD + "[BUTTON]\n"
                                                 "ID=7\n"
                                                 "CAPTION=a=b=c\n"
                                                 "FONT=Sans, 9, 3\n"
                                                 "POSITION=1 2 3 4\n"
                                                 "STYLE=WS_VISIBLE BS_FLAT\n"
                                                 "EXSTYLE=WS_VISIBLE\n"
                                                 "BACKCOLOR=#004080\n"
                                                 "TEXTCOLOR=#00408\n"
                                                 "TRANSPARENT=5\n"
                                                 "ISLOCKED=x\n"
                                                 "=dropped\n"
                                                 "id=kept\n"
                                                 "MEDIA_ALIGN=_LEFT\n\n"
                                                 "[EDIT]\n"
                                                 "ID=70000\n"
                                                 "FONT=Sans, 9\n"
                                                 "POSITION=1 2 3\n"
                                                 "STYLE=\n"
                                                 "EXSTYLE=WS_EX_CLIENTEDGE\n"
                                                 "STYLE=WS_VISIBLE ES_CENTER\n"
                                                 "STYLE=\n"
                                                 "FONT=\"A, B\",  12,  1\n"
                                                 "POSITION=-5 x 70000 -1\n\n"
                                                 "[LABEL]\n"
                                                 "STYLE=\n\n")));
    const Record& dialog = definition.GetDialog();
    EXPECT_EQ(dialog.type, CTRL_DIALOG);
    EXPECT_TRUE(dialog.isDialog);
    EXPECT_EQ(dialog.id, 7);
    EXPECT_EQ(std::string(dialog.caption.c_str()), "a=b=c"); // only the first "=" splits
    EXPECT_EQ(std::string(dialog.fontFace.c_str()), "Sans");
    EXPECT_EQ(dialog.fontSize, 9);
    EXPECT_EQ(dialog.fontFlags, FONT_BOLD | FONT_ITALIC);
    EXPECT_EQ(dialog.x, 1);
    EXPECT_EQ(dialog.height, 4);
    EXPECT_EQ(dialog.style, 0x10008000u);   // read as a button, the section's type
    EXPECT_EQ(dialog.exStyle, 0x10000000u); // a plain word in EXSTYLE still counts
    EXPECT_EQ(dialog.backColor, 0x00804000u);
    EXPECT_EQ(dialog.textColor, 0u); // six characters: black, not "not set"
    EXPECT_TRUE(dialog.transparent);
    EXPECT_FALSE(dialog.locked);
    EXPECT_EQ(std::string(dialog.properties.c_str()), "id=kept\r\nMEDIA_ALIGN=_LEFT\r\n");

    const Record* edit = definition.GetControl(0);
    ASSERT_NE(edit, nullptr);
    EXPECT_FALSE(edit->isDialog);
    EXPECT_EQ(edit->id, static_cast<int16_t>(70000));           // 16 bits kept
    EXPECT_EQ(std::string(edit->fontFace.c_str()), "\"A, B\""); // quoted comma does not cut
    EXPECT_EQ(edit->fontSize, 12);
    EXPECT_EQ(edit->fontFlags, 1u);
    EXPECT_EQ(edit->x, -5);
    EXPECT_EQ(edit->y, 0);
    EXPECT_EQ(edit->width, static_cast<int16_t>(70000));
    EXPECT_EQ(edit->height, -1);
    EXPECT_EQ(edit->style, 0x10000001u); // an empty STYLE= leaves the last value
    EXPECT_EQ(edit->exStyle, 0x200u);
    EXPECT_EQ(edit->backColor, COLOR_NOT_SET);

    const Record* label = definition.GetControl(1);
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->style, 0u); // empty STYLE= keeps the fresh 0: not visible
    EXPECT_EQ(label->x, 10);
    EXPECT_EQ(label->width, 150);
    EXPECT_EQ(label->id, 0); // absent: 0, kept since no other control has it
}

TEST(DialogDefinitionLoad, TakenNamesAndIdsAreGenerated) {
    SDialogDefinition definition;
    ASSERT_TRUE(LoadText(definition, Crlf(HEAD + DIALOG_BLOCK +
                                          "[BUTTON]\nID=3\nNAME=OK\n\n"
                                          "[BUTTON]\nID=3\nNAME=OK\n\n"
                                          "[EDIT]\nID=1\nNAME=BUTTON1\n\n"
                                          "[button]\nID=2\nNAME=BUTTON1\n\n")));
    ASSERT_EQ(definition.GetControlCount(), 4);
    struct Expected {
        int id;
        const char* name;
    } expected[] = {{3, "OK"}, {1, "BUTTON1"}, {2, "EDIT1"}, {4, "BUTTON2"}};
    // The second OK takes the smallest free ID, 1, and BUTTON1; the edit's
    // ID 1 and name are then taken, so it gets 2 and a name of its own
    // type; the last takes ID 4 and the next free button name.
    for (int i = 0; i < 4; ++i) {
        const Record* record = definition.GetControl(i);
        EXPECT_EQ(record->id, expected[i].id) << i;
        EXPECT_EQ(std::string(record->name.c_str()), expected[i].name) << i;
    }
}

TEST(DialogDefinitionSave, ExactTextOfABlock) {
    SDialogDefinition definition;
    Record dialog;
    dialog.name = "FOLDER";
    dialog.caption = "Properties";
    dialog.x = 0;
    dialog.y = 0;
    dialog.width = 355;
    dialog.height = 90;
    dialog.style = 0x10CC0000; // visible, caption, system menu, size box
    dialog.exStyle = 0x8;
    dialog.backColor = 0xFE00000F;
    definition.SetDialog(dialog);
    Record edit;
    edit.type = CTRL_EDIT;
    edit.id = 5;
    edit.name = "EDIT1";
    edit.fontFace = "Sans";
    edit.fontSize = 10;
    edit.fontFlags = FONT_BOLD;
    edit.style = 0x10800001; // ES_CENTER
    edit.exStyle = 0x200;
    edit.textColor = 0x00804000;
    edit.locked = true;
    ASSERT_TRUE(edit.SetProperty("TABENABLED", "1"));
    ASSERT_TRUE(edit.SetPropertyColor("EDIT_BACK", 0xFF000000));
    ASSERT_NE(definition.AddControl(edit, true, true), nullptr);
    std::string expected = Crlf("TAVORA DIALOG 1.0.0.0\n"
                                "\n"
                                "[DIALOG]\n"
                                "ID=0\n"
                                "NAME=FOLDER\n"
                                "CAPTION=Properties\n"
                                "FONT=, 0, 0\n"
                                "POSITION=0 0 355 90\n"
                                "STYLE=WS_VISIBLE WS_BORDER WS_CAPTION WS_SYSMENU WS_SIZEBOX \n"
                                "EXSTYLE=WS_EX_TOPMOST \n"
                                "BACKCOLOR=#FE00000F\n"
                                "TEXTCOLOR=#FF000000\n"
                                "TRANSPARENT=0\n"
                                "ISLOCKED=0\n"
                                "\n"
                                "[EDIT]\n"
                                "ID=5\n"
                                "NAME=EDIT1\n"
                                "CAPTION=\n"
                                "FONT=Sans, 10, 1\n"
                                "POSITION=10 10 150 150\n"
                                "STYLE=WS_VISIBLE WS_BORDER ES_LEFT ES_CENTER \n"
                                "EXSTYLE=WS_EX_CLIENTEDGE \n"
                                "BACKCOLOR=#FF000000\n"
                                "TEXTCOLOR=#004080\n"
                                "TRANSPARENT=0\n"
                                "ISLOCKED=1\n"
                                "TABENABLED=1\n"
                                "EDIT_BACK=-16777216\n"
                                "\n");
    std::string written = Saved(definition);
    EXPECT_EQ(written, expected);
    SDialogDefinition read;
    ASSERT_TRUE(LoadText(read, written));
    EXPECT_EQ(read.GetControl(0)->style, 0x10800001u); // ES_LEFT ES_CENTER reads back as 1
    EXPECT_EQ(Saved(read), written);

    // An empty definition writes the head alone and reads back empty.
    SDialogDefinition empty;
    EXPECT_EQ(Saved(empty), "TAVORA DIALOG 1.0.0.0\r\n\r\n");
    EXPECT_FALSE(empty.Save(nullptr));
    Record outside;
    outside.type = 40;
    EXPECT_EQ(SDialogDefinition::WriteBlock(nullptr, edit), 0);
    SFileMem sink;
    EXPECT_EQ(SDialogDefinition::WriteBlock(&sink, outside), 0);
    EXPECT_EQ(definition.AddControl(outside, true, true), nullptr);
}

TEST(DialogDefinitionSave, LostBitsAreLostOnceOnly) {
    // Bits without a word, extended words in STYLE and plain words in
    // EXSTYLE do not survive the first write; the second write is the same.
    SDialogDefinition definition;
    ASSERT_TRUE(LoadText(definition, Crlf(HEAD + DIALOG_BLOCK +
                                          "[LABEL]\nSTYLE=WS_VISIBLE WS_EX_CLIENTEDGE\n"
                                          "EXSTYLE=WS_VISIBLE WS_EX_STATICEDGE\n\n")));
    EXPECT_EQ(definition.GetControl(0)->style, 0x10000200u);
    EXPECT_EQ(definition.GetControl(0)->exStyle, 0x10020000u);
    std::string first = Saved(definition);
    SDialogDefinition read;
    ASSERT_TRUE(LoadText(read, first));
    EXPECT_EQ(read.GetControl(0)->style, 0x10000000u);
    EXPECT_EQ(read.GetControl(0)->exStyle, 0x20000u);
    EXPECT_EQ(Saved(read), first);
}

// Every key each type's property rows hold in the file (the fixed keys
// FONT, BACKCOLOR, TEXTCOLOR and TRANSPARENT have lines of their own).
struct TypeKeys {
    const char* section;
    const char* keys;
};
const TypeKeys TYPE_KEYS[] = {
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
const char* const GENERAL_KEYS = "HALIGN VALIGN TOOLTIP TABENABLED TABGROUP TABINDEX";

std::vector<std::string> Words(const char* text) {
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
std::string ValueFor(const std::string& key, int n) {
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

TEST(DialogDefinitionRoundTrip, EveryTypeAndEveryPropertyKey) {
    ASSERT_EQ(sizeof(TYPE_KEYS) / sizeof(TYPE_KEYS[0]), static_cast<size_t>(CTRL_TYPE_COUNT));
    SDialogDefinition definition;
    int n = 0;
    for (const TypeKeys& entry : TYPE_KEYS) {
        int type = FindControlType(entry.section);
        ASSERT_GE(type, 0) << entry.section;
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
            ASSERT_TRUE(record.SetProperty(key.c_str(), ValueFor(key, n++).c_str()));
        }
        if (type == CTRL_DIALOG) {
            definition.SetDialog(record);
        } else {
            ASSERT_NE(definition.AddControl(record, true, true), nullptr) << entry.section;
        }
    }
    std::string written = Saved(definition);
    SDialogDefinition read;
    ASSERT_TRUE(LoadText(read, written));
    EXPECT_TRUE(read.GetDialog() == definition.GetDialog());
    ASSERT_EQ(read.GetControlCount(), CTRL_TYPE_COUNT - 1);
    for (int i = 0; i < read.GetControlCount(); ++i) {
        EXPECT_TRUE(*read.GetControl(i) == *definition.GetControl(i)) << i;
    }
    EXPECT_EQ(Saved(read), written);
    // The property text keeps the order it was given in.
    const Record* media = read.FindControl("MEDIA_X");
    ASSERT_NE(media, nullptr);
    EXPECT_EQ(media->properties.Find("HALIGN="), 0);
    EXPECT_LT(media->properties.Find("MEDIA_WRAPPING="),
              media->properties.Find("MEDIA_LINKCOLOR="));
    EXPECT_EQ(media->GetPropertyColorRaw("MEDIA_LINKCOLOR") & 0xFF000000u, 0xFF000000u);
}

TEST(DialogDefinitionProperties, GetAndSet) {
    Record record;
    record.properties = "A=1\r\nAB=x=y\nB=-16777216\rEMPTY=\r\nMODE=_DRAWFIT\r\n";
    struct Case {
        const char* key;
        const char* value;
        int number;
    } cases[] = {
        {"A", "1", 1}, {"AB", "x=y", 0}, {"B", "-16777216", -16777216},
        {"a", "", 0},  {"EMPTY", "", 0}, {"C", "", 0},
        {"", "", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(std::string(record.GetProperty(c.key).c_str()), c.value) << c.key;
        EXPECT_EQ(record.GetPropertyInt(c.key), c.number) << c.key;
    }
    EXPECT_TRUE(record.GetPropertyBool("A"));
    EXPECT_FALSE(record.GetPropertyBool("C"));
    EXPECT_EQ(record.GetPropertyColorRaw("B"), 0xFF000000u);
    EXPECT_EQ(record.GetPropertyColorRaw("C"), COLOR_NOT_SET); // absent: not set
    EXPECT_EQ(record.GetPropertyColorRaw("A"), 1u);
    EXPECT_EQ(record.GetPropertyDrawMode("MODE"), DRAW_FIT);
    EXPECT_EQ(record.GetPropertyDrawMode("A"), DRAW_TOPLEFT);

    Record set;
    set.properties = "A=1\r\nB=2\r\n";
    EXPECT_TRUE(set.SetProperty("B", "long value"));
    EXPECT_TRUE(set.SetProperty("A", ""));
    EXPECT_TRUE(set.SetPropertyInt("C", -3));
    EXPECT_EQ(std::string(set.properties.c_str()), "A=\r\nB=long value\r\nC=-3\r\n");
    // A line without "=" stops the walk: nothing changes, nothing is added.
    Record broken;
    broken.properties = "A=1\r\nBROKEN\r\nB=2\r\n";
    EXPECT_FALSE(broken.SetProperty("B", "3"));
    EXPECT_FALSE(broken.SetProperty("Z", "3"));
    EXPECT_TRUE(broken.SetProperty("A", "0"));
    EXPECT_EQ(std::string(broken.properties.c_str()), "A=0\r\nBROKEN\r\nB=2\r\n");
    EXPECT_FALSE(broken.SetProperty("", "x"));
}

TEST(DialogDefinitionBinary, RoundTripAndDamage) {
    Record record;
    record.id = -2;
    record.type = CTRL_MEDIA;
    record.name = "MEDIA1";
    record.caption = "a";
    record.fontFace = "Sans";
    record.fontSize = 65535;
    record.fontFlags = 0xFFFFFFFF;
    record.x = -32768;
    record.height = 32767;
    record.locked = true;
    record.isDialog = true;
    record.style = 0x10000000;
    record.exStyle = 0x200;
    record.backColor = 0xFE000005;
    record.transparent = true;
    record.properties = "MEDIA_TEXT=x\r\n";
    SFileMem file;
    file.Reset(0);
    int written = SDialogDefinition::WriteBinary(&file, record);
    // 2+2 + (4+6) + (4+1) + (4+4) + 2+4 + 8 + 1+1 + 16 + 1 + (4+14)
    EXPECT_EQ(written, 78);
    file.Rewind();
    Record read;
    EXPECT_EQ(SDialogDefinition::ReadBinary(&file, read), written);
    EXPECT_TRUE(read == record);
    // Cut short anywhere: 0, and the target untouched.
    std::string bytes(file.GetData(), file.GetSize());
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        SFileMem shorter = Memory(bytes.substr(0, cut));
        Record untouched;
        EXPECT_EQ(SDialogDefinition::ReadBinary(&shorter, untouched), 0) << cut;
        EXPECT_TRUE(untouched == Record()) << cut;
    }
    // A string length far beyond the data allocates nothing and fails.
    SFileMem huge = Memory(std::string("\x01\x00\x02\x00\xFF\xFF\xFF\x7F", 8) + "abc");
    EXPECT_EQ(SDialogDefinition::ReadBinary(&huge, read), 0);
    EXPECT_EQ(SDialogDefinition::ReadBinary(nullptr, read), 0);
    EXPECT_EQ(SDialogDefinition::WriteBinary(nullptr, read), 0);
}

TEST(DialogDefinitionControls, GeneratedNamesAndIdsRunOut) {
    SDialogDefinition definition;
    EXPECT_EQ(std::string(definition.GenerateName(CTRL_BUTTON).c_str()), "BUTTON1");
    EXPECT_EQ(definition.GenerateId(), 1);
    EXPECT_EQ(std::string(definition.GenerateName(99).c_str()), "");
    Record record;
    record.type = CTRL_WINDOW;
    for (int i = 1; i <= 9999; ++i) {
        record.id = static_cast<int16_t>(i);
        record.name = "WINDOW" + SString::FromInt(i);
        ASSERT_NE(definition.AddControl(record, true, true), nullptr);
    }
    EXPECT_EQ(definition.GenerateId(), -1);
    EXPECT_EQ(std::string(definition.GenerateName(CTRL_WINDOW).c_str()), "");
    EXPECT_EQ(std::string(definition.GenerateName(CTRL_LABEL).c_str()), "LABEL1");
    record.name = "FREE";
    EXPECT_EQ(definition.AddControl(record, true, true), nullptr); // the ID is taken, none is free
    EXPECT_TRUE(definition.RemoveControl(0));
    EXPECT_FALSE(definition.RemoveControl(9999));
    Record* added = definition.AddControl(record, true, true);
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(added->id, 1);
    EXPECT_EQ(definition.AddControl(*added, true, true), nullptr); // already in the array
    // A name changed through the pointer is seen after Reindex.
    EXPECT_EQ(std::string(definition.GenerateName(CTRL_WINDOW).c_str()), "WINDOW1");
    added->name = "WINDOW1";
    definition.Reindex();
    EXPECT_EQ(std::string(definition.GenerateName(CTRL_WINDOW).c_str()), "");
}

} // namespace

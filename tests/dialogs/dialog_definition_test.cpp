// Dialog definitions: the reader's edge cases, the writer's exact text, the
// property text, the binary record, and round trips of a definition with
// every control type and every property key.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/dialog_definition.h"
#include "every_key_definition.h"
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

TEST(DialogDefinitionRoundTrip, EveryTypeAndEveryPropertyKey) {
    SDialogDefinition definition;
    every_key::Fill(definition);
    ASSERT_FALSE(::testing::Test::HasFailure());
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

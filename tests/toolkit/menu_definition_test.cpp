// Menu and toolbar definitions read and written without a window, and the
// section-at-a-time SIni reading beneath them.
#include <gtest/gtest.h>

#include <string>

#include "foundation/file.h"
#include "foundation/ini.h"
#include "toolkit/ini_sections.h"
#include "toolkit/menu_definition.h"
#include "toolkit/toolbar_definition.h"

namespace {

std::string Crlf(const std::string& text) {
    std::string out;
    for (char c : text) {
        out += c == '\n' ? std::string("\r\n") : std::string(1, c);
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

const std::string MENU_HEAD = "TAVORA MENU 1.0.0.0\n";
const std::string TOOLBAR_HEAD = "TAVORA TOOLBAR 1.0.0.0\n";

TEST(IniSections, AnswersAsSIniOverTheWholeText) {
    const std::string body = Crlf("[]\ncount=1\n"
                                  "[A]\nk=first\nK=second\n"
                                  "  [b]  \nk=b\n" // opens b once trimmed, but A's keys go on
                                  "kk=in A and b\n"
                                  "[a]\nk=never seen\n" // a later section of the same name
                                  "[c]\nk\nx=\n=y\nk=c\n"
                                  "[d]=]\nk=d\n"); // "[d]=]" opens a section named "d]="
    const char* lookups[][2] = {{"", "count"},   {"a", "k"},   {"A", "K"}, {"a", "kk"},
                                {"B", "k"},      {"b", "kk"},  {"c", "k"}, {"c", "x"},
                                {"c", ""},       {"d]=", "k"}, {"d", "k"}, {"z", "k"},
                                {"a", "missing"}};
    SFileMem whole = Memory(body);
    SIni ini;
    ASSERT_TRUE(ini.SetSource(&whole));
    SFileMem again = Memory(body);
    SIniSections sections;
    ASSERT_TRUE(sections.SetSource(&again));
    EXPECT_EQ(sections.GetSectionCount(), 6);
    for (auto& lookup : lookups) {
        EXPECT_EQ(std::string(sections.ReadString(lookup[0], lookup[1]).c_str()),
                  std::string(ini.ReadString(lookup[0], lookup[1]).c_str()))
            << lookup[0] << " " << lookup[1];
    }
    EXPECT_EQ(std::string(sections.ReadString("a", "kk").c_str()), "in A and b");
    EXPECT_FALSE(sections.SetSource(nullptr));
}

TEST(MenuDefinitionLoad, WhatIsRefused) {
    struct Case {
        const char* what;
        std::string text;
        bool raw;
        bool loads;
        int menus;
    } cases[] = {
        {"a good one", MENU_HEAD + "[]\ncount=1\n[0]\nname=M\ncount=0\n", false, true, 1},
        {"bare LF", MENU_HEAD + "[]\ncount=1\n[0]\n", true, false, 0},
        {"magic in lower case", "tavora menu 1.0.0.0\n[]\ncount=1\n[0]\n", false, false, 0},
        {"toolbar magic", TOOLBAR_HEAD + "[]\ncount=1\n[0]\n", false, false, 0},
        {"count missing", MENU_HEAD + "[0]\nname=M\n", false, false, 0},
        {"count 0", MENU_HEAD + "[]\ncount=0\n[0]\n", false, false, 0},
        {"count negative", MENU_HEAD + "[]\ncount=-1\n[0]\n", false, false, 0},
        {"count without the [] line", MENU_HEAD + "count=1\n[0]\n", false, false, 0},
        {"more menus than sections", MENU_HEAD + "[]\ncount=3\n[0]\n", false, false, 0},
        {"huge menu count", MENU_HEAD + "[]\ncount=2000000000\n[0]\n", false, false, 0},
        {"huge item count", MENU_HEAD + "[]\ncount=1\n[0]\ncount=2147483647\n", false, false, 0},
        {"item counts add up past the file",
         MENU_HEAD + "[]\ncount=2\n[0]\ncount=1\n[1]\ncount=1\n[0:0]\n", false, false, 0},
        {"negative item count is none", MENU_HEAD + "[]\ncount=1\n[0]\ncount=-5\n", false, true, 1},
        {"missing item sections read as defaults",
         MENU_HEAD + "[]\ncount=1\n[0]\ncount=2\n[x]\n[y]\n", false, true, 1},
    };
    for (const Case& c : cases) {
        SFileMem file = Memory(c.raw ? c.text : Crlf(c.text));
        SMenuDefinition menu;
        SString error;
        EXPECT_EQ(menu.Load(&file, nullptr, &error), c.loads) << c.what;
        EXPECT_EQ(static_cast<int>(menu.GetMenus().size()), c.menus) << c.what;
        EXPECT_EQ(error.IsEmpty(), c.loads) << c.what;
    }
    SMenuDefinition menu;
    EXPECT_FALSE(menu.Load(nullptr));
}

TEST(MenuDefinitionLoad, ItemRecords) {
    SFileMem file = Memory(Crlf(MENU_HEAD + "[]\ncount=3\n"
                                            "[0]\nname=Main\ncount=6\n"
                                            "[0:0]\nid=100\nname=OPEN\ntext=&Open\ntip=Ctrl+O\n"
                                            "image=open.png\ndata=-7\nchecked=1\ndisabled=1\n"
                                            "[0:1]\nseparator=1\nmenu=1\n"
                                            "[0:2]\ntext=Sub\nmenu=1\n"
                                            "[0:3]\nmenu=0\nimage=save.png\n"
                                            "[0:4]\nmenu=3\nimage=open.png\nchecked=true\n"
                                            "[0:5]\nmenu=-1\ntip=\n"
                                            "[1]\nname=File\ncount=1\n"
                                            "[1:0]\nmenu=1\ntext=Self\n"
                                            "[2]\nname=Other\n"));
    SMenuDefinition menu;
    ASSERT_TRUE(menu.Load(&file));
    ASSERT_EQ(menu.GetMenus().size(), 3u);
    const auto& items = menu.GetMenus()[0].items;
    ASSERT_EQ(items.size(), 6u);
    EXPECT_EQ(std::string(menu.GetMenus()[0].name.c_str()), "Main");
    EXPECT_EQ(items[0].id, 100);
    EXPECT_EQ(std::string(items[0].name.c_str()), "OPEN");
    EXPECT_EQ(std::string(items[0].GetShownText().c_str()), "&Open\tCtrl+O");
    EXPECT_EQ(items[0].data, -7);
    EXPECT_TRUE(items[0].checked);
    EXPECT_TRUE(items[0].disabled);
    EXPECT_EQ(items[0].imageIndex, 0);
    EXPECT_TRUE(items[1].separator);
    EXPECT_FALSE(items[1].IsSubmenu());
    EXPECT_TRUE(items[2].IsSubmenu());
    EXPECT_EQ(items[2].submenu, 1);
    EXPECT_EQ(items[3].submenu, -1); // menu 0 is never a submenu
    EXPECT_EQ(items[3].imageIndex, 1);
    EXPECT_EQ(items[4].submenu, -1);   // out of range
    EXPECT_EQ(items[4].imageIndex, 0); // a name used again keeps its first place
    EXPECT_FALSE(items[4].checked);    // only "1" is true
    EXPECT_EQ(items[5].submenu, -1);
    EXPECT_EQ(std::string(items[5].GetShownText().c_str()), ""); // no tab without a tip
    EXPECT_EQ(menu.GetMenus()[1].items[0].submenu, 1);           // a menu may name itself
    EXPECT_TRUE(menu.GetMenus()[2].items.empty());
    ASSERT_EQ(menu.GetImages().size(), 2u);
    EXPECT_EQ(std::string(menu.GetImages()[1].c_str()), "save.png");

    // The callback replaces every ID by what it gives for the name.
    file.Rewind();
    SMenuDefinition named;
    ASSERT_TRUE(named.Load(&file, [](const SString& name) { return name == "OPEN" ? 7 : -1; }));
    EXPECT_EQ(named.GetMenus()[0].items[0].id, 7);
    EXPECT_EQ(named.GetMenus()[0].items[1].id, -1);
}

TEST(MenuDefinitionSave, WrittenTextReadsBackToTheSameRecords) {
    SMenuDefinition menu;
    menu.GetMenus().resize(2);
    menu.GetMenus()[0].name = "Main";
    SMenuItemRecord item;
    item.id = 5;
    item.name = "X";
    item.text = " blanks kept = and equals ";
    item.tip = "F1";
    item.image = "a.png";
    item.data = -3;
    item.checked = true;
    item.submenu = 1;
    menu.GetMenus()[0].items.push_back(item);
    item.separator = true;
    item.submenu = -1;
    item.text = "lone\rCR and\nLF";
    menu.GetMenus()[1].items.push_back(item);
    menu.UpdateImages();
    SFileMem file;
    file.Reset(0);
    ASSERT_TRUE(menu.Save(&file));
    std::string written(file.GetData(), file.GetSize());
    EXPECT_EQ(written.rfind(
                  Crlf(MENU_HEAD + "[]\ncount=2\n\n[0]\nname=Main\ncount=1\n\n[0:0]\nid=5\n"), 0),
              0u);
    file.Rewind();
    SMenuDefinition read;
    ASSERT_TRUE(read.Load(&file));
    EXPECT_EQ(read.GetMenus(), menu.GetMenus());
    EXPECT_EQ(std::string(read.Format().c_str()), written);

    // What the ini text cannot carry is refused, not written wrong.
    menu.GetMenus()[0].items[0].text = "two\r\nlines";
    SFileMem refused;
    EXPECT_FALSE(menu.Save(&refused));
    EXPECT_FALSE(SMenuDefinition().Save(&refused));
    EXPECT_FALSE(read.Save(nullptr));
}

TEST(ToolbarDefinitionLoad, CountsIdsAndRefusals) {
    struct Case {
        const char* what;
        std::string text;
        bool raw;
        bool loads;
        int buttons;
    } cases[] = {
        {"count 0 is an empty bar", TOOLBAR_HEAD + "[]\nwidth=16\nheight=15\ncount=0\n", false,
         true, 0},
        {"count missing is an empty bar", TOOLBAR_HEAD + "[]\nwidth=16\n", false, true, 0},
        {"negative count is an empty bar", TOOLBAR_HEAD + "[]\ncount=-3\n", false, true, 0},
        {"bare LF", TOOLBAR_HEAD + "[]\ncount=0\n", true, false, 0},
        {"menu magic", MENU_HEAD + "[]\ncount=0\n", false, false, 0},
        {"huge count", TOOLBAR_HEAD + "[]\ncount=1000000000\n[0]\n", false, false, 0},
        {"more buttons than sections", TOOLBAR_HEAD + "[]\ncount=3\n[0]\n[1]\n", false, false, 0},
        {"as many as sections", TOOLBAR_HEAD + "[]\ncount=3\n[0]\n[1]\n[2]\n", false, true, 3},
    };
    for (const Case& c : cases) {
        SFileMem file = Memory(c.raw ? c.text : Crlf(c.text));
        SToolbarDefinition toolbar;
        EXPECT_EQ(toolbar.Load(&file), c.loads) << c.what;
        EXPECT_EQ(static_cast<int>(toolbar.buttons.size()), c.buttons) << c.what;
    }

    SFileMem file = Memory(Crlf(TOOLBAR_HEAD + "[]\nwidth=24\nheight=20\ncount=4\n"
                                               "[0]\nname=PLAY\nimage=play.png\ntext=Play\ndata=9\n"
                                               "[1]\nseparator=1\n"
                                               "[2]\nname=STOP\ndisabled=1\n"
                                               "[3]\nname=NONE\n"));
    SToolbarDefinition toolbar;
    ASSERT_TRUE(toolbar.Load(&file));
    EXPECT_EQ(toolbar.width, 24);
    EXPECT_EQ(toolbar.height, 20);
    ASSERT_EQ(toolbar.buttons.size(), 4u);
    // Without a callback every button gets -2 less its index; a separator
    // keeps 0.
    EXPECT_EQ(toolbar.buttons[0].id, -2);
    EXPECT_EQ(toolbar.buttons[1].id, 0);
    EXPECT_EQ(toolbar.buttons[2].id, -4);
    EXPECT_EQ(toolbar.buttons[0].GetState(), TOOLBAR_STATE_ENABLED);
    EXPECT_EQ(toolbar.buttons[2].GetState(), TOOLBAR_STATE_DISABLED);
    EXPECT_EQ(toolbar.buttons[0].data, 9);
    EXPECT_EQ(std::string(toolbar.buttons[0].image.c_str()), "play.png");

    file.Rewind();
    SToolbarDefinition named;
    ASSERT_TRUE(named.Load(&file, [](const SString& name) { return name == "PLAY" ? 300 : 0; }));
    EXPECT_EQ(named.buttons[0].id, 300);
    EXPECT_EQ(named.buttons[3].id, -5); // the callback's 0 still becomes its own ID

    SFileMem out;
    out.Reset(0);
    ASSERT_TRUE(toolbar.Save(&out));
    std::string written(out.GetData(), out.GetSize());
    out.Rewind();
    SToolbarDefinition read;
    ASSERT_TRUE(read.Load(&out));
    EXPECT_EQ(read.buttons, toolbar.buttons);
    EXPECT_EQ(std::string(read.Format().c_str()), written);
    read.buttons[0].text = "a\r\nb";
    EXPECT_FALSE(read.Save(&out));
}

} // namespace

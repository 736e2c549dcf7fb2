// The choosers with scripted answers of the headless platform.
#include "toolkit/selector.h"

#include "tests/toolkit/toolkit_fixture.h"
#include "toolkit/draw.h"

namespace {

class SelectorTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(owner, "owner", Rect(0, 0, 200, 100)));
    }
    void Answer(std::vector<SString> paths, bool accepted = true) {
        SChooserAnswer answer;
        answer.accepted = accepted;
        answer.paths = std::move(paths);
        platform->QueueChooserAnswer(answer);
    }
    RecordingWnd owner;
};

TEST_F(SelectorTest, FilesAndFoldersTakeTheAnswersInOrder) {
    SSelector selector(&owner);
    Answer({"/music/a.mp3", "/music/b.ogg"});
    Answer({"/music/c.mp3", "/music/d.mp3"});
    Answer({"/music/new.m3u"});
    Answer({"/music"});
    Answer({}, false);
    Answer({""});
    SStringArray files;
    ASSERT_TRUE(selector.OpenFile("Add", {"Music|*.mp3;*.ogg"}, "/music", &files, true));
    EXPECT_EQ(files.GetCount(), 2);
    ASSERT_TRUE(selector.OpenFile("Open", {}, nullptr, &files));
    ASSERT_EQ(files.GetCount(), 1) << "one file unless several were asked for";
    EXPECT_EQ(files.GetText(0), SString("/music/c.mp3"));
    SString path;
    ASSERT_TRUE(selector.SaveFile("Save", {"Playlist|*.m3u"}, "/music", "list.m3u", &path));
    EXPECT_EQ(path, SString("/music/new.m3u"));
    ASSERT_TRUE(selector.Folder("Root", "/", &path));
    EXPECT_EQ(path, SString("/music"));
    EXPECT_FALSE(selector.Folder("Root", "/", &path)) << "cancelled";
    EXPECT_FALSE(selector.SaveFile("Save", {}, nullptr, "x", &path)) << "an empty answer";
    EXPECT_EQ(path, SString("/music")) << "a cancel leaves the result alone";
    EXPECT_FALSE(selector.OpenFile("Open", {}, nullptr, &files)) << "no answer left: a cancel";

    std::vector<SChooserRequest> requests = platform->GetChooserRequests();
    ASSERT_EQ(requests.size(), 7u);
    EXPECT_EQ(requests[0].kind, SChooserRequest::OPEN_FILE);
    EXPECT_TRUE(requests[0].multiple);
    EXPECT_EQ(requests[0].filters.at(0), SString("Music|*.mp3;*.ogg"));
    EXPECT_EQ(requests[2].kind, SChooserRequest::SAVE_FILE);
    EXPECT_EQ(requests[2].name, SString("list.m3u"));
    EXPECT_EQ(requests[3].kind, SChooserRequest::FOLDER);
}

TEST_F(SelectorTest, ColourAndFont) {
    SSelector selector(&owner);
    SChooserAnswer colour;
    colour.accepted = true;
    colour.color = 0xFF336699;
    platform->QueueChooserAnswer(colour);
    SChooserAnswer font;
    font.accepted = true;
    font.fontFace = "Serif";
    font.fontPoints = 12.5;
    font.fontFlags = FONT_BOLD;
    platform->QueueChooserAnswer(font);
    platform->QueueChooserAnswer(SChooserAnswer());

    uint32_t color = 0x0000FF;
    ASSERT_TRUE(selector.Color("Colour", &color));
    EXPECT_EQ(color, 0x336699u) << "a colour is 24 bits";
    SString face = "Sans";
    double points = 9;
    unsigned flags = 0;
    ASSERT_TRUE(selector.Font("Font", &face, &points, &flags));
    EXPECT_EQ(face, SString("Serif"));
    EXPECT_DOUBLE_EQ(points, 12.5);
    EXPECT_EQ(flags, FONT_BOLD);
    EXPECT_FALSE(selector.Font("Font", &face, &points, &flags));
    EXPECT_EQ(face, SString("Serif"));
    std::vector<SChooserRequest> requests = platform->GetChooserRequests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].color, 0x0000FFu) << "the chooser starts at the colour given";
    EXPECT_EQ(requests[2].fontFace, SString("Serif"));
}

} // namespace

#include "library/media.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/array.h"
#include "support/temp_dir.h"

namespace {

std::vector<std::string> Relative(const SStringArray& array, const std::string& prefix) {
    std::vector<std::string> items;
    for (const SString* item : array) {
        std::string text = item->c_str();
        items.push_back(text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text);
    }
    return items;
}

using Names = std::vector<std::string>;

TEST(MediaClass, ByExtensionWithoutRegardToCase) {
    struct Case {
        const char* path;
        int mediaClass;
    } cases[] = {
        {"/m/a.mp3", MEDIA_SONG},     {"/m/a.WMA", MEDIA_SONG},      {"/m/a.Flac", MEDIA_SONG},
        {"/m/a.mpg", MEDIA_VIDEO},    {"/m/a.MPEG", MEDIA_VIDEO},    {"/m/a.mkv", MEDIA_VIDEO},
        {"/m/a.wax", MEDIA_RADIO},    {"/m/a.wvx", MEDIA_RADIO},     {"/m/a.asx", MEDIA_RADIO},
        {"/m/a.pls", MEDIA_RADIO},    {"/m/a.jpg", MEDIA_PICTURE},   {"/m/a.JPEG", MEDIA_PICTURE},
        {"/m/a.png", MEDIA_PICTURE},  {"/m/a.txt", MEDIA_OTHER},     {"/m/mp3", MEDIA_OTHER},
        {"/m.mp3/a", MEDIA_OTHER},    {"/m/a.mp3x", MEDIA_OTHER},    {"/m/a.", MEDIA_OTHER},
        {"/m/a.b.ogg", MEDIA_SONG},   {"", MEDIA_OTHER},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(GetMediaClass(c.path), c.mediaClass) << c.path;
    }
    EXPECT_EQ(GetMediaClass(nullptr), MEDIA_OTHER);
}

class CollectMediaTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name :
             {"A/b.mp3", "A/a.MP3", "A/c.wma", "A/v.avi", "A/r.wax", "A/p.jpg", "A/q.JPEG",
              "A/notes.txt", "A/.secret.mp3", "A/Sub/s.mp3", "A/Sub/t.wvx", "A/Sub/u.mpg",
              "A/.hid/h.mp3", "A/Listed/l.mp3", "A/Z.ogg"}) {
            dir.Write(name, "x");
        }
        dir.Write("A/.hidden", "Listed\n");
        dir.Write("A.png", "x");
        dir.Write("A.jpg", "x");
        dir.Write("A.txt", "x");
        dir.Write("A.htm", "x");
        dir.Write("A/Sub.JPG", "x");
        dir.Write("A/Sub.MHT", "x");
    }
    TempDir dir;
};

TEST_F(CollectMediaTest, MergesClassesInByteOrderAndSkipsHidden) {
    SStringArray list;
    int added = CollectMedia(list, (dir / "A").c_str(), false, true, true, true, false, false);
    EXPECT_EQ(Relative(list, dir / "A/"),
              (Names{"Sub.JPG", "Z.ogg", "a.MP3", "b.mp3", "c.wma", "p.jpg", "q.JPEG", "r.wax",
                     "v.avi"}));
    EXPECT_EQ(added, 9);
}

TEST_F(CollectMediaTest, NoRadioAndClassesAreLeftOutOnRequest) {
    SStringArray songs;
    CollectMedia(songs, (dir / "A/").c_str(), false, true, false, false, false, true);
    EXPECT_EQ(Relative(songs, dir / "A/"), (Names{"Z.ogg", "a.MP3", "b.mp3", "c.wma"}));
    SStringArray videos;
    CollectMedia(videos, (dir / "A/").c_str(), false, false, true, false, false, false);
    EXPECT_EQ(Relative(videos, dir / "A/"), (Names{"r.wax", "v.avi"}));
}

TEST_F(CollectMediaTest, RecursiveSearchSkipsHiddenFoldersBothWays) {
    SStringArray list;
    CollectMedia(list, (dir / "A").c_str(), true, true, true, false, false, true);
    EXPECT_EQ(Relative(list, dir / "A/"),
              (Names{"Sub/s.mp3", "Sub/u.mpg", "Z.ogg", "a.MP3", "b.mp3", "c.wma", "v.avi"}));
}

TEST_F(CollectMediaTest, CompanionsPreferPngAndMht) {
    SStringArray list;
    CollectMedia(list, (dir / "A").c_str(), true, true, false, false, true, true);
    EXPECT_EQ(Relative(list, dir.Path() + "/"),
              (Names{"A.htm", "A.png", "A.txt", "A/Sub.JPG", "A/Sub.MHT", "A/Sub/s.mp3", "A/Z.ogg",
                     "A/a.MP3", "A/b.mp3", "A/c.wma"}));
}

TEST(Companion, ExactNameFirstThenWithoutCase) {
    TempDir dir;
    dir.MakeFolder("Album");
    dir.Write("ALBUM.PNG", "x");
    EXPECT_EQ(FindCompanion((dir / "Album").c_str(), ".png"), (dir / "ALBUM.PNG").c_str());
    dir.Write("Album.png", "x");
    EXPECT_EQ(FindCompanion((dir / "Album/").c_str(), ".png"), (dir / "Album.png").c_str());
    EXPECT_TRUE(FindCompanion((dir / "Album").c_str(), ".jpg").IsEmpty());
    EXPECT_TRUE(FindFileNoCase(dir.Path().c_str(), "*.png").IsEmpty());
}

TEST(PlayableAddress, RadioFilesGiveTheirStream) {
    TempDir dir;
    std::string asx = dir.Write("r.wax", "<ASX version=\"3.0\">\r\n<Entry><REF HREF = \"http://radio.example/live?a=1&amp;b=2\" />"
                                         "<ref href=\"http://second\"/></Entry></ASX>");
    EXPECT_EQ(GetPlayableAddress(asx.c_str()), "http://radio.example/live?a=1&b=2");
    std::string pls = dir.Write("s.pls", "[playlist]\nNumberOfEntries=1\nFile1=http://stream.example:8000/\n");
    EXPECT_EQ(GetPlayableAddress(pls.c_str()), "http://stream.example:8000/");
    std::string empty = dir.Write("e.asx", "<asx><reference/></asx>");
    EXPECT_TRUE(GetPlayableAddress(empty.c_str()).IsEmpty());
    EXPECT_TRUE(GetPlayableAddress((dir / "missing.wvx").c_str()).IsEmpty());
    EXPECT_EQ(GetPlayableAddress("/music/a.mp3"), "/music/a.mp3");
}

} // namespace

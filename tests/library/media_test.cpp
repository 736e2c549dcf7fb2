#include "library/media.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
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

// Classes merge in byte order; hidden files and folders (by both rules) are
// left out; radio and classes only on request; companions prefer .png and
// .mht.
TEST_F(CollectMediaTest, ClassesMergeInByteOrderAndHiddenEntriesAreLeftOut) {
    struct Case {
        const char* folder;
        bool recursive, songs, videos, pictures, companions, noRadio;
        const char* prefix;
        Names expected;
    } cases[] = {
        {"A", false, true, true, true, false, false, "A/",
         {"Sub.JPG", "Z.ogg", "a.MP3", "b.mp3", "c.wma", "p.jpg", "q.JPEG", "r.wax", "v.avi"}},
        {"A/", false, true, false, false, false, true, "A/", {"Z.ogg", "a.MP3", "b.mp3", "c.wma"}},
        {"A/", false, false, true, false, false, false, "A/", {"r.wax", "v.avi"}},
        {"A", true, true, true, false, false, true, "A/",
         {"Sub/s.mp3", "Sub/u.mpg", "Z.ogg", "a.MP3", "b.mp3", "c.wma", "v.avi"}},
        {"A", true, true, false, false, true, true, "",
         {"A.htm", "A.png", "A.txt", "A/Sub.JPG", "A/Sub.MHT", "A/Sub/s.mp3", "A/Z.ogg", "A/a.MP3",
          "A/b.mp3", "A/c.wma"}},
    };
    for (const Case& c : cases) {
        SStringArray list;
        int added = CollectMedia(list, (dir / c.folder).c_str(), c.recursive, c.songs, c.videos,
                                 c.pictures, c.companions, c.noRadio);
        EXPECT_EQ(Relative(list, dir / c.prefix), c.expected);
        EXPECT_EQ(added, static_cast<int>(c.expected.size()));
    }
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

namespace {

// Sets a folder's modification time well into the past, as for a folder of
// an old collection.
void MakeOld(const std::string& folder) {
    struct timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.c_str(), times, 0), 0);
}

TEST(FileNameCache, FindsWithoutCaseAndSeesChangesToTheFolder) {
    TempDir dir;
    std::string folder = dir.MakeFolder("Album");
    dir.Write("Album/COVER.JPG", "x");
    MakeOld(folder);
    PFileNameCache cache;
    EXPECT_EQ(cache.Find(folder.c_str(), "cover.jpg"), (dir / "Album/COVER.JPG").c_str());
    EXPECT_EQ(cache.Find((folder + "/").c_str(), "COVER.JPG"), (dir / "Album/COVER.JPG").c_str());
    EXPECT_EQ(cache.Find(folder.c_str(), "front.jpg"), "");
    std::filesystem::rename(dir / "Album/COVER.JPG", dir / "Album/Front.Jpg");
    EXPECT_EQ(cache.Find(folder.c_str(), "cover.jpg"), "");
    EXPECT_EQ(cache.Find(folder.c_str(), "front.jpg"), (dir / "Album/Front.Jpg").c_str());
    EXPECT_EQ(cache.Find((dir / "missing").c_str(), "a.jpg"), "");
    EXPECT_EQ(cache.Find(folder.c_str(), "../Album/Front.Jpg"), "");
}

} // namespace

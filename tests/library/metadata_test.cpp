#include "library/metadata.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "foundation/file.h"
#include "foundation/image.h"
#include "support/temp_dir.h"

namespace {

// Writes a picture of one colour (0xAARRGGBB) in the given format.
void WritePicture(const std::string& path, uint32_t argb, int format, int width = 40,
                  int height = 20) {
    SImage image;
    image.Create(width, height, format == IMAGE_PNG ? PIXEL_FORMAT_32ARGB : PIXEL_FORMAT_24RGB);
    image.Fill(argb);
    SFilePath file;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    ASSERT_TRUE(file.Open(path.c_str(), true, true, false, false));
    ASSERT_TRUE(image.Save(&file, format));
}

// The colour in the middle, without alpha, rounded to the nearest of pure
// red, green, blue, white or black (JPEG shifts colours a little).
std::string ColourOf(const SImage& image) {
    uint32_t pixel = image.GetPixel(image.GetWidth() / 2, image.GetHeight() / 2);
    int r = (pixel >> 16) & 255;
    int g = (pixel >> 8) & 255;
    int b = pixel & 255;
    if (r > 128 && g > 128 && b > 128) {
        return "white";
    }
    return r > 128 ? "red" : g > 128 ? "green" : b > 128 ? "blue" : "black";
}

constexpr uint32_t RED = 0xFFFF0000;
constexpr uint32_t GREEN = 0xFF00FF00;
constexpr uint32_t BLUE = 0xFF0000FF;

class CoverTest : public ::testing::Test {
protected:
    void SetUp() override {
        album = dir.MakeFolder("Artist/Album");
        covers.SetRoot(dir.Path().c_str());
    }
    std::string Load(const std::string& folder, bool* own = nullptr) {
        SImage image;
        bool found = covers.LoadCover(&image, folder.c_str());
        if (own != nullptr) {
            *own = found;
        }
        EXPECT_EQ(image.GetWidth(), COVER_SIDE);
        EXPECT_EQ(image.GetHeight(), COVER_SIDE);
        return ColourOf(image);
    }
    TempDir dir;
    std::string album;
    PCovers covers;
};

TEST_F(CoverTest, PngBeforeJpgBesideTheFolderAndADamagedOneFallsThrough) {
    WritePicture(dir / "Artist/Album.jpg", BLUE, IMAGE_JPEG);
    EXPECT_EQ(Load(album), "blue");
    WritePicture(dir / "Artist/Album.png", RED, IMAGE_PNG);
    EXPECT_EQ(Load(album + "/"), "red");
    dir.Write("Artist/Album.png", "not a picture"); // a damaged cover falls through
    EXPECT_EQ(Load(album), "blue");
}

TEST_F(CoverTest, SharedNamesUnderTheRootComeSecond) {
    std::string various = dir.MakeFolder("Rock/Various");
    WritePicture(dir / "Various.jpg", GREEN, IMAGE_JPEG);
    bool own = true;
    EXPECT_EQ(Load(various, &own), "white"); // not a shared name yet
    EXPECT_FALSE(own);
    covers.SetSharedNames("Other;VARIOUS");
    EXPECT_EQ(Load(various, &own), "green");
    EXPECT_TRUE(own);
    WritePicture(dir / "Rock/Various.jpg", RED, IMAGE_JPEG);
    EXPECT_EQ(Load(various), "red");
}

TEST_F(CoverTest, OtherPlayersNamesInsideTheFolderBeforeTheDefault) {
    WritePicture(album + "/Front.PNG", GREEN, IMAGE_PNG);
    EXPECT_EQ(Load(album), "green");
    WritePicture(album + "/folder.jpeg", BLUE, IMAGE_JPEG);
    EXPECT_EQ(Load(album), "blue"); // "folder" comes before "front"
    WritePicture(album + "/COVER.jpg", RED, IMAGE_JPEG);
    EXPECT_EQ(Load(album), "red");
}

TEST_F(CoverTest, DefaultCoverIsScaledAndTransparencyBecomesWhite) {
    SImage fallback;
    fallback.Create(30, 30, PIXEL_FORMAT_24RGB);
    fallback.Fill(BLUE);
    covers.SetDefaultCover(&fallback);
    EXPECT_EQ(Load(album), "blue");
    // A half-transparent PNG cover is flattened to opaque white.
    WritePicture(dir / "Artist/Album.png", 0x80FF0000, IMAGE_PNG);
    SImage image;
    covers.LoadCover(&image, album.c_str());
    EXPECT_EQ(image.GetPixel(75, 75) | 0u, 0xFFFFFFFFu);
    EXPECT_FALSE(covers.LoadCover(nullptr, album.c_str()));
}


TEST(SiteLink, PrefixesAreCutExactlyAndInOrder) {
    struct Case {
        const char* site;
        const char* link;
    } cases[] = {
        {"http://www.example.com/a", "example.com/a"},
        {"http://example.com", "example.com"},
        {"https://www.example.com", "https://www.example.com"},
        {"HTTP://www.example.com", "HTTP://www.example.com"},
        {"http://www.http://x", "x"}, // both cuts, one after the other
        {"www.example.com", "www.example.com"},
        {"ftp://host", "ftp://host"},
        {"", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CutSiteLink(c.site), c.link) << c.site;
    }
}

TEST(SiteLink, CaptionAddsTheLinkFromTheIniFile) {
    TempDir dir;
    std::string folder = dir.MakeFolder("Artist");
    EXPECT_EQ(ComposeCoverCaption(folder.c_str()), "Artist");
    dir.Write("Artist.ini", "[]\r\nsite=http://www.artist.example/\r\n");
    EXPECT_EQ(ComposeCoverCaption((folder + "/").c_str()),
              "Artist\n\n<link>artist.example/</link>");
    ASSERT_TRUE(WriteSite(folder.c_str(), "https://other.example"));
    EXPECT_EQ(ComposeCoverCaption(folder.c_str()),
              "Artist\n\n<link>https://other.example</link>");
    ASSERT_TRUE(WriteSite(folder.c_str(), ""));
    EXPECT_EQ(ComposeCoverCaption(folder.c_str()), "Artist");
    std::string fresh = dir.MakeFolder("New");
    ASSERT_TRUE(WriteSite(fresh.c_str(), "http://n.example"));
    EXPECT_TRUE(std::filesystem::exists(dir / "New.ini"));
}

TEST(FolderPage, MhtBeforeHtm) {
    TempDir dir;
    std::string folder = dir.MakeFolder("Album");
    EXPECT_EQ(GetFolderPage(folder.c_str()), "");
    dir.Write("Album.htm", "x");
    EXPECT_EQ(GetFolderPage(folder.c_str()), (dir / "Album.htm").c_str());
    dir.Write("Album.mht", "x");
    EXPECT_EQ(GetFolderPage(folder.c_str()), (dir / "Album.mht").c_str());
}

TEST(TrackText, SavingSetsTheDataWordAndEmptyTextDeletes) {
    TempDir dir;
    std::string track = dir.Write("Album/01 Song.mp3", "");
    std::string text = dir / "Album/01 Song.txt";
    EXPECT_EQ(LoadTrackText(track.c_str()), "");
    int word = TRACK_NO_TEXT;
    bool saved = false;
    EXPECT_TRUE(SaveTrackText(track.c_str(), "lyrics\r\n", word, &saved));
    EXPECT_TRUE(saved);
    EXPECT_EQ(word, TRACK_HAS_TEXT);
    EXPECT_EQ(TempDir::Read(text), "lyrics\r\n");
    EXPECT_EQ(LoadTrackText(track.c_str()), "lyrics\r\n");
    EXPECT_FALSE(SaveTrackText(track.c_str(), "more", word)); // no redraw needed
    EXPECT_EQ(TempDir::Read(text), "more");
    EXPECT_TRUE(SaveTrackText(track.c_str(), "", word));
    EXPECT_EQ(word, TRACK_NO_TEXT);
    EXPECT_FALSE(std::filesystem::exists(text));
    EXPECT_FALSE(SaveTrackText(track.c_str(), "", word));
}

TEST(TrackText, ATextFileOfOtherCaseIsFoundReadAndSavedInPlace) {
    TempDir dir;
    std::string track = dir.Write("Album/01 Song.mp3", "");
    std::string text = dir.Write("Album/01 SONG.TXT", "old");
    EXPECT_EQ(GetTrackTextPath(track.c_str()), text.c_str());
    EXPECT_EQ(LoadTrackText(track.c_str()), "old");
    int word = TRACK_HAS_TEXT;
    SaveTrackText(track.c_str(), "new", word);
    EXPECT_EQ(TempDir::Read(text), "new");
    EXPECT_FALSE(std::filesystem::exists(dir / "Album/01 Song.txt")) << "no second file";
    // The exact name comes first when both are there.
    std::string exact = dir.Write("Album/01 Song.txt", "exact");
    EXPECT_EQ(LoadTrackText(track.c_str()), "exact");
    EXPECT_EQ(GetTrackTextPath(track.c_str()), exact.c_str());
}

} // namespace

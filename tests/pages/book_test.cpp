// The Book: the whole page compared byte for byte, its nesting and classes,
// the pictures beside it (sizes, depth, the banner following its text, the
// cover lookup and the default cover), progress, threads and the archive.
#include "pages/book.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "foundation/array.h"
#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/image.h"
#include "foundation/timer.h"
#include "pages/book_images.h"
#include "pages/resources.h"
#include "support/temp_dir.h"

namespace {

std::string BookStyle() {
    EnsurePagesResources();
    SFileMem sheet("BINARY", RESOURCE_BOOK_STYLE);
    return sheet.GetSize() > 0 ? std::string(sheet.GetData(), size_t(sheet.GetSize())) : "";
}

std::string Head() {
    return "<html>\r\n<head>\r\n<title>Mel Kora</title>\r\n" + BookStyle() +
           "</head>\r\n<body leftmargin=0 topmargin=0 rightmargin=0 bottommargin=0 marginwidth=0 "
           "marginheight=0>\r\n";
}

const char* const TAIL = "</body>\r\n</html>\r\n";
const char* const CLOSE = "</tr>\r\n</table>\r\n";

// The rows of one folder, up to its open cell.
std::string Rows(int k, const std::string& cell, const std::string& title) {
    std::string n = std::to_string(k);
    return "<table border=0 cellspacing=0 cellpadding=0 width=100%>\r\n<tr>\r\n"
           "<td width=32 bgcolor=#" + cell + "><img src=\"Book\\book" + n +
           ".jpg\" align=absmiddle>\r\n<td valign=center bgcolor=#" + cell + ">" + title +
           "\r\n</tr>\r\n<tr>\r\n<td bgcolor=#" + cell + " background=\"Book\\book" + n +
           ".png\" class=tdRow>\r\n<td>\r\n";
}

std::string Font(const char* className, const std::string& name) {
    return std::string("<font class=") + className + ">" + name + "</font>";
}

// Width, height, bit depth and colour type of a PNG file; zeros when it is
// no PNG.
struct PngHeader {
    int width = 0;
    int height = 0;
    int depth = 0;
    int colorType = -1;
};
PngHeader ReadPngHeader(const std::string& path) {
    std::string bytes = TempDir::Read(path);
    PngHeader header;
    if (bytes.size() < 26 || bytes.compare(1, 3, "PNG") != 0) {
        return header;
    }
    auto word = [&](size_t at) {
        return static_cast<int>(static_cast<unsigned char>(bytes[at]) << 24 |
                                static_cast<unsigned char>(bytes[at + 1]) << 16 |
                                static_cast<unsigned char>(bytes[at + 2]) << 8 |
                                static_cast<unsigned char>(bytes[at + 3]));
    };
    header.width = word(16);
    header.height = word(20);
    header.depth = static_cast<unsigned char>(bytes[24]);
    header.colorType = static_cast<unsigned char>(bytes[25]);
    return header;
}

bool LoadPicture(const std::string& path, SImage& image) {
    SFileMem file;
    return file.LoadFile(path.c_str()) && image.Load(&file);
}

// A picture of one colour saved as PNG or JPEG.
void WritePicture(const std::string& path, uint32_t argb, int format, int side = 64) {
    SImage image;
    image.Create(side, side, PIXEL_FORMAT_24RGB);
    image.Fill(argb);
    SFileMem file;
    image.Save(&file, format);
    file.SaveFile(path.c_str());
}

class BookTest : public ::testing::Test {
protected:
    void SetUp() override {
        root = temp.Path() + "/";
        book.SetRoot(temp.Path().c_str());
        book.threads = 1;
    }
    std::string Build(bool makeImages) {
        if (!book.BuildBook(book.GetDefaultBookPath().c_str(), makeImages)) {
            return "<failed>";
        }
        return TempDir::Read(temp / "Book.htm");
    }
    TempDir temp;
    std::string root;
    PBook book;
};

TEST_F(BookTest, AnEmptyRootGivesAHeadAndAnEmptyBody) {
    EXPECT_EQ(Build(false), Head() + TAIL);
    EXPECT_FALSE(std::filesystem::exists(temp / "Book"));
}

TEST_F(BookTest, WholePageNestsChildrenAndLeavesTheLastTableOpen) {
    temp.MakeFolder("Empty/Child");
    temp.Write("Rock & Roll/Artist/Album/01 Song.wma", "");
    temp.Write("Rock & Roll/Artist/Album/02 Clip.AVI", "");
    temp.Write("Rock & Roll/Artist/Album/notes.txt", "");
    temp.Write("Rock & Roll/Artist/Album/.hidden.mp3", "");
    temp.Write("Rock & Roll/Artist/Single.mp3", "");
    const std::string bullet = " \xE2\x80\xA2 ";
    std::string expected =
        Head() +
        // An empty folder: a plain title, no song line, its child nested.
        Rows(0, "AAD0DA", Font("txtRow1", "Empty")) +
        Rows(1, "dbd0a9", Font("txtRow2", "Child")) +
        // Back up two levels to a sibling of "Empty".
        CLOSE + CLOSE +
        Rows(2, "AAD0DA", Font("txtRow1", "Rock & Roll")) +
        Rows(3, "dbd0a9",
             "<a href=\"Rock & Roll/Artist.album\" class=txtRow2>Artist</a>") +
        "<font class=txtSong>\r\n<a href=\"Rock & Roll/Artist/Single.mp3\">Single</a>\r\n"
        "</font>\r\n" +
        Rows(4, "addfa6",
             "<a href=\"Rock & Roll/Artist/Album.album\" class=txtRow3>Album</a>") +
        "<font class=txtSong>\r\n<a href=\"Rock & Roll/Artist/Album/01 Song.wma\">01 Song</a>" +
        bullet + "<a href=\"Rock & Roll/Artist/Album/02 Clip.AVI\"><i>02 Clip</i></a>\r\n"
        "</font>\r\n" + TAIL;
    EXPECT_EQ(Build(false), expected);
}

TEST_F(BookTest, DeepFoldersKeepTheFourthLevelColours) {
    temp.MakeFolder("a/b/c/d/e/f");
    std::string page = Build(false);
    EXPECT_NE(page.find(Rows(3, "c2c2c2", Font("txtRow4", "d"))), std::string::npos);
    EXPECT_NE(page.find(Rows(5, "c2c2c2", Font("txtRow4", "f"))), std::string::npos);
    EXPECT_EQ(page.find(CLOSE), std::string::npos);
}

TEST_F(BookTest, HiddenFoldersAndTheBookFolderStayOut) {
    temp.MakeFolder(".secret/inner");
    temp.MakeFolder("Visible");
    temp.MakeFolder("Playlists");
    temp.Write(".hidden", "Playlists\n");
    Build(true);
    // The image folder made by the first run is hidden, so a second run
    // lists the same folders.
    std::string page = Build(true);
    EXPECT_EQ(page, Head() + Rows(0, "AAD0DA", Font("txtRow1", "Visible")) + TAIL);
    SDisk disk;
    EXPECT_TRUE(disk.IsHidden((temp / "Book").c_str()));
}

TEST_F(BookTest, PicturesAreA32PixelJpegAndAnUpwardBanner) {
    temp.MakeFolder("A");
    temp.MakeFolder("A much longer folder name");
    WritePicture(temp / "A.png", 0xFFFF0000, IMAGE_PNG, 300);
    Build(true);
    SImage cover;
    ASSERT_TRUE(LoadPicture(temp / "Book/book0.jpg", cover));
    EXPECT_EQ(cover.GetWidth(), 32);
    EXPECT_EQ(cover.GetHeight(), 32);
    uint32_t pixel = cover.GetPixel(16, 16);
    EXPECT_GT((pixel >> 16) & 0xFF, 200u); // red
    EXPECT_LT(pixel & 0xFF, 60u);
    std::string jpeg = TempDir::Read(temp / "Book/book0.jpg");
    EXPECT_EQ(jpeg.substr(0, 2), "\xFF\xD8");

    PngHeader shortBanner = ReadPngHeader(temp / "Book/book0.png");
    PngHeader longBanner = ReadPngHeader(temp / "Book/book1.png");
    EXPECT_EQ(shortBanner.depth, 8);
    EXPECT_EQ(shortBanner.colorType, 2); // RGB, 24 bits a pixel
    EXPECT_EQ(longBanner.colorType, 2);
    // Turned upright: the text's height across, its width plus 16 down.
    EXPECT_EQ(shortBanner.width, longBanner.width);
    EXPECT_GT(shortBanner.width, 8);
    EXPECT_LE(shortBanner.width, 32);
    PBannerPainter painter;
    int width = 0;
    int height = 0;
    painter.Measure(SString("A much longer folder name"), width, height);
    EXPECT_EQ(longBanner.height, width + 16);
    EXPECT_EQ(longBanner.width, height);
    EXPECT_GT(longBanner.height, shortBanner.height + 100);

    // The fill of level 0, lighter than its cell, in the strip's margin.
    SImage banner;
    ASSERT_TRUE(LoadPicture(temp / "Book/book0.png", banner));
    EXPECT_EQ(banner.GetPixel(0, 0) & 0xFFFFFF, 0xB2D5DEu);
    EXPECT_EQ(banner.GetPixel(banner.GetWidth() - 1, 0) & 0xFFFFFF, 0xB2D5DEu);
    // The text is white and starts at the bottom: it reads upward.
    auto isWhitish = [](uint32_t pixel) {
        return ((pixel >> 16) & 0xFF) > 0xE8 && ((pixel >> 8) & 0xFF) > 0xE8 && (pixel & 0xFF) > 0xE8;
    };
    bool hasWhite = false;
    for (int y = banner.GetHeight() - 16; y < banner.GetHeight(); ++y) {
        for (int x = 0; x < banner.GetWidth(); ++x) {
            hasWhite = hasWhite || isWhitish(banner.GetPixel(x, y));
        }
    }
    EXPECT_TRUE(hasWhite);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < banner.GetWidth(); ++x) {
            EXPECT_FALSE(isWhitish(banner.GetPixel(x, y))) << x << "," << y;
        }
    }
}

TEST_F(BookTest, BannersAreWhiteOnTheFillOfTheirLevel) {
    PBannerPainter painter;
    SImage banner;
    ASSERT_TRUE(painter.Draw(SString("Name"), 0xC8C8C8, banner));
    EXPECT_EQ(banner.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_EQ(banner.GetPixel(0, banner.GetHeight() - 1) & 0xFFFFFF, 0xC8C8C8u);
    // A name wider than the box keeps the box's width plus 16, with the
    // last 16 columns (the top rows once turned) left black.
    std::string wide(400, 'W');
    ASSERT_TRUE(painter.Draw(SString(wide.c_str()), 0xC8C8C8, banner));
    EXPECT_EQ(banner.GetHeight(), BANNER_BOX_WIDTH + 16);
    EXPECT_EQ(banner.GetPixel(0, 0) & 0xFFFFFF, 0u);
    // Bytes that are no UTF-8 still draw.
    EXPECT_TRUE(painter.Draw(SString("Caf\xE9"), 0xB2D5DE, banner));
}

TEST_F(BookTest, CoversAreFoundInOrderAndTheDefaultFillsTheGaps) {
    temp.MakeFolder("Both");
    WritePicture(temp / "Both.jpg", 0xFF0000FF, IMAGE_JPEG);
    WritePicture(temp / "Both.png", 0xFF00FF00, IMAGE_PNG);
    temp.MakeFolder("Upper");
    WritePicture(temp / "UPPER.JPG", 0xFF0000FF, IMAGE_JPEG);
    temp.MakeFolder("Genre/Shared");
    WritePicture(temp / "shared.png", 0xFFFF0000, IMAGE_PNG);
    temp.MakeFolder("Inside");
    WritePicture(temp / "Inside/Folder.jpg", 0xFF0000FF, IMAGE_JPEG);
    temp.MakeFolder("Broken");
    temp.Write("Broken.png", "not a picture");
    WritePicture(temp / "Broken.jpg", 0xFF00FF00, IMAGE_JPEG);
    temp.MakeFolder("None");
    book.SetImageNames("Other;SHARED");
    SImage grey;
    grey.Create(10, 10, PIXEL_FORMAT_24RGB);
    grey.Fill(0xFF808080);
    book.defaultCover.CopyFrom(&grey);
    std::string page = Build(true);
    // Listing order: Both, Broken, Genre, Shared, Inside, None, Upper.
    auto centre = [&](int k) {
        SImage cover;
        EXPECT_TRUE(LoadPicture(temp / ("Book/book" + std::to_string(k) + ".jpg"), cover)) << k;
        return cover.GetPixel(16, 16) & 0xFFFFFF;
    };
    auto isNear = [](uint32_t pixel, uint32_t rgb) {
        for (int shift = 0; shift < 24; shift += 8) {
            int a = static_cast<int>((pixel >> shift) & 0xFF);
            int b = static_cast<int>((rgb >> shift) & 0xFF);
            if (std::abs(a - b) > 40) {
                return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(isNear(centre(0), 0x00FF00)) << std::hex << centre(0); // .png first
    // A damaged .png passes to the .jpg beside it.
    EXPECT_TRUE(isNear(centre(1), 0x00FF00)) << std::hex << centre(1);
    EXPECT_TRUE(isNear(centre(2), 0x808080)) << std::hex << centre(2); // Genre: default
    EXPECT_TRUE(isNear(centre(3), 0xFF0000)) << std::hex << centre(3); // shared name in root
    EXPECT_TRUE(isNear(centre(4), 0x0000FF)) << std::hex << centre(4); // inside, any case
    EXPECT_TRUE(isNear(centre(5), 0x808080)) << std::hex << centre(5); // default
    EXPECT_TRUE(isNear(centre(6), 0x0000FF)) << std::hex << centre(6); // case-blind sibling
}

TEST_F(BookTest, WithoutAGivenDefaultCoverAFolderStillGetsAPicture) {
    temp.MakeFolder("None");
    Build(true);
    SImage cover;
    ASSERT_TRUE(LoadPicture(temp / "Book/book0.jpg", cover));
    EXPECT_EQ(cover.GetWidth(), 32);
}

TEST_F(BookTest, OldPicturesAreWipedAndOthersKept) {
    temp.MakeFolder("One");
    temp.Write("Book/book7.png", "old");
    temp.Write("Book/book12.jpg", "old");
    temp.Write("Book/notes.txt", "mine");
    Build(true);
    EXPECT_FALSE(std::filesystem::exists(temp / "Book/book7.png"));
    EXPECT_FALSE(std::filesystem::exists(temp / "Book/book12.jpg"));
    EXPECT_TRUE(std::filesystem::exists(temp / "Book/notes.txt"));
    EXPECT_TRUE(std::filesystem::exists(temp / "Book/book0.png"));
    // Without pictures the folder is left as it is.
    temp.Write("Book/book9.png", "kept");
    Build(false);
    EXPECT_TRUE(std::filesystem::exists(temp / "Book/book9.png"));
}

TEST_F(BookTest, ABookElsewhereNamesItsImageFolderAfterItsStem) {
    temp.MakeFolder("Music/Artist");
    temp.MakeFolder("Out");
    book.SetRoot((temp / "Music").c_str());
    ASSERT_TRUE(book.BuildBook((temp / "Out/Catalogue.htm").c_str(), true));
    std::string page = TempDir::Read(temp / "Out/Catalogue.htm");
    EXPECT_NE(page.find("<img src=\"Catalogue\\book0.jpg\""), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(temp / "Out/Catalogue/book0.png"));
    // A book that cannot be written, or an image folder that cannot be
    // made, fails the run.
    temp.Write("Out/Blocked", "a file");
    EXPECT_FALSE(book.BuildBook((temp / "Out/Blocked.htm").c_str(), true));
    EXPECT_FALSE(book.BuildBook((temp / "Missing/Book.htm").c_str(), false));
}

TEST_F(BookTest, ProgressRunsInThousandthsAndEndsFull) {
    for (int i = 0; i < 7; ++i) {
        temp.MakeFolder("F" + std::to_string(i));
    }
    temp.Write("Book/book99.png", "old");
    std::vector<int> values;
    book.progress = [&](int value) { values.push_back(value); };
    Build(true);
    ASSERT_FALSE(values.empty());
    EXPECT_EQ(values.back(), 1000);
    for (size_t i = 1; i < values.size(); ++i) {
        EXPECT_NE(values[i], values[i - 1]) << "reported twice";
    }
    values.clear();
    Build(false);
    // 7 folders: 0, 142, 285, 428, 571, 714, 857, then the end.
    EXPECT_EQ(values, (std::vector<int>{0, 142, 285, 428, 571, 714, 857, 1000}));
}

TEST_F(BookTest, ThreadsChangeNoByteOfTheOutput) {
    for (int i = 0; i < 12; ++i) {
        std::string name = "Genre" + std::to_string(i % 3) + "/Artist " + std::to_string(i);
        temp.MakeFolder(name + "/Album");
        temp.Write(name + "/Album/01 a.mp3", "");
        WritePicture(temp / (name + ".png"), 0xFF000000 | static_cast<uint32_t>(i * 20000), IMAGE_PNG);
    }
    book.threads = 1;
    Build(true);
    std::vector<std::string> single;
    SDisk disk;
    SStringArray files;
    disk.Enumerate(&files, (temp / "Book/*.*").c_str(), ENUM_FILES);
    ASSERT_EQ(files.GetCount(), 2 * 27); // 3 genres, 12 artists, 12 albums
    for (int i = 0; i < files.GetCount(); ++i) {
        single.push_back(TempDir::Read(files.GetText(i).c_str()));
    }
    std::string singlePage = TempDir::Read(temp / "Book.htm");
    book.threads = 4;
    Build(true);
    EXPECT_EQ(TempDir::Read(temp / "Book.htm"), singlePage);
    for (int i = 0; i < files.GetCount(); ++i) {
        EXPECT_EQ(TempDir::Read(files.GetText(i).c_str()), single[static_cast<size_t>(i)])
            << files.GetText(i).c_str();
    }
}

TEST_F(BookTest, TheArchiveHoldsTheBookAndItsPicturesFromTheRootDown) {
    temp.MakeFolder("A/B");
    EXPECT_FALSE(book.WriteBookZip(book.GetDefaultBookPath().c_str(), (temp / "x.zip").c_str()));
    Build(true);
    temp.Write("Book/.extra", "hidden too");
    std::string archive = temp / "out.zip";
    ASSERT_TRUE(book.WriteBookZip(book.GetDefaultBookPath().c_str(), archive.c_str()));
    std::string bytes = TempDir::Read(archive);
    // Stored entries in order, named from the root down with "/".
    const char* names[] = {"Book.htm", "Book/.extra", "Book/book0.jpg", "Book/book0.png",
                           "Book/book1.jpg", "Book/book1.png"};
    size_t at = 0;
    for (const char* name : names) {
        size_t found = bytes.find(std::string("PK\x03\x04", 4), at);
        ASSERT_NE(found, std::string::npos) << name;
        int length = static_cast<unsigned char>(bytes[found + 26]) |
                     static_cast<unsigned char>(bytes[found + 27]) << 8;
        EXPECT_EQ(bytes.substr(found + 30, static_cast<size_t>(length)), name);
        at = found + 30;
    }
}

TEST(BookZipName, DateHasNoLeadingZeros) {
    STimer date;
    ASSERT_TRUE(date.SetDateTime(2026, 3, 7, 9, 5, 0, 0));
    EXPECT_STREQ(PBook::GetBookZipTitle(date).c_str(), "book 3-7-2026");
    ASSERT_TRUE(date.SetDateTime(2026, 11, 23, 0, 0, 0, 0));
    EXPECT_STREQ(PBook::GetBookZipTitle(date).c_str(), "book 11-23-2026");
    SString path = PBook::MakeBookZipPath(date);
    EXPECT_NE(path.Find("book 11-23-2026"), -1);
    EXPECT_EQ(path.Right(4), ".zip");
}

} // namespace

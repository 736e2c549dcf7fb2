#include "library/cover_cache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "foundation/file.h"
#include "foundation/image.h"
#include "library/folder_view.h"
#include "library/metadata.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// A picture with a diagonal gradient, so that scaling and every pixel
// matter, in the format's file form.
void WritePicture(const std::string& path, uint32_t tint, int format, int width, int height) {
    SImage image;
    image.Create(width, height, format == IMAGE_PNG ? PIXEL_FORMAT_32ARGB : PIXEL_FORMAT_24RGB);
    uint32_t* pixels = image.GetBits();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint32_t shade = static_cast<uint32_t>((x + y) * 255 / (width + height));
            pixels[y * width + x] = 0xFF000000u | ((tint & 0xFFFFFF) ^ (shade * 0x010101u));
        }
    }
    SFilePath file;
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_TRUE(file.Open(path.c_str(), true, true, false, false));
    ASSERT_TRUE(image.Save(&file, format));
}

bool SamePixels(const SImage& a, const SImage& b) {
    return a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight() && a.IsValid() &&
           std::memcmp(a.GetBits(), b.GetBits(), size_t(a.GetWidth()) * a.GetHeight() * 4) == 0;
}

class CoverCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        cache.SetFolder((dir / "cache").c_str());
        cover = dir / "Artist/Album.png";
        WritePicture(cover, 0xC02020, IMAGE_PNG, 300, 200);
        files = {SString(cover.c_str())};
    }
    // The cover as the cache gives it (or decodes and stores it).
    SImage Load() {
        SImage image;
        covers.LoadCoverFrom(&image, files, &cache);
        return image;
    }
    SImage Decoded() {
        SImage image;
        covers.LoadCoverFrom(&image, files, nullptr);
        return image;
    }
    PCoverFileKey Key() {
        PCoverFileKey key;
        EXPECT_TRUE(PCoverCache::GetFileKey(cover.c_str(), &key));
        return key;
    }

    TempDir dir;
    PCoverCache cache;
    PCovers covers;
    std::string cover;
    std::vector<SString> files;
};

TEST_F(CoverCacheTest, AnEntryIsFoundOnlyUnderTheKeyItWasMadeWith) {
    SImage first = Load();
    ASSERT_TRUE(SamePixels(first, Decoded()));
    ASSERT_TRUE(fs::exists(cache.GetEntryPath(cover.c_str()).c_str()));
    PCoverFileKey key = Key();
    std::string other = dir / "Artist/Other.png";
    struct Case {
        const char* what;
        PCoverFileKey key;
        const char* file;
        bool found;
    };
    const Case cases[] = {
        {"same", key, cover.c_str(), true},
        {"newer", {key.size, key.modified + 1}, cover.c_str(), false},
        {"older", {key.size, key.modified - 1000000000}, cover.c_str(), false},
        {"larger", {key.size + 1, key.modified}, cover.c_str(), false},
        {"another path", key, other.c_str(), false},
    };
    for (const Case& c : cases) {
        SImage image;
        EXPECT_EQ(cache.Find(c.file, c.key, &image), c.found) << c.what;
        if (c.found) {
            EXPECT_TRUE(SamePixels(image, first)) << c.what;
        }
    }
}

TEST_F(CoverCacheTest, AHitIsTakenWithoutDecodingAndAChangedFileIsDecodedAgain) {
    SImage red = Load();
    auto stamp = fs::last_write_time(cover);
    // Other bytes of the same length and time: the entry stands for them.
    std::string bytes = TempDir::Read(cover);
    ASSERT_FALSE(bytes.empty());
    dir.Write("Artist/Album.png", std::string(bytes.size(), 'x'));
    fs::last_write_time(cover, stamp);
    EXPECT_TRUE(SamePixels(Load(), red)) << "taken from the cache";

    // A new picture (another size of file) under the old time.
    WritePicture(cover, 0x2020C0, IMAGE_PNG, 120, 90);
    fs::last_write_time(cover, stamp);
    SImage blue = Load();
    EXPECT_FALSE(SamePixels(blue, red));
    EXPECT_TRUE(SamePixels(blue, Decoded()));

    // The same bytes touched a second later.
    fs::last_write_time(cover, stamp + std::chrono::seconds(1));
    SImage again;
    ASSERT_FALSE(cache.Find(cover.c_str(), Key(), &again));
    EXPECT_TRUE(SamePixels(Load(), blue));
    EXPECT_TRUE(cache.Find(cover.c_str(), Key(), &again)) << "stored under the new time";
}

TEST_F(CoverCacheTest, ADamagedEntryIsIgnoredAndWrittenAnew) {
    SImage good = Load();
    std::string entry = cache.GetEntryPath(cover.c_str()).c_str();
    std::string whole = TempDir::Read(entry);
    ASSERT_GT(whole.size(), 150u * 150u * 3u);
    // Another cover's entry, moved under this cover's name.
    std::string other = dir / "Artist/Second.png";
    WritePicture(other, 0x20C020, IMAGE_PNG, 300, 200);
    SImage unused;
    covers.LoadCoverFrom(&unused, {SString(other.c_str())}, &cache);
    std::string foreign = TempDir::Read(cache.GetEntryPath(other.c_str()).c_str());

    struct Case {
        const char* what;
        std::string bytes;
    };
    std::string flipped = whole;
    flipped[whole.size() / 2] ^= 0x40;
    std::string badFormat = whole;
    badFormat[24] ^= 0x01; // the format tag
    const Case cases[] = {
        {"empty", ""},
        {"cut short", whole.substr(0, whole.size() - 1)},
        {"one more byte", whole + "x"},
        {"a pixel changed", flipped},
        {"an unknown format", badFormat},
        {"garbage", std::string(whole.size(), '\xA5')},
        {"another cover's", foreign},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        {
            std::ofstream out(entry, std::ios::binary | std::ios::trunc);
            out.write(c.bytes.data(), static_cast<std::streamsize>(c.bytes.size()));
        }
        SImage image;
        EXPECT_FALSE(cache.Find(cover.c_str(), Key(), &image));
        EXPECT_TRUE(SamePixels(Load(), good));
        EXPECT_EQ(TempDir::Read(entry), whole) << "written anew";
    }
}

TEST_F(CoverCacheTest, LeftoversOfAKilledWriterGoOnceOld) {
    Load();
    std::string entry = cache.GetEntryPath(cover.c_str()).c_str();
    auto old = fs::file_time_type::clock::now() - std::chrono::minutes(5);
    struct Case {
        std::string name;
        bool aged;
        bool removed;
    };
    const Case cases[] = {
        {entry + ".a1B2c3", true, true},
        {entry + ".d4E5f6", false, false}, // may still be being written
        {entry + ".toolong7", true, false},
        {dir / "cache/notes.txt", true, false},
        {entry, true, false},
    };
    for (const Case& c : cases) {
        if (!fs::exists(c.name)) {
            std::ofstream(c.name) << "x";
        }
        if (c.aged) {
            fs::last_write_time(c.name, old);
        }
    }
    EXPECT_EQ(cache.RemoveLeftovers(), 1);
    for (const Case& c : cases) {
        EXPECT_EQ(fs::exists(c.name), !c.removed) << c.name;
    }
    EXPECT_EQ(PCoverCache().RemoveLeftovers(), 0);
}

TEST_F(CoverCacheTest, AnOffCacheNeitherFindsNorWrites) {
    PCoverCache off;
    EXPECT_FALSE(off.IsEnabled());
    SImage image = Decoded();
    EXPECT_FALSE(off.Store(cover.c_str(), Key(), image));
    EXPECT_FALSE(off.Find(cover.c_str(), Key(), &image));
    SImage small;
    small.Create(40, 40, PIXEL_FORMAT_24RGB);
    EXPECT_FALSE(cache.Store(cover.c_str(), Key(), small)) << "only 150 by 150 pictures";
    EXPECT_FALSE(fs::exists(dir / "cache"));
}

TEST(CoverCacheFolder, FollowsXdgCacheHomeElseHome) {
    std::string savedCache = getenv("XDG_CACHE_HOME") != nullptr ? getenv("XDG_CACHE_HOME") : "";
    bool hadCache = getenv("XDG_CACHE_HOME") != nullptr;
    std::string savedHome = getenv("HOME") != nullptr ? getenv("HOME") : "";
    struct Case {
        const char* cacheHome; // null: unset
        const char* home;
        const char* expected;
    };
    const Case cases[] = {
        {"/tmp/c", "/home/u", "/tmp/c/melkora/covers/"},
        {"/tmp/c/", "/home/u", "/tmp/c/melkora/covers/"},
        {nullptr, "/home/u", "/home/u/.cache/melkora/covers/"},
        {"relative", "/home/u", "/home/u/.cache/melkora/covers/"},
        {nullptr, "relative", ""},
    };
    for (const Case& c : cases) {
        if (c.cacheHome != nullptr) {
            setenv("XDG_CACHE_HOME", c.cacheHome, 1);
        } else {
            unsetenv("XDG_CACHE_HOME");
        }
        setenv("HOME", c.home, 1);
        EXPECT_EQ(PCoverCache::GetDefaultFolder(), c.expected);
    }
    if (hadCache) {
        setenv("XDG_CACHE_HOME", savedCache.c_str(), 1);
    } else {
        unsetenv("XDG_CACHE_HOME");
    }
    setenv("HOME", savedHome.c_str(), 1);
}

// Covers made on many threads, through the cache and without it, are the
// covers made one by one; every index is taken exactly once.
TEST(CoverCacheThreads, CoversMadeOnManyThreadsEqualThoseMadeOneByOne) {
    TempDir dir;
    std::string root = dir.Path() + "/";
    constexpr int FOLDERS = 24;
    std::vector<std::string> folders;
    for (int i = 0; i < FOLDERS; ++i) {
        std::string name = "Album " + std::to_string(100 + i);
        std::string folder = dir.MakeFolder(name) + "/";
        dir.Write(name + "/track.mp3", "");
        folders.push_back(folder);
        if (i % 6 == 5) {
            continue; // no cover: the default one
        }
        if (i % 6 == 4) {
            dir.Write(name + ".jpg", "not a picture"); // falls through to the default
            continue;
        }
        bool jpeg = i % 2 == 0;
        WritePicture(root + name + (jpeg ? ".jpg" : ".png"), 0x102030u * uint32_t(i + 1),
                     jpeg ? IMAGE_JPEG : IMAGE_PNG, 200 + i * 17, 180 + i * 11);
    }
    PCovers covers;
    covers.SetRoot(root.c_str());
    std::vector<SImage> serial(FOLDERS);
    std::vector<std::vector<SString>> files(FOLDERS);
    for (int i = 0; i < FOLDERS; ++i) {
        covers.LoadCover(&serial[size_t(i)], folders[size_t(i)].c_str());
        files[size_t(i)] = covers.FindCoverFiles(folders[size_t(i)].c_str());
    }
    PCoverCache cache((dir / ".cache").c_str());
    for (const char* pass : {"decoded and stored", "from the cache"}) {
        SCOPED_TRACE(pass);
        std::vector<SImage> parallel(FOLDERS);
        std::vector<std::atomic<int>> taken(FOLDERS);
        RunOnAllCores(FOLDERS, [&](size_t i) {
            taken[i].fetch_add(1);
            covers.LoadCoverFrom(&parallel[i], files[i], &cache);
        }, 4);
        for (int i = 0; i < FOLDERS; ++i) {
            EXPECT_EQ(taken[size_t(i)].load(), 1);
            EXPECT_TRUE(SamePixels(parallel[size_t(i)], serial[size_t(i)])) << i;
        }
    }
    // The folder view makes its cards the same way.
    PFolderView view;
    view.SetRoot(root.c_str());
    view.SetCoverCacheFolder((dir / ".cache").c_str());
    ASSERT_TRUE(view.OpenFolder(root.c_str(), "", true));
    ASSERT_EQ(view.GetThumbnails().size(), size_t(FOLDERS));
    for (int i = 0; i < FOLDERS; ++i) {
        EXPECT_TRUE(SamePixels(view.GetThumbnails()[size_t(i)].cover, serial[size_t(i)])) << i;
    }
    EXPECT_EQ(view.GetRowImages().GetCount(), FOLDERS + 1);
    int count = 0;
    RunOnAllCores(0, [&](size_t) { ++count; });
    RunOnAllCores(1, [&](size_t) { ++count; }, 8);
    EXPECT_EQ(count, 1);
}

} // namespace

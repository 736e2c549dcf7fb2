// Pictures of image marks, read from an archive held in memory.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "controls/media_images.h"
#include "foundation/file.h"
#include "foundation/image.h"

namespace {

// An archive of entries in memory that counts its reads.
struct MemoryArchive {
    std::map<std::string, std::string> entries;
    int reads = 0;
    SMediaArchive Lookup() {
        return [this](const char* entry, SFileMem* file) {
            ++reads;
            auto found = entries.find(entry);
            if (found == entries.end()) {
                return false;
            }
            int size = static_cast<int>(found->second.size());
            return file->Write(found->second.data(), size) == size;
        };
    }
};

std::string PngBytes(int width, int height) {
    SImage picture;
    picture.Create(width, height, PIXEL_FORMAT_32ARGB);
    picture.Fill(0xFF336699u);
    SFileMem file;
    EXPECT_TRUE(picture.Save(&file, IMAGE_PNG));
    return std::string(file.GetData(), file.GetSize());
}

TEST(MediaImages, EntriesAreReadOnceUnderTheImageFolderAndFoundInAnyCase) {
    MemoryArchive archive;
    archive.entries["image\\Star"] = PngBytes(12, 8);
    SMediaImageCache cache;
    cache.SetArchive(archive.Lookup());
    const SImage* star = cache.Find("Star");
    ASSERT_NE(star, nullptr);
    EXPECT_EQ(star->GetWidth(), 12);
    EXPECT_EQ(star->GetHeight(), 8);
    EXPECT_EQ(star->name, "Star");
    EXPECT_EQ(cache.Find("STAR"), star) << "the cache ignores case";
    EXPECT_EQ(archive.reads, 1);
    EXPECT_EQ(cache.GetCount(), 1);
}

TEST(MediaImages, MissingOrDamagedEntriesGiveNoPictureAndAreNotKept) {
    MemoryArchive archive;
    archive.entries["image\\broken"] = "\x89PNG\r\n\x1a\n not really";
    archive.entries["image\\empty"] = "";
    SMediaImageCache cache;
    EXPECT_EQ(cache.Find("broken"), nullptr) << "no archive at all";
    cache.SetArchive(archive.Lookup());
    EXPECT_EQ(cache.Find("broken"), nullptr);
    EXPECT_EQ(cache.Find("empty"), nullptr);
    EXPECT_EQ(cache.Find("nothing"), nullptr);
    EXPECT_EQ(cache.GetCount(), 0);
    archive.entries["image\\nothing"] = PngBytes(3, 3);
    EXPECT_NE(cache.Find("nothing"), nullptr) << "a failure is tried again later";
}

} // namespace

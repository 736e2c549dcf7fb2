// Pictures of image marks, read from an archive held in memory.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "controls/media_images.h"
#include "foundation/file.h"
#include "foundation/image.h"

namespace {

TEST(MediaImages, EntriesAreReadOnceInAnyCaseAndFailuresAreTriedAgain) {
    SImage picture;
    picture.Create(12, 8, PIXEL_FORMAT_32ARGB);
    SFileMem png;
    ASSERT_TRUE(picture.Save(&png, IMAGE_PNG));
    std::map<std::string, std::string> entries = {
        {"image\\Star", std::string(png.GetData(), png.GetSize())},
        {"image\\broken", "\x89PNG\r\n\x1a\n not really"},
        {"image\\empty", ""}};
    int reads = 0;
    SMediaImageCache cache;
    EXPECT_EQ(cache.Find("Star"), nullptr) << "no archive at all";
    cache.SetArchive([&](const char* entry, SFileMem* file) {
        ++reads;
        auto found = entries.find(entry);
        int size = found == entries.end() ? -1 : static_cast<int>(found->second.size());
        return size >= 0 && file->Write(found->second.data(), size) == size;
    });
    const SImage* star = cache.Find("Star");
    ASSERT_NE(star, nullptr);
    EXPECT_EQ(star->GetWidth(), 12);
    EXPECT_EQ(star->GetHeight(), 8);
    EXPECT_EQ(star->name, "Star");
    EXPECT_EQ(cache.Find("STAR"), star) << "the cache ignores case";
    EXPECT_EQ(reads, 1);
    for (const char* name : {"broken", "empty", "nothing"}) {
        EXPECT_EQ(cache.Find(name), nullptr) << name;
    }
    EXPECT_EQ(cache.GetCount(), 1) << "failures are not kept";
    entries["image\\nothing"] = entries["image\\Star"];
    EXPECT_NE(cache.Find("nothing"), nullptr) << "a failure is tried again later";
}

} // namespace

#include "controls/media_images.h"

#include "foundation/file.h"
#include "foundation/image.h"

SMediaImageCache::SMediaImageCache() = default;
SMediaImageCache::~SMediaImageCache() = default;

void SMediaImageCache::SetArchive(SMediaArchive newArchive) {
    archive = std::move(newArchive);
}

void SMediaImageCache::Clear() {
    images.clear();
}

const SImage* SMediaImageCache::Find(const SString& name) {
    for (const auto& image : images) {
        if (image->name.CompareNoCase(name.c_str()) == 0) {
            return image.get();
        }
    }
    if (!archive) {
        return nullptr;
    }
    SFileMem file;
    SString entry = SString("image\\") + name;
    if (!archive(entry.c_str(), &file)) {
        return nullptr;
    }
    file.Rewind();
    auto image = std::make_unique<SImage>();
    if (!image->Load(&file)) {
        return nullptr;
    }
    image->name = name;
    images.push_back(std::move(image));
    return images.back().get();
}

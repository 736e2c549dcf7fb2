// The pictures that image marks of the media control name. Each is read
// once from an archive ("image\" plus the name), decoded and kept by name;
// the archive is a lookup that fills a memory file, so the packed file of
// the program, a folder or a test's own table can all stand behind it.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "foundation/string.h"

class SFileMem;
class SImage;

// Fills file with the entry's bytes; false when there is no such entry.
using SMediaArchive = std::function<bool(const char* entry, SFileMem* file)>;

class SMediaImageCache {
public:
    SMediaImageCache();
    ~SMediaImageCache();
    SMediaImageCache(const SMediaImageCache&) = delete;
    SMediaImageCache& operator=(const SMediaImageCache&) = delete;

    void SetArchive(SMediaArchive archive);
    bool HasArchive() const { return static_cast<bool>(archive); }
    // The picture of name (case ignored): from the cache, else read from the
    // archive, decoded, named and cached. Null without an archive, for a
    // missing entry or for bytes that are no picture; a failure is not
    // cached, so a later archive may still supply it.
    const SImage* Find(const SString& name);
    int GetCount() const { return static_cast<int>(images.size()); }
    void Clear();

private:
    SMediaArchive archive;
    std::vector<std::unique_ptr<SImage>> images;
};

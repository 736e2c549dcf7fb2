// PCoverCache: the folder covers already made, kept on disk as 150 by 150
// pictures so that a folder opened before shows at once. Each entry is
// keyed by the cover file's path, size and modification time: a cover file
// that changed (or a cache file that is damaged, cut short or written for
// another path) is decoded again and its entry written anew, atomically.
//
// The cache holds no state beyond its folder, so one object serves any
// number of threads at once once the folder is set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "foundation/image.h"
#include "foundation/string.h"

// What a cover file is as the cache knows it: size in bytes and
// modification time in nanoseconds since the epoch.
struct PCoverFileKey {
    int64_t size = -1;
    int64_t modified = 0;
    bool operator==(const PCoverFileKey&) const = default;
};

class PCoverCache {
public:
    // "$XDG_CACHE_HOME/melkora/covers/" ("~/.cache" when the variable is
    // unset or not absolute); "" when neither gives a folder.
    static SString GetDefaultFolder();

    PCoverCache() = default;
    explicit PCoverCache(const char* folder) { SetFolder(folder); }

    // The folder of the cache files, made when the first entry is written;
    // null or "" turns the cache off (every look-up misses, nothing is
    // written). Set before any thread uses the cache.
    void SetFolder(const char* folder);
    const SString& GetFolder() const { return folder; }
    bool IsEnabled() const { return !folder.IsEmpty(); }

    // The key of a cover file as it is now; false when it cannot be read.
    static bool GetFileKey(const char* file, PCoverFileKey* key);
    // The picture made from file when it had this key; false on a miss.
    bool Find(const char* file, const PCoverFileKey& key, SImage* image) const;
    // Keeps a 150 by 150 picture made from file with this key, replacing the
    // entry atomically; false when off, or on any failure to write.
    bool Store(const char* file, const PCoverFileKey& key, const SImage& image) const;
    // The path of the cache file of a cover file.
    SString GetEntryPath(const char* file) const;
    // Removes the temporary files of entries whose writer was killed before
    // renaming them: those last changed more than olderThan seconds ago (a
    // younger one may still be being written). Returns how many went.
    int RemoveLeftovers(int olderThan = 60) const;

private:
    SString folder;
};

// Runs work(0) to work(count - 1) on a pool of threads, one per core
// (threads above 0 sets the count), and returns when every call has ended.
// Each index is taken by exactly one thread; work must be safe to run on
// several threads at once.
void RunOnAllCores(size_t count, const std::function<void(size_t)>& work, int threads = 0);

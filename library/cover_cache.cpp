#include "library/cover_cache.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "foundation/disk.h"
#include "library/metadata.h"

namespace {

// A cache file: the magic, the key and the cover file's path it was made
// for, the picture's format tag, its pixels as B, G, R bytes, top-down, and
// a check word over everything before it.
constexpr char MAGIC[8] = {'M', 'K', 'C', 'O', 'V', 'E', 'R', '1'};
constexpr size_t PIXEL_BYTES = size_t(COVER_SIDE) * COVER_SIDE * 3;
// The end of an entry's name, and what follows it in a temporary file's.
constexpr const char* TEMP_INFIX = ".cover.";
// A path longer than this has no entry (the system's own limit is 4,096).
constexpr size_t MAX_PATH_BYTES = 4096;

struct Header {
    char magic[8];
    int64_t size;
    int64_t modified;
    int32_t format;
    uint32_t pathBytes;
};

// FNV-1a, 64 bits: the entry's name from the cover's path.
uint64_t HashBytes(const void* data, size_t count) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    uint64_t hash = 0xcbf29ce484222325ull;
    for (size_t i = 0; i < count; ++i) {
        hash = (hash ^ bytes[i]) * 0x100000001b3ull;
    }
    return hash;
}

// The check word: eight bytes at a time, so that a whole entry costs a few
// microseconds; any changed byte changes it.
uint64_t CheckWord(const unsigned char* data, size_t count) {
    uint64_t check = 0x9e3779b97f4a7c15ull ^ count;
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        uint64_t word = 0;
        std::memcpy(&word, data + i, 8);
        check = (check ^ word) * 0xff51afd7ed558ccdull;
        check ^= check >> 29;
    }
    for (; i < count; ++i) {
        check = (check ^ data[i]) * 0x100000001b3ull;
    }
    return check;
}

bool IsCoverFormat(int format) {
    return format == PIXEL_FORMAT_24RGB || format == PIXEL_FORMAT_32RGB ||
           format == PIXEL_FORMAT_32ARGB;
}

// Reads the whole of a small file; false when it is not exactly expected
// bytes long.
bool ReadExactly(const char* path, size_t expected, std::vector<unsigned char>& bytes) {
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    struct stat info {};
    bool ok = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
              static_cast<size_t>(info.st_size) == expected;
    if (ok) {
        bytes.resize(expected);
        size_t done = 0;
        while (done < expected) {
            ssize_t got = read(fd, bytes.data() + done, expected - done);
            if (got <= 0) {
                break;
            }
            done += static_cast<size_t>(got);
        }
        ok = done == expected;
    }
    close(fd);
    return ok;
}

// Replaces an entry: a temporary file beside it, renamed over it, so that a
// reader or a kill at any moment finds the old entry whole, the new one
// whole, or none. Unlike the user's files it is not synced first: an entry
// a power cut loses or cuts short only fails its length or check word and
// is decoded again, and a sync for each of a folder's hundreds of covers
// would cost more than decoding them.
bool WriteEntry(const char* path, const std::vector<unsigned char>& bytes) {
    std::string temp = std::string(path) + ".XXXXXX"; // path ends in ".cover"

    int fd = mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t wrote = write(fd, bytes.data() + done, bytes.size() - done);
        if (wrote <= 0) {
            break;
        }
        done += static_cast<size_t>(wrote);
    }
    bool ok = close(fd) == 0 && done == bytes.size() && rename(temp.c_str(), path) == 0;
    if (!ok) {
        unlink(temp.c_str());
    }
    return ok;
}

} // namespace

SString PCoverCache::GetDefaultFolder() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    SString base;
    if (cache != nullptr && cache[0] == '/') {
        base = cache;
    } else {
        const char* home = std::getenv("HOME");
        if (home == nullptr || home[0] != '/') {
            return SString("");
        }
        base = SString(home) + "/.cache";
    }
    if (base.GetAt(base.GetLength() - 1) != '/') {
        base += "/";
    }
    return base + "melkora/covers/";
}

void PCoverCache::SetFolder(const char* newFolder) {
    folder = newFolder != nullptr ? newFolder : "";
    if (!folder.IsEmpty() && folder.GetAt(folder.GetLength() - 1) != '/') {
        folder += "/";
    }
}

bool PCoverCache::GetFileKey(const char* file, PCoverFileKey* key) {
    struct stat info {};
    if (file == nullptr || key == nullptr || stat(file, &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    key->size = static_cast<int64_t>(info.st_size);
    key->modified = static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
    return true;
}

SString PCoverCache::GetEntryPath(const char* file) const {
    if (folder.IsEmpty() || file == nullptr) {
        return SString("");
    }
    char name[32];
    std::snprintf(name, sizeof name, "%016llx.cover",
                  static_cast<unsigned long long>(HashBytes(file, std::strlen(file))));
    return folder + name;
}

int PCoverCache::RemoveLeftovers(int olderThan) const {
    if (folder.IsEmpty()) {
        return 0;
    }
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        return 0;
    }
    time_t now = time(nullptr);
    int removed = 0;
    int dirFd = dirfd(dir);
    while (struct dirent* item = readdir(dir)) {
        // "<hash>.cover.XXXXXX", as WriteEntry names its temporary file.
        const char* tail = std::strstr(item->d_name, TEMP_INFIX);
        struct stat info {};
        if (tail == nullptr || std::strlen(tail) != std::strlen(TEMP_INFIX) + 6 ||
            fstatat(dirFd, item->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0 ||
            !S_ISREG(info.st_mode) || now - info.st_mtime <= olderThan) {
            continue;
        }
        removed += unlinkat(dirFd, item->d_name, 0) == 0 ? 1 : 0;
    }
    closedir(dir);
    return removed;
}

bool PCoverCache::Find(const char* file, const PCoverFileKey& key, SImage* image) const {
    if (folder.IsEmpty() || file == nullptr || image == nullptr) {
        return false;
    }
    size_t pathBytes = std::strlen(file);
    if (pathBytes == 0 || pathBytes > MAX_PATH_BYTES) {
        return false;
    }
    size_t total = sizeof(Header) + pathBytes + PIXEL_BYTES + sizeof(uint64_t);
    std::vector<unsigned char> bytes;
    if (!ReadExactly(GetEntryPath(file).c_str(), total, bytes)) {
        return false;
    }
    Header header;
    std::memcpy(&header, bytes.data(), sizeof header);
    uint64_t check = 0;
    std::memcpy(&check, bytes.data() + total - sizeof check, sizeof check);
    if (std::memcmp(header.magic, MAGIC, sizeof MAGIC) != 0 || header.size != key.size ||
        header.modified != key.modified || header.pathBytes != pathBytes ||
        !IsCoverFormat(header.format) ||
        std::memcmp(bytes.data() + sizeof header, file, pathBytes) != 0 ||
        CheckWord(bytes.data(), total - sizeof check) != check) {
        return false;
    }
    image->Create(COVER_SIDE, COVER_SIDE, header.format);
    uint32_t* pixels = image->GetBits();
    if (pixels == nullptr) {
        return false;
    }
    const unsigned char* source = bytes.data() + sizeof header + pathBytes;
    for (size_t i = 0; i < size_t(COVER_SIDE) * COVER_SIDE; ++i, source += 3) {
        pixels[i] = 0xFF000000u | (uint32_t(source[2]) << 16) | (uint32_t(source[1]) << 8) |
                    source[0];
    }
    return true;
}

bool PCoverCache::Store(const char* file, const PCoverFileKey& key, const SImage& image) const {
    if (folder.IsEmpty() || file == nullptr || image.GetWidth() != COVER_SIDE ||
        image.GetHeight() != COVER_SIDE || !IsCoverFormat(image.GetFormat())) {
        return false;
    }
    size_t pathBytes = std::strlen(file);
    if (pathBytes == 0 || pathBytes > MAX_PATH_BYTES) {
        return false;
    }
    Header header{};
    std::memcpy(header.magic, MAGIC, sizeof MAGIC);
    header.size = key.size;
    header.modified = key.modified;
    header.format = image.GetFormat();
    header.pathBytes = static_cast<uint32_t>(pathBytes);
    size_t total = sizeof header + pathBytes + PIXEL_BYTES + sizeof(uint64_t);
    std::vector<unsigned char> bytes(total);
    std::memcpy(bytes.data(), &header, sizeof header);
    std::memcpy(bytes.data() + sizeof header, file, pathBytes);
    unsigned char* target = bytes.data() + sizeof header + pathBytes;
    const uint32_t* pixels = image.GetBits();
    for (size_t i = 0; i < size_t(COVER_SIDE) * COVER_SIDE; ++i, target += 3) {
        target[0] = static_cast<unsigned char>(pixels[i]);
        target[1] = static_cast<unsigned char>(pixels[i] >> 8);
        target[2] = static_cast<unsigned char>(pixels[i] >> 16);
    }
    uint64_t check = CheckWord(bytes.data(), total - sizeof check);
    std::memcpy(bytes.data() + total - sizeof check, &check, sizeof check);
    SString path = GetEntryPath(file);
    if (WriteEntry(path.c_str(), bytes)) {
        return true;
    }
    // The folder is made on the first write (by any thread; making it twice
    // is harmless).
    SDisk().CreateFolder(folder.c_str(), true);
    return WriteEntry(path.c_str(), bytes);
}

void RunOnAllCores(size_t count, const std::function<void(size_t)>& work, int threads) {
    if (count == 0) {
        return;
    }
    size_t wanted = threads > 0 ? static_cast<size_t>(threads)
                                : std::max(1u, std::thread::hardware_concurrency());
    wanted = std::min(wanted, count);
    std::atomic<size_t> next{0};
    auto loop = [&next, &work, count] {
        for (size_t index = next.fetch_add(1); index < count; index = next.fetch_add(1)) {
            work(index);
        }
    };
    std::vector<std::thread> pool;
    pool.reserve(wanted - 1);
    for (size_t i = 1; i < wanted; ++i) {
        // A thread that cannot start leaves its share to the others.
        try {
            pool.emplace_back(loop);
        } catch (const std::system_error&) {
            break;
        }
    }
    loop(); // the calling thread takes its share
    for (std::thread& thread : pool) {
        thread.join();
    }
}

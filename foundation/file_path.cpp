// SFilePath: files on disk over stdio, and the atomic replacement of files
// the user owns. Its ReadLine lives in file.cpp beside the one line scanner.
#include "foundation/file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <glib.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "foundation/hash.h"

namespace {

// Blocks used when a disk file is read in pieces.
constexpr int DISK_BLOCK = 65536;

int ClipToInt(off_t value) {
    if (value < 0) {
        return 0;
    }
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

void SyncFolder(const std::string& folder) {
    int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

std::string FolderOf(const std::string& path) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Temporary files of an atomic replacement have a name of their own,
// ".melkora-" and six random characters, whatever the name of the file they
// stand in for: a name that fits in a folder can always be replaced, and a
// file left by a killed run is known for what it is. The writer holds an
// advisory lock on it as long as it is open, so a cleaner tells a live one
// from a leftover.
constexpr char TEMP_PREFIX[] = ".melkora-";
constexpr size_t TEMP_PREFIX_LENGTH = sizeof(TEMP_PREFIX) - 1;
constexpr size_t TEMP_NAME_LENGTH = TEMP_PREFIX_LENGTH + 6;

bool IsTempName(const char* name) {
    return strlen(name) == TEMP_NAME_LENGTH && strncmp(name, TEMP_PREFIX, TEMP_PREFIX_LENGTH) == 0;
}

// Creates and locks a new temporary file in folder; its descriptor, or -1.
// A cleaner may take a new file for a leftover in the moment before it is
// locked; the name is then checked to be still this file's, or another is
// made.
int MakeLockedTemp(const std::string& folder, std::string& temp) {
    for (int attempt = 0; attempt < 8; ++attempt) {
        temp = folder + "/" + TEMP_PREFIX + "XXXXXX";
        int fd = mkostemp(temp.data(), O_CLOEXEC);
        if (fd < 0) {
            return -1;
        }
        struct stat opened;
        struct stat named;
        if (flock(fd, LOCK_EX | LOCK_NB) == 0 && fstat(fd, &opened) == 0 &&
            lstat(temp.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
            opened.st_dev == named.st_dev) {
            return fd;
        }
        close(fd);
    }
    return -1;
}

// A test hook: with MELKORA_TEST_WRITE_LIMIT set to a number of bytes, the
// files of the process take that many bytes in all and then fail as a full
// disk would. Read once.
long long& WriteBudget() {
    static long long budget = [] {
        const char* text = getenv("MELKORA_TEST_WRITE_LIMIT");
        return text != nullptr && text[0] != 0 ? atoll(text) : -1LL;
    }();
    return budget;
}


} // namespace

unsigned ReplacementFileMode(const char* path) {
    struct stat info;
    if (path != nullptr && stat(path, &info) == 0) {
        return info.st_mode & 07777;
    }
    mode_t mask = 022;
    FILE* status = fopen("/proc/self/status", "re");
    if (status != nullptr) {
        char line[256];
        while (fgets(line, sizeof line, status) != nullptr) {
            if (strncmp(line, "Umask:", 6) == 0) {
                mask = static_cast<mode_t>(strtol(line + 6, nullptr, 8));
                break;
            }
        }
        fclose(status);
    }
    return 0666 & ~mask;
}

// SFilePath

SFilePath::SFilePath() : SFile(KIND_DISK) {}

SFilePath::SFilePath(const char* path, bool write, bool create, bool read, bool shared)
    : SFile(KIND_DISK) {
    Open(path, write, create, read, shared);
}

SFilePath::~SFilePath() {
    Close();
}

bool SFilePath::Open(const char* newPath, bool write, bool create, bool read, bool /*shared*/) {
    Close();
    if (newPath == nullptr || newPath[0] == 0) {
        return false;
    }
    // "e" asks glibc for close-on-exec, so launched programs do not inherit.
    const char* mode = nullptr;
    if (write && read) {
        mode = create ? "w+be" : "r+be";
    } else if (write) {
        mode = create ? "wbe" : "abe";
    } else if (read) {
        mode = "rbe";
    }
    if (mode == nullptr) {
        return false;
    }
    FILE* stream = fopen(newPath, mode);
    if (stream == nullptr) {
        return false;
    }
    struct stat info;
    if (fstat(fileno(stream), &info) != 0 || S_ISDIR(info.st_mode)) {
        fclose(stream);
        return false;
    }
    handle = stream;
    path = newPath;
    return true;
}

bool SFilePath::OpenTemp() {
    Close();
    std::string name = std::string(g_get_tmp_dir()) + "/tmpXXXXXX";
    int fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    FILE* stream = fdopen(fd, "w+b");
    if (stream == nullptr) {
        close(fd);
        unlink(name.c_str());
        return false;
    }
    handle = stream;
    path = name.c_str();
    tempPath = name.c_str();
    isTemp = true;
    return true;
}

bool SFilePath::OpenReplace(const char* target) {
    Close();
    if (target == nullptr || target[0] == 0) {
        return false;
    }
    std::string resolved = target;
    struct stat info;
    if (lstat(target, &info) == 0 && S_ISLNK(info.st_mode)) {
        char* real = realpath(target, nullptr);
        if (real != nullptr) {
            resolved = real;
            free(real);
        }
    }
    if (stat(resolved.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        return false;
    }
    size_t slash = resolved.rfind('/');
    if (slash + 1 >= resolved.size()) {
        return false;
    }
    std::string temp;
    int fd = MakeLockedTemp(FolderOf(resolved), temp);
    if (fd < 0) {
        return false;
    }
    FILE* stream = fdopen(fd, "w+b");
    if (stream == nullptr) {
        close(fd);
        unlink(temp.c_str());
        return false;
    }
    handle = stream;
    path = resolved.c_str();
    tempPath = temp.c_str();
    isReplace = true;
    return true;
}

bool SFilePath::Commit() {
    FILE* stream = static_cast<FILE*>(handle);
    if (stream == nullptr || !isReplace) {
        return false;
    }
    bool ok = fflush(stream) == 0 && ferror(stream) == 0 && !failedWrite;
    mode_t mode = static_cast<mode_t>(ReplacementFileMode(path.c_str()));
    int fd = fileno(stream);
    ok = ok && fchmod(fd, mode) == 0 && fsync(fd) == 0;
    // Renamed while still open and locked, so no cleaner takes it for a
    // leftover in between.
    ok = ok && rename(tempPath.c_str(), path.c_str()) == 0;
    ok = fclose(stream) == 0 && ok;
    handle = nullptr;
    lastOp = OP_NONE;
    if (ok) {
        SyncFolder(FolderOf(path.c_str()));
    } else {
        unlink(tempPath.c_str());
    }
    path.Empty();
    tempPath.Empty();
    isReplace = false;
    return ok;
}

bool SFilePath::Flush() {
    FILE* stream = static_cast<FILE*>(handle);
    return stream != nullptr && fflush(stream) == 0 && ferror(stream) == 0 && !failedWrite;
}

void SFilePath::Close() {
    if (handle != nullptr) {
        fclose(static_cast<FILE*>(handle));
        handle = nullptr;
    }
    if (!tempPath.IsEmpty()) {
        unlink(tempPath.c_str());
    }
    path.Empty();
    tempPath.Empty();
    isTemp = false;
    failedWrite = false;
    isReplace = false;
    lastOp = OP_NONE;
}

void SFilePath::PrepareFor(LastOp op) {
    if (lastOp != OP_NONE && lastOp != op) {
        fseeko(static_cast<FILE*>(handle), 0, SEEK_CUR);
    }
    lastOp = op;
}

bool SFilePath::Digest(SDigest& digest) {
    if (handle == nullptr) {
        return false;
    }
    int saved = GetPosition();
    Seek(0);
    std::unique_ptr<char[]> block(new char[DISK_BLOCK]);
    int got;
    while ((got = Read(block.get(), DISK_BLOCK)) > 0) {
        digest.Update(block.get(), got);
    }
    FILE* stream = static_cast<FILE*>(handle);
    bool ok = ferror(stream) == 0;
    clearerr(stream);
    Seek(saved);
    return ok;
}

bool SFilePath::GetCrc32(uint32_t& crc) {
    SDigest digest(SDigest::DIGEST_CRC32);
    if (!Digest(digest)) {
        return false;
    }
    crc = digest.GetCrc32();
    return true;
}

SString SFilePath::GetMd5() {
    SDigest digest(SDigest::DIGEST_MD5);
    return Digest(digest) ? digest.GetHex() : SString();
}

SString SFilePath::GetSha1() {
    SDigest digest(SDigest::DIGEST_SHA1);
    return Digest(digest) ? digest.GetHex() : SString();
}

int SFilePath::Write(const void* buffer, int count) {
    if (handle == nullptr || buffer == nullptr || count < 1) {
        return 0;
    }
    count = std::min(count, INT_MAX - GetPosition());
    PrepareFor(OP_WRITE);
    static std::mutex budgetMutex;
    if (WriteBudget() >= 0) {
        std::lock_guard<std::mutex> lock(budgetMutex);
        long long& budget = WriteBudget();
        int allowed = static_cast<int>(std::min<long long>(count, budget));
        budget -= allowed;
        int wrote = static_cast<int>(
            fwrite(buffer, 1, static_cast<size_t>(allowed), static_cast<FILE*>(handle)));
        if (wrote < count) {
            errno = ENOSPC;
            failedWrite = true;
        }
        return wrote;
    }
    return static_cast<int>(
        fwrite(buffer, 1, static_cast<size_t>(count), static_cast<FILE*>(handle)));
}

int SFilePath::Read(void* buffer, int count) {
    if (handle == nullptr || buffer == nullptr || count < 1) {
        return 0;
    }
    PrepareFor(OP_READ);
    return static_cast<int>(
        fread(buffer, 1, static_cast<size_t>(count), static_cast<FILE*>(handle)));
}

int SFilePath::Seek(int position) {
    if (handle == nullptr) {
        return 0;
    }
    int size = GetSize();
    if (position < 0 || position > size) {
        position = size;
    }
    fseeko(static_cast<FILE*>(handle), position, SEEK_SET);
    lastOp = OP_NONE;
    return position;
}

int SFilePath::GetPosition() const {
    return handle != nullptr ? ClipToInt(ftello(static_cast<FILE*>(handle))) : 0;
}

bool SFilePath::SetSize(int size) {
    if (handle == nullptr || size < 0) {
        return false;
    }
    FILE* stream = static_cast<FILE*>(handle);
    fflush(stream);
    if (ftruncate(fileno(stream), size) != 0) {
        return false;
    }
    fseeko(stream, size, SEEK_SET);
    lastOp = OP_NONE;
    return true;
}

int SFilePath::GetSize() const {
    if (handle == nullptr) {
        return 0;
    }
    FILE* stream = static_cast<FILE*>(handle);
    if (lastOp == OP_WRITE) {
        fflush(stream);
    }
    struct stat info;
    return fstat(fileno(stream), &info) == 0 ? ClipToInt(info.st_size) : 0;
}

bool SFilePath::IsEnd() const {
    return handle == nullptr || GetPosition() >= GetSize();
}

int SFilePath::FindBytes(const void* buffer, int count, bool after) {
    if (handle == nullptr || buffer == nullptr || count < 1) {
        return -1;
    }
    // Byte by byte with a step back after a mismatch finds the first whole
    // match, and gives up once fewer than count bytes remain: the search
    // below reads in blocks and gives the same result and final position.
    int origin = GetPosition();
    int lastStart = GetSize() - count; // the last start with count bytes left
    std::string_view pattern(static_cast<const char*>(buffer), static_cast<size_t>(count));
    // window holds the bytes from windowStart on: the block just read plus
    // the last count - 1 bytes before it, so a match across blocks is seen.
    std::string window;
    int windowStart = origin;
    std::unique_ptr<char[]> block(new char[DISK_BLOCK]);
    int got;
    while ((got = Read(block.get(), DISK_BLOCK)) > 0) {
        window.append(block.get(), static_cast<size_t>(got));
        size_t at = std::string_view(window).find(pattern);
        if (at != std::string_view::npos) {
            int start = windowStart + static_cast<int>(at);
            Seek(start + count);
            return after ? start + count : start;
        }
        size_t keep = static_cast<size_t>(count - 1);
        if (window.size() > keep) {
            windowStart += static_cast<int>(window.size() - keep);
            window.erase(0, window.size() - keep);
        }
    }
    Seek(std::max(origin, lastStart + 1));
    return -1;
}

// Atomic replacement.

bool WriteFileAtomic(const char* path, const void* data, int count) {
    if (count < 0 || (data == nullptr && count > 0)) {
        return false;
    }
    SFilePath file;
    if (!file.OpenReplace(path)) {
        return false;
    }
    if (count > 0 && file.Write(data, count) != count) {
        return false; // the destructor deletes the temporary file
    }
    return file.Commit();
}

int RemoveLeftoverTempFiles(const char* folder) {
    if (folder == nullptr || folder[0] == 0) {
        return 0;
    }
    DIR* dir = opendir(folder);
    if (dir == nullptr) {
        return 0;
    }
    int removed = 0;
    int dirFd = dirfd(dir);
    while (struct dirent* item = readdir(dir)) {
        if (!IsTempName(item->d_name)) {
            continue;
        }
        int fd = openat(dirFd, item->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        // Unlocked means its writer is gone; the name must still be this file.
        struct stat opened;
        struct stat named;
        if (flock(fd, LOCK_EX | LOCK_NB) == 0 && fstat(fd, &opened) == 0 &&
            S_ISREG(opened.st_mode) &&
            fstatat(dirFd, item->d_name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
            opened.st_ino == named.st_ino && opened.st_dev == named.st_dev &&
            unlinkat(dirFd, item->d_name, 0) == 0) {
            ++removed;
        }
        close(fd);
    }
    closedir(dir);
    return removed;
}

// The walk reads each folder once with getdents64 and trusts the entry type
// it gives, so a folder costs one open and a few system calls and a plain
// file costs no call at all. Only links and file systems that give no type
// are asked with fstatat.
#include "library/statistics.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

#include "foundation/hidden_list.h"
#include "library/media.h"

namespace {

// Buffer of one getdents64 call.
constexpr size_t DIRENT_BUFFER = 32768;

struct LinuxDirent64 {
    ino64_t d_ino;
    off64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[];
};

bool IsDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

// A folder reached through a symbolic link is told apart, since only such
// a folder can lead back to one being walked.
enum class Kind { Other, File, Folder, LinkedFolder };

Kind KindOf(int dirFd, const LinuxDirent64* entry) {
    if (entry->d_type == DT_REG) {
        return Kind::File;
    }
    if (entry->d_type == DT_DIR) {
        return Kind::Folder;
    }
    if (entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN) {
        return Kind::Other;
    }
    struct stat status;
    if (fstatat(dirFd, entry->d_name, &status, 0) != 0) {
        return Kind::Other;
    }
    if (S_ISDIR(status.st_mode)) {
        return entry->d_type == DT_LNK ? Kind::LinkedFolder : Kind::Folder;
    }
    return S_ISREG(status.st_mode) ? Kind::File : Kind::Other;
}

struct Counts {
    uint32_t songs = 0;
    uint32_t videos = 0;
    uint32_t radios = 0;
};

// One folder met by the walk, in the order met; counts are its subtree's.
struct FolderRecord {
    std::string path;
    Counts counts;
};

// The walk over one folder's entries. What it visits: each file and folder
// of the folder, with flags telling whether the entry is hidden.
class Walker {
public:
    explicit Walker(bool withHidden) : withHidden(withHidden) {}

    // Calls onFile(name, hidden) for files and onFolder(name, hidden,
    // linked) for folders, after reading the whole folder. False when the folder
    // cannot be read.
    template <typename OnFile, typename OnFolder>
    bool ReadFolder(int dirFd, OnFile onFile, OnFolder onFolder) {
        names.clear();
        kinds.clear();
        bool hasHiddenFile = false;
        for (;;) {
            long got = syscall(SYS_getdents64, dirFd, buffer, sizeof(buffer));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got <= 0) {
                break;
            }
            for (long offset = 0; offset < got;) {
                auto* entry = reinterpret_cast<LinuxDirent64*>(buffer + offset);
                offset += entry->d_reclen;
                if (IsDotOrDotDot(entry->d_name)) {
                    continue;
                }
                Kind kind = KindOf(dirFd, entry);
                if (kind == Kind::Other) {
                    continue;
                }
                if (kind == Kind::File && strcmp(entry->d_name, HIDDEN_LIST_NAME) == 0) {
                    hasHiddenFile = true;
                }
                kinds.push_back({names.size(), kind});
                names.append(entry->d_name, strlen(entry->d_name) + 1);
            }
        }
        std::string content;
        std::unordered_set<std::string_view> listed;
        if (hasHiddenFile && !withHidden) {
            content = ReadHiddenList(openat(dirFd, HIDDEN_LIST_NAME, O_RDONLY | O_CLOEXEC));
            ForEachHiddenName(content, [&listed](std::string_view name) { listed.insert(name); });
        }
        for (const auto& [offset, kind] : kinds) {
            const char* name = names.data() + offset;
            bool hidden = name[0] == '.' ||
                          (!listed.empty() && listed.count(std::string_view(name)) != 0);
            if (kind == Kind::File) {
                onFile(name, hidden);
            } else {
                onFolder(name, hidden, kind == Kind::LinkedFolder);
            }
        }
        return true;
    }

private:
    bool withHidden;
    alignas(8) char buffer[DIRENT_BUFFER];
    std::string names; // each followed by a zero byte
    std::vector<std::pair<size_t, Kind>> kinds;
};

// The identity of an open folder, for the guard against links that lead
// back to a folder being walked.
std::pair<dev_t, ino_t> IdentityOf(int fd) {
    struct stat status;
    if (fstat(fd, &status) != 0) {
        return {0, 0};
    }
    return {status.st_dev, status.st_ino};
}

// The folders being walked, from the root down. A folder's identity is only
// asked for when a link to a folder is met, which is rare.
class Chain {
public:
    void Push(int fd) { levels.push_back({fd, false, {0, 0}}); }
    void Pop() { levels.pop_back(); }
    // True when fd names a folder already on the chain.
    bool Loops(int fd) {
        std::pair<dev_t, ino_t> identity = IdentityOf(fd);
        for (Level& level : levels) {
            if (!level.known) {
                level.identity = IdentityOf(level.fd);
                level.known = true;
            }
            if (level.identity == identity) {
                return true;
            }
        }
        return false;
    }

private:
    struct Level {
        int fd;
        bool known;
        std::pair<dev_t, ino_t> identity;
    };
    std::vector<Level> levels;
};

// The subfolders a walk goes down into, gathered while the walker's buffers
// are in use: each name is kept behind 'L' for a folder reached through a
// link or 'D' for a plain one, and followed by a zero byte.
class SubfolderList {
public:
    void Add(const char* name, bool linked) {
        names.push_back(linked ? 'L' : 'D');
        names.append(name, strlen(name) + 1);
    }
    // Opens each folder below fd and calls enter(childFd, name, length,
    // linked), which takes childFd; folders that do not open are skipped.
    template <typename Visit> void Enter(int fd, Visit enter) const {
        for (size_t at = 0; at < names.size();) {
            bool linked = names[at] == 'L';
            const char* name = names.data() + at + 1;
            size_t length = strlen(name);
            at += length + 2;
            int child = openat(fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (child >= 0) {
                enter(child, name, length, linked);
            }
        }
    }

private:
    std::string names;
};

class StatsWalk {
public:
    std::vector<FolderRecord> records;

    // Walks the folder open at fd, whose path is path (ending in "/"), and
    // returns its subtree's counts. Takes fd and closes it.
    Counts Walk(int fd, std::string& path, bool viaLink) {
        if (viaLink && chain.Loops(fd)) {
            close(fd);
            return Counts();
        }
        size_t record = records.size();
        records.push_back({path, Counts()});
        chain.Push(fd);
        Counts counts;
        SubfolderList subfolders;
        walker.ReadFolder(
            fd,
            [&counts](const char* name, bool hidden) {
                if (hidden) {
                    return;
                }
                const char* dot = strrchr(name, '.');
                if (dot == nullptr) {
                    return;
                }
                switch (GetMediaClassOfExtension(dot + 1)) {
                case MEDIA_SONG:
                    ++counts.songs;
                    break;
                case MEDIA_VIDEO:
                    ++counts.videos;
                    break;
                case MEDIA_RADIO:
                    ++counts.radios;
                    break;
                default:
                    break;
                }
            },
            [&subfolders](const char* name, bool hidden, bool linked) {
                if (!hidden) {
                    subfolders.Add(name, linked);
                }
            });
        size_t pathLength = path.size();
        subfolders.Enter(fd, [&](int child, const char* name, size_t length, bool linked) {
            path.append(name, length);
            path.push_back('/');
            Counts sub = Walk(child, path, linked);
            path.resize(pathLength);
            counts.songs += sub.songs;
            counts.videos += sub.videos;
            counts.radios += sub.radios;
        });
        chain.Pop();
        close(fd);
        records[record].counts = counts;
        return counts;
    }

private:
    Walker walker{false};
    Chain chain;
};

} // namespace

SString FormatFolderCounts(unsigned songs, unsigned videos, unsigned radios) {
    SString text;
    text.Format("<b>%u</b> song%s, <b>%u</b> video%s & <b>%u</b> radio%s", songs,
                songs >= 2 ? "s" : "", videos, videos >= 2 ? "s" : "", radios,
                radios >= 2 ? "s" : "");
    return text;
}

SString PStatsTable::FormatTotals() const {
    SString text;
    text.Format("%u song%s, %u video%s, %u radio%s", totalSongs, totalSongs >= 2 ? "s" : "",
                totalVideos, totalVideos >= 2 ? "s" : "", totalRadios,
                totalRadios >= 2 ? "s" : "");
    return text;
}

SString PStatsTable::FormatFolder(int index) const {
    if (index < 0 || index >= GetCount()) {
        return SString("");
    }
    return FormatFolderCounts(songs[size_t(index)], videos[size_t(index)], radios[size_t(index)]);
}

PStatsTable CountLibrary(const char* root) {
    PStatsTable table;
    if (root == nullptr || root[0] == 0) {
        return table;
    }
    std::string path(root);
    if (path.back() != '/') {
        path.push_back('/');
    }
    StatsWalk walk;
    int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    Counts totals;
    if (fd >= 0) {
        totals = walk.Walk(fd, path, false);
    } else {
        walk.records.push_back({path, Counts()});
    }
    table.totalSongs = totals.songs;
    table.totalVideos = totals.videos;
    table.totalRadios = totals.radios;

    std::vector<FolderRecord>& records = walk.records;
    std::sort(records.begin(), records.end(), [](const FolderRecord& a, const FolderRecord& b) {
        return strcmp(a.path.c_str(), b.path.c_str()) < 0;
    });
    // A folder reached twice through links keeps its first place only.
    records.erase(std::unique(records.begin(), records.end(),
                              [](const FolderRecord& a, const FolderRecord& b) {
                                  return a.path == b.path;
                              }),
                  records.end());
    int count = int(records.size());
    if (!table.paths.SetSize(count)) {
        return PStatsTable();
    }
    table.songs.reserve(records.size());
    table.videos.reserve(records.size());
    table.radios.reserve(records.size());
    for (int i = 0; i < count; ++i) {
        const FolderRecord& record = records[size_t(i)];
        table.paths.GetAt(i) = new SString(record.path.c_str());
        table.songs.push_back(uint16_t(record.counts.songs));
        table.videos.push_back(uint16_t(record.counts.videos));
        table.radios.push_back(uint16_t(record.counts.radios));
    }
    return table;
}

namespace {

bool IsIniName(const char* name) {
    size_t length = strlen(name);
    return length >= 4 && strcasecmp(name + length - 4, ".ini") == 0;
}

// Takes fd and closes it; path ends in "/".
void PurgeFolder(int fd, bool viaLink, Chain& chain, Walker& walker, int& deleted) {
    if (viaLink && chain.Loops(fd)) {
        close(fd);
        return;
    }
    chain.Push(fd);
    SubfolderList folders;
    walker.ReadFolder(
        fd,
        [&](const char* name, bool) {
            struct stat status;
            if (IsIniName(name) && fstatat(fd, name, &status, 0) == 0 && S_ISREG(status.st_mode) &&
                status.st_size == 0 && unlinkat(fd, name, 0) == 0) {
                ++deleted;
            }
        },
        [&folders](const char* name, bool, bool linked) { folders.Add(name, linked); });
    folders.Enter(fd, [&](int child, const char*, size_t, bool linked) {
        PurgeFolder(child, linked, chain, walker, deleted);
    });
    chain.Pop();
    close(fd);
}

} // namespace

int PurgeEmptyIni(const char* root) {
    if (root == nullptr || root[0] == 0) {
        return 0;
    }
    std::string path(root);
    if (path.back() != '/') {
        path.push_back('/');
    }
    int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return 0;
    }
    int deleted = 0;
    Chain chain;
    Walker walker(true);
    PurgeFolder(fd, false, chain, walker, deleted);
    return deleted;
}

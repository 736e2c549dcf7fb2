// The walk reads each folder once with getdents64 and trusts the entry type
// it gives, so a folder costs one open and a few system calls and a plain
// file costs no call at all. Only links and file systems that give no type
// are asked with fstatat.
#include "library/statistics.h"

#include <algorithm>
#include <climits>
#include <cstdint>
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
#include "foundation/walk_guard.h"
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
    bool linked = entry->d_type == DT_LNK;
    if (!linked && fstatat(dirFd, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        linked = S_ISLNK(status.st_mode); // a file system that gives no type
    }
    if (fstatat(dirFd, entry->d_name, &status, 0) != 0) {
        return Kind::Other;
    }
    if (S_ISDIR(status.st_mode)) {
        return linked ? Kind::LinkedFolder : Kind::Folder;
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

// The subfolders a walk goes down into, gathered while the walker's buffers
// are in use: each name is kept behind 'L' for a folder reached through a
// link or 'D' for a plain one, and followed by a zero byte.
class SubfolderList {
public:
    void Add(const char* name, bool linked) {
        names.push_back(linked ? 'L' : 'D');
        names.append(name, strlen(name) + 1);
    }
    // The next folder from the cursor on; false at the end.
    bool Next(size_t& at, const char*& name, size_t& length, bool& linked) const {
        if (at >= names.size()) {
            return false;
        }
        linked = names[at] == 'L';
        name = names.data() + at + 1;
        length = strlen(name);
        at += length + 2;
        return true;
    }

private:
    std::string names;
};

struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const Identity& other) const {
        return device == other.device && inode == other.inode;
    }
};

bool IdentityOf(int fd, Identity& identity) {
    struct stat status;
    if (fstat(fd, &status) != 0) {
        return false;
    }
    identity = {status.st_dev, status.st_ino};
    return true;
}

// How many folders of the walk's stack keep their descriptor open. A folder
// further up is opened again (through ".." of its child, or by name from
// the nearest open folder above) when the walk comes back to it, so a tree
// of any depth needs no more descriptors than this.
constexpr size_t OPEN_FOLDERS = 32;

// A walk over a folder tree on a stack of its own: depth costs memory in
// proportion to the names on the way down and never the call stack, and
// one path string serves every level. Folders are opened relative to their
// parent, so a path longer than the system's limit is no obstacle.
//
// Visit(fd, subfolders, data) reads the folder open at fd, adding the
// subfolders to go into and filling the folder's own data; Leave(data,
// parentData) is called when the folder and everything below it is done
// (parentData is null for the top). Links to folders are followed under
// the walk guard's rule, or not at all without followLinks.
template <typename Data> class TreeWalk {
public:
    struct Frame {
        int fd = -1;
        bool viaLink = false;
        Identity identity;
        std::string name;
        SubfolderList subfolders;
        size_t cursor = 0;
        size_t pathLength = 0;
        Data data{};
    };

    template <typename Visit, typename Leave>
    void Run(int topFd, std::string& path, bool followLinks, Visit visit, Leave leave) {
        SWalkGuard guard;
        guard.Start(topFd);
        stack.clear();
        stack.emplace_back();
        Frame& top = stack.back();
        top.fd = topFd;
        IdentityOf(topFd, top.identity);
        top.pathLength = path.size();
        visit(topFd, top.subfolders, top.data, path);
        while (!stack.empty()) {
            size_t index = stack.size() - 1;
            const char* name;
            size_t length;
            bool linked;
            if (!stack[index].subfolders.Next(stack[index].cursor, name, length, linked)) {
                Pop(leave);
                continue;
            }
            if (linked && !followLinks) {
                continue;
            }
            if (!Reopen(index)) {
                stack[index].cursor = SIZE_MAX; // the folder is gone: leave it
                continue;
            }
            int child = openat(stack[index].fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (child < 0) {
                continue;
            }
            uint64_t device = 0;
            uint64_t inode = 0;
            if (!guard.Enter(child, linked, &device, &inode)) {
                close(child);
                continue;
            }
            Frame frame;
            frame.fd = child;
            frame.viaLink = linked;
            frame.identity = {static_cast<dev_t>(device), static_cast<ino_t>(inode)};
            frame.name.assign(name, length);
            path.resize(stack[index].pathLength);
            path.append(name, length);
            path.push_back('/');
            frame.pathLength = path.size();
            visit(child, frame.subfolders, frame.data, path);
            stack.push_back(std::move(frame));
            if (stack.size() > OPEN_FOLDERS + 1) {
                Frame& far = stack[stack.size() - 1 - OPEN_FOLDERS];
                if (far.fd >= 0 && &far != &stack.front()) {
                    close(far.fd);
                    far.fd = -1;
                }
            }
        }
    }

private:
    template <typename Leave> void Pop(Leave leave) {
        size_t index = stack.size() - 1;
        Frame& frame = stack[index];
        if (index > 0) {
            Frame& parent = stack[index - 1];
            // Open the parent again from here while this folder is open.
            if (parent.fd < 0 && frame.fd >= 0 && !frame.viaLink) {
                int up = openat(frame.fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
                Identity identity;
                if (up >= 0 && IdentityOf(up, identity) && identity == parent.identity) {
                    parent.fd = up;
                } else if (up >= 0) {
                    close(up);
                }
            }
            leave(frame.data, &parent.data);
            if (frame.fd >= 0) {
                close(frame.fd);
            }
        } else {
            leave(frame.data, static_cast<Data*>(nullptr));
            // The top's descriptor belongs to the caller.
        }
        stack.pop_back();
    }

    // Makes sure the folder at index has its descriptor, opening it by name
    // from the nearest open folder above; false when that fails or finds
    // another folder than the one walked before.
    bool Reopen(size_t index) {
        if (stack[index].fd >= 0) {
            return true;
        }
        size_t open = index;
        while (stack[open].fd < 0) {
            --open; // the top is always open
        }
        for (size_t at = open + 1; at <= index; ++at) {
            Frame& frame = stack[at];
            int fd = openat(stack[at - 1].fd, frame.name.c_str(),
                            O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            Identity identity;
            if (fd >= 0 && (!IdentityOf(fd, identity) || !(identity == frame.identity))) {
                close(fd);
                fd = -1;
            }
            if (fd < 0) {
                return false;
            }
            frame.fd = fd;
        }
        return true;
    }

    std::vector<Frame> stack;
};

// The longest path a row of the table may have: a folder deeper than the
// system's path limit counts toward the folders above it but has no row,
// since no path-based call could name it.
constexpr size_t MAX_ROW_PATH = PATH_MAX - 1;

constexpr size_t NO_RECORD = SIZE_MAX;

struct StatsData {
    Counts counts;
    size_t record = NO_RECORD;
};

class StatsWalk {
public:
    std::vector<FolderRecord> records;

    // Walks the folder open at fd (taken and closed), whose path is path
    // (ending in "/"), and returns the whole tree's counts.
    Counts Walk(int fd, std::string& path) {
        Counts totals;
        TreeWalk<StatsData> walk;
        walk.Run(
            fd, path, true,
            [this](int folderFd, SubfolderList& subfolders, StatsData& data,
                   const std::string& folderPath) {
                if (folderPath.size() <= MAX_ROW_PATH) {
                    data.record = records.size();
                    records.push_back({folderPath, Counts()});
                }
                Counts& counts = data.counts;
                walker.ReadFolder(
                    folderFd,
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
            },
            [this, &totals](StatsData& data, StatsData* parent) {
                if (data.record != NO_RECORD) {
                    records[data.record].counts = data.counts;
                }
                if (parent != nullptr) {
                    parent->counts.songs += data.counts.songs;
                    parent->counts.videos += data.counts.videos;
                    parent->counts.radios += data.counts.radios;
                } else {
                    totals = data.counts;
                }
            });
        close(fd);
        return totals;
    }

private:
    Walker walker{false};
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
        totals = walk.Walk(fd, path);
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
    // Links are never followed: only files inside the root's own tree are
    // deleted, and a link named like an ini file is not a file.
    int deleted = 0;
    Walker walker(true);
    TreeWalk<bool> walk;
    walk.Run(
        fd, path, false,
        [&](int folderFd, SubfolderList& folders, bool&, const std::string&) {
            walker.ReadFolder(
                folderFd,
                [&](const char* name, bool) {
                    struct stat status;
                    if (IsIniName(name) &&
                        fstatat(folderFd, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                        S_ISREG(status.st_mode) && status.st_size == 0 &&
                        unlinkat(folderFd, name, 0) == 0) {
                        ++deleted;
                    }
                },
                [&folders](const char* name, bool, bool linked) { folders.Add(name, linked); });
        },
        [](bool&, bool*) {});
    close(fd);
    return deleted;
}

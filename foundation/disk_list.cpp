// Folder listing and the attributes read from it: Enumerate and its
// filters, the listing order, file-name filters, and hidden names (a leading
// "." or a line in the folder's ".hidden" file).
#include "foundation/disk.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>
#include <vector>

#include "foundation/array.h"
#include "foundation/hidden_list.h"
#include "foundation/walk_guard.h"

namespace {

constexpr const char* HIDDEN_FILE = HIDDEN_LIST_NAME;

unsigned char FoldAscii(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

// One step past the UTF-8 character at text (a stray byte counts as one).
const unsigned char* NextCharacter(const unsigned char* text) {
    ++text;
    while ((*text & 0xC0) == 0x80) {
        ++text;
    }
    return text;
}

// The matcher behind MatchFileFilter, over the filter [filter, filterEnd).
// A "*" that fails to carry on resumes one character further, so the work
// stays bounded by filter length times name length, without recursion.
bool MatchRange(const unsigned char* filter, const unsigned char* filterEnd,
                const unsigned char* name) {
    const unsigned char* starFilter = nullptr;
    const unsigned char* starName = nullptr;
    while (*name != 0) {
        if (filter < filterEnd && *filter == '*') {
            starFilter = ++filter;
            starName = name;
            continue;
        }
        if (filter < filterEnd && *filter == '?') {
            ++filter;
            name = NextCharacter(name);
            continue;
        }
        if (filter < filterEnd && FoldAscii(*filter) == FoldAscii(*name)) {
            ++filter;
            ++name;
            continue;
        }
        if (starFilter == nullptr) {
            return false;
        }
        filter = starFilter;
        starName = NextCharacter(starName);
        name = starName;
    }
    while (filter < filterEnd && *filter == '*') {
        ++filter;
    }
    return filter == filterEnd;
}

bool IsDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

enum class Kind : unsigned char { File, Folder };

// The entries of one folder, read once: names in one block, each entry
// with its kind (links resolved) and whether it is hidden.
class FolderListing {
public:
    struct Entry {
        uint32_t offset;
        Kind kind;
        bool hidden;
        bool linked; // reached through a symbolic link
    };

    // folder is "" for the current folder, else ends in "/" or names the
    // folder. withHidden also works out which entries are hidden. With a
    // guard, the folder is read only when the guard lets the walk in
    // (viaLink tells how the walk reached it).
    bool Read(const char* folder, bool withHidden, SWalkGuard* guard = nullptr,
              bool viaLink = false) {
        DIR* dir = opendir(folder[0] != 0 ? folder : ".");
        if (dir == nullptr) {
            return false;
        }
        if (guard != nullptr && !guard->Enter(dirfd(dir), viaLink)) {
            closedir(dir);
            return false;
        }
        bool hasHiddenFile = false;
        while (struct dirent* item = readdir(dir)) {
            const char* name = item->d_name;
            if (IsDotOrDotDot(name)) {
                continue;
            }
            Kind kind;
            bool linked;
            if (!Classify(dirfd(dir), item, kind, linked)) {
                continue;
            }
            hasHiddenFile = hasHiddenFile || (kind == Kind::File && strcmp(name, HIDDEN_FILE) == 0);
            entries.push_back({static_cast<uint32_t>(names.size()), kind, name[0] == '.',
                               linked});
            names.insert(names.end(), name, name + strlen(name) + 1);
        }
        if (withHidden && hasHiddenFile) {
            MarkListedNames(dirfd(dir));
        }
        closedir(dir);
        return true;
    }

    void Sort() {
        const char* base = names.data();
        std::sort(entries.begin(), entries.end(), [base](const Entry& a, const Entry& b) {
            return CompareListingNames(base + a.offset, base + b.offset) < 0;
        });
    }

    const char* Name(const Entry& entry) const { return names.data() + entry.offset; }

    std::vector<Entry> entries;

private:
    // Files and folders are kept; a link counts as what it points to, and
    // anything else (devices, pipes, broken links) is left out. linked tells
    // a link apart, also on file systems that give no entry type.
    static bool Classify(int dirFd, const struct dirent* item, Kind& kind, bool& linked) {
        linked = item->d_type == DT_LNK;
        switch (item->d_type) {
        case DT_DIR:
            kind = Kind::Folder;
            return true;
        case DT_REG:
            kind = Kind::File;
            return true;
        case DT_LNK:
        case DT_UNKNOWN: {
            struct stat status;
            if (item->d_type == DT_UNKNOWN &&
                fstatat(dirFd, item->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
                linked = S_ISLNK(status.st_mode);
            }
            if (fstatat(dirFd, item->d_name, &status, 0) != 0) {
                return false;
            }
            if (S_ISDIR(status.st_mode)) {
                kind = Kind::Folder;
                return true;
            }
            if (S_ISREG(status.st_mode)) {
                kind = Kind::File;
                return true;
            }
            return false;
        }
        default:
            return false;
        }
    }

    void MarkListedNames(int dirFd) {
        std::string content = ReadHiddenList(openat(dirFd, HIDDEN_FILE, O_RDONLY | O_CLOEXEC));
        std::unordered_set<std::string_view> listed;
        ForEachHiddenName(content, [&listed](std::string_view line) { listed.insert(line); });
        if (listed.empty()) {
            return;
        }
        for (Entry& entry : entries) {
            if (!entry.hidden && listed.count(Name(entry)) != 0) {
                entry.hidden = true;
            }
        }
    }

    std::vector<char> names;
};

// The entries found, gathered as text and handed to the caller's array in
// one step at the end: the array grows its block 64 items at a time, which
// would copy the whole block again and again for a large tree.
class EntrySink {
public:
    void Add(const char* text) {
        starts.push_back(texts.size());
        texts.append(text);
        texts.push_back(0);
    }
    void MoveInto(SStringArray* result) {
        int added = static_cast<int>(starts.size());
        if (added == 0) {
            return;
        }
        int first = result->GetCount();
        if (!result->SetSize(first + added)) {
            return;
        }
        // The new slots are null; the array owns what is put there.
        for (int i = 0; i < added; ++i) {
            result->GetAt(first + i) = new SString(texts.data() + starts[i]);
        }
    }

private:
    std::string texts; // each entry ends in a zero byte
    std::vector<size_t> starts;
};

// What one Enumerate call asks for, after the flags are decoded.
struct Request {
    EntrySink* sink = nullptr; // null when only counting
    const char* filter = "";
    bool wantFolders = false;
    bool wantFiles = false;
    bool noHidden = false;
    bool recursive = false;
    int folderFilters = 0; // the ENUM_NO_FOLDERS_* bits
};

constexpr int FOLDER_FILTERS = ENUM_NO_FOLDERS_WITH_FILES | ENUM_NO_FOLDERS_WITHOUT_FILES |
                               ENUM_NO_FOLDERS_WITH_FOLDERS | ENUM_NO_FOLDERS_WITHOUT_FOLDERS;

// Whether a folder passes the folder filters, by what it directly holds
// (hidden entries left out under noHidden). An unreadable folder holds
// nothing.
bool PassesFolderFilters(const char* folder, int filters, bool noHidden) {
    bool hasFiles = false;
    bool hasFolders = false;
    FolderListing listing;
    if (listing.Read(folder, noHidden)) {
        for (const FolderListing::Entry& entry : listing.entries) {
            if (noHidden && entry.hidden) {
                continue;
            }
            hasFiles = hasFiles || entry.kind == Kind::File;
            hasFolders = hasFolders || entry.kind == Kind::Folder;
        }
    }
    return !((filters & ENUM_NO_FOLDERS_WITH_FILES) != 0 && hasFiles) &&
           !((filters & ENUM_NO_FOLDERS_WITHOUT_FILES) != 0 && !hasFiles) &&
           !((filters & ENUM_NO_FOLDERS_WITH_FOLDERS) != 0 && hasFolders) &&
           !((filters & ENUM_NO_FOLDERS_WITHOUT_FOLDERS) != 0 && !hasFolders);
}

void AddEntry(const Request& request, const char* text) {
    if (request.sink != nullptr) {
        request.sink->Add(text);
    }
}

// One folder of a wild listing on the walk's stack: its entries in listing
// order, which of them the filter keeps, the next one to visit, and the
// length of the shared path string at this folder.
struct WildFrame {
    FolderListing listing;
    std::vector<bool> matches;
    size_t next = 0;
    size_t pathLength = 0;
};

// Reads the folder at path into a frame; false when it cannot be read or
// the guard keeps the walk out.
bool OpenWildFrame(const Request& request, const std::string& path, SWalkGuard* guard,
                   bool viaLink, WildFrame& frame) {
    if (!frame.listing.Read(path.c_str(), request.noHidden, guard, viaLink)) {
        return false;
    }
    frame.listing.Sort();
    frame.pathLength = path.size();
    // Which entries the filter keeps.
    frame.matches.assign(frame.listing.entries.size(), false);
    for (size_t i = 0; i < frame.listing.entries.size(); ++i) {
        const FolderListing::Entry& entry = frame.listing.entries[i];
        if (request.noHidden && entry.hidden) {
            continue;
        }
        bool wanted = entry.kind == Kind::Folder ? request.wantFolders : request.wantFiles;
        frame.matches[i] = wanted && MatchFileFilter(request.filter, frame.listing.Name(entry));
    }
    return true;
}

// A wild filter: the folder's entries in listing order, as full paths,
// every folder directly before its contents. folder is "" or ends in "/".
// The walk keeps its folders on a stack of its own, so depth costs memory
// in proportion and never the call stack; one path string serves every
// level. The counts go to the top folder's own entries only.
int ListWild(const Request& request, const SString& folder, int* fileCount, int* folderCount) {
    // Only a walk that goes down needs the guard.
    SWalkGuard guard;
    SWalkGuard* walkGuard = nullptr;
    if (request.recursive && guard.Start(folder.IsEmpty() ? "." : folder.c_str())) {
        walkGuard = &guard;
    }
    std::string path(folder.c_str(), static_cast<size_t>(folder.GetLength()));
    std::vector<WildFrame> stack(1);
    if (!OpenWildFrame(request, path, walkGuard, false, stack.back())) {
        return 0;
    }
    int total = 0;
    while (!stack.empty()) {
        WildFrame& frame = stack.back();
        if (frame.next >= frame.listing.entries.size()) {
            stack.pop_back();
            continue;
        }
        size_t i = frame.next++;
        const FolderListing::Entry& entry = frame.listing.entries[i];
        if (request.noHidden && entry.hidden) {
            continue;
        }
        bool isTop = stack.size() == 1;
        path.resize(frame.pathLength);
        path.append(frame.listing.Name(entry));
        if (entry.kind == Kind::File) {
            if (frame.matches[i]) {
                AddEntry(request, path.c_str());
                ++total;
                if (isTop && fileCount != nullptr) {
                    ++*fileCount;
                }
            }
            continue;
        }
        path.push_back('/');
        bool match = frame.matches[i];
        if (match && request.folderFilters != 0 &&
            !PassesFolderFilters(path.c_str(), request.folderFilters, request.noHidden)) {
            match = false;
        }
        if (match) {
            AddEntry(request, path.c_str());
            ++total;
            if (isTop && folderCount != nullptr) {
                ++*folderCount;
            }
        }
        if (request.recursive) {
            bool linked = entry.linked;
            WildFrame child;
            if (walkGuard != nullptr && OpenWildFrame(request, path, walkGuard, linked, child)) {
                stack.push_back(std::move(child)); // frame is not used after this
            }
        }
    }
    return total;
}

// Adds one bare name found without a wild filter, when its kind is wanted
// and, for a folder, the folder filters let it pass.
int AddBareEntry(const Request& request, const SString& folder, const char* name, Kind kind,
                 int* fileCount, int* folderCount) {
    if (kind == Kind::File) {
        if (!request.wantFiles) {
            return 0;
        }
        AddEntry(request, name);
        if (fileCount != nullptr) {
            ++*fileCount;
        }
        return 1;
    }
    if (!request.wantFolders) {
        return 0;
    }
    SString entry(name);
    entry += "/";
    if (request.folderFilters != 0) {
        SString full = folder + entry;
        if (!PassesFolderFilters(full.c_str(), request.folderFilters, request.noHidden)) {
            return 0;
        }
    }
    AddEntry(request, entry.c_str());
    if (folderCount != nullptr) {
        ++*folderCount;
    }
    return 1;
}

// A filter without "*": one exact name, or with "?" the names it matches.
int ListExact(const Request& request, const SString& folder, int* fileCount, int* folderCount) {
    const char* filter = request.filter;
    if (filter[0] == 0 || IsDotOrDotDot(filter)) {
        return 0;
    }
    if (strchr(filter, '?') != nullptr) {
        FolderListing listing;
        if (!listing.Read(folder.c_str(), request.noHidden)) {
            return 0;
        }
        listing.Sort();
        int total = 0;
        for (const FolderListing::Entry& entry : listing.entries) {
            if ((request.noHidden && entry.hidden) ||
                !MatchFileFilter(filter, listing.Name(entry))) {
                continue;
            }
            total += AddBareEntry(request, folder, listing.Name(entry), entry.kind, fileCount,
                                  folderCount);
        }
        return total;
    }
    SString full = folder + filter;
    struct stat status;
    if (stat(full.c_str(), &status) != 0) {
        return 0;
    }
    Kind kind;
    if (S_ISREG(status.st_mode)) {
        kind = Kind::File;
    } else if (S_ISDIR(status.st_mode)) {
        kind = Kind::Folder;
    } else {
        return 0;
    }
    if (request.noHidden && SDisk().IsHidden(full.c_str())) {
        return 0;
    }
    return AddBareEntry(request, folder, filter, kind, fileCount, folderCount);
}

// Splits a path into its folder ("" or ending in "/") and its last name,
// ignoring one trailing "/".
void SplitPath(const char* path, std::string& folder, std::string& name) {
    std::string whole(path);
    if (whole.size() > 1 && whole.back() == '/') {
        whole.pop_back();
    }
    size_t slash = whole.rfind('/');
    if (slash == std::string::npos) {
        folder.clear();
        name = whole;
        return;
    }
    folder = whole.substr(0, slash + 1);
    name = whole.substr(slash + 1);
}

// Rewrites the ".hidden" file of a folder with the name added or removed,
// through a temporary file renamed over the old one.
bool UpdateHiddenFile(const std::string& folder, const std::string& name, bool hide) {
    if (name.empty() || name.find_first_of("\r\n") != std::string::npos) {
        return false;
    }
    std::string hiddenPath = folder + HIDDEN_FILE;
    struct stat status;
    bool exists = stat(hiddenPath.c_str(), &status) == 0;
    mode_t mode = exists ? (status.st_mode & 07777) : 0644;
    std::string content;
    if (exists) {
        int fd = open(hiddenPath.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) {
            return false;
        }
        content = ReadHiddenList(fd);
    }
    bool listed = false;
    std::string kept;
    ForEachHiddenName(content, [&](std::string_view line) {
        if (line == name) {
            listed = true;
            return;
        }
        kept.append(line);
        kept.push_back('\n');
    });
    if (listed == hide) {
        return true;
    }
    if (hide) {
        kept.append(name);
        kept.push_back('\n');
    }
    if (kept.empty()) {
        return unlink(hiddenPath.c_str()) == 0;
    }
    std::string temporary = hiddenPath + ".XXXXXX";
    int fd = mkstemp(temporary.data());
    if (fd < 0) {
        return false;
    }
    bool written = fchmod(fd, mode) == 0;
    size_t done = 0;
    while (written && done < kept.size()) {
        ssize_t wrote = write(fd, kept.data() + done, kept.size() - done);
        if (wrote < 0 && errno == EINTR) {
            continue;
        }
        written = wrote > 0;
        done += written ? static_cast<size_t>(wrote) : 0;
    }
    written = written && fsync(fd) == 0;
    written = close(fd) == 0 && written;
    if (!written || rename(temporary.c_str(), hiddenPath.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

} // namespace

std::string ReadHiddenList(int fd) {
    std::string content;
    if (fd < 0) {
        return content;
    }
    char block[8192];
    while (content.size() < MAX_HIDDEN_LIST) {
        ssize_t got = read(fd, block, sizeof(block));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        content.append(block, static_cast<size_t>(got));
    }
    close(fd);
    if (content.size() > MAX_HIDDEN_LIST) {
        content.resize(MAX_HIDDEN_LIST);
    }
    return content;
}

int CompareListingNames(const char* a, const char* b) {
    const auto* left = reinterpret_cast<const unsigned char*>(a);
    const auto* right = reinterpret_cast<const unsigned char*>(b);
    for (size_t i = 0;; ++i) {
        unsigned char x = FoldAscii(left[i]);
        unsigned char y = FoldAscii(right[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
        if (x == 0) {
            break;
        }
    }
    return strcmp(a, b);
}

bool MatchFileFilter(const char* filter, const char* name) {
    if (filter == nullptr || name == nullptr) {
        return false;
    }
    const auto* start = reinterpret_cast<const unsigned char*>(filter);
    const auto* text = reinterpret_cast<const unsigned char*>(name);
    size_t length = strlen(filter);
    if (MatchRange(start, start + length, text)) {
        return true;
    }
    // "name.*" also takes a name without any dot, as "*.*" takes them all.
    return length >= 2 && filter[length - 2] == '.' && filter[length - 1] == '*' &&
           strchr(name, '.') == nullptr && MatchRange(start, start + length - 2, text);
}

int SDisk::Enumerate(SStringArray* result, const char* pattern, int flags, int* fileCount,
                     int* folderCount) {
    if (pattern == nullptr || pattern[0] == 0) {
        return 0;
    }
    EntrySink sink;
    Request request;
    request.sink = result != nullptr ? &sink : nullptr;
    request.wantFolders = (flags & ENUM_FOLDERS) != 0;
    request.wantFiles = (flags & ENUM_FILES) != 0;
    request.noHidden = (flags & ENUM_NO_HIDDEN) != 0;
    request.recursive = (flags & ENUM_RECURSIVE) != 0;
    request.folderFilters = flags & FOLDER_FILTERS;
    if (!request.wantFolders && !request.wantFiles) {
        return 0;
    }
    // Both halves of a pair refuse every folder.
    int fileFilters = ENUM_NO_FOLDERS_WITH_FILES | ENUM_NO_FOLDERS_WITHOUT_FILES;
    int folderFilters = ENUM_NO_FOLDERS_WITH_FOLDERS | ENUM_NO_FOLDERS_WITHOUT_FOLDERS;
    if (request.wantFolders &&
        ((flags & fileFilters) == fileFilters || (flags & folderFilters) == folderFilters)) {
        request.wantFolders = false;
        if (!request.wantFiles) {
            return 0;
        }
    }
    if (!request.wantFolders) {
        request.folderFilters = 0;
    }

    const char* slash = strrchr(pattern, '/');
    SString folder;
    folder.Assign(pattern, slash != nullptr ? static_cast<int>(slash - pattern) + 1 : 0);
    request.filter = slash != nullptr ? slash + 1 : pattern;
    int found;
    if (strchr(request.filter, '*') == nullptr) {
        found = ListExact(request, folder, fileCount, folderCount);
    } else {
        found = ListWild(request, folder, fileCount, folderCount);
    }
    if (result != nullptr) {
        sink.MoveInto(result);
    }
    return found;
}

int SDisk::GetEntries(SStringArray* result, const char* pattern, bool recursive, bool folders,
                      bool files, bool onlyEmptyFolders, bool withHidden) {
    int flags = (recursive ? ENUM_RECURSIVE : 0) | (folders ? ENUM_FOLDERS : 0) |
                (files ? ENUM_FILES : 0) | (withHidden ? 0 : ENUM_NO_HIDDEN);
    if (onlyEmptyFolders) {
        flags |= ENUM_NO_FOLDERS_WITH_FILES | ENUM_NO_FOLDERS_WITH_FOLDERS;
    }
    return Enumerate(result, pattern, flags);
}

bool SDisk::IsHidden(const char* path) const {
    int attributes = GetAttributes(path);
    return attributes >= 0 && (attributes & DISK_HIDDEN) != 0;
}

int SDisk::GetAttributes(const char* path) const {
    struct stat status;
    if (path == nullptr || path[0] == 0 || stat(path, &status) != 0) {
        return -1;
    }
    int attributes = (status.st_mode & 0222) == 0 ? DISK_READONLY : 0;
    std::string folder;
    std::string name;
    SplitPath(path, folder, name);
    if (name.empty() || IsDotOrDotDot(name.c_str())) {
        return attributes;
    }
    bool hidden = name[0] == '.';
    if (!hidden) {
        std::string listPath = folder + HIDDEN_FILE;
        std::string content = ReadHiddenList(open(listPath.c_str(), O_RDONLY | O_CLOEXEC));
        ForEachHiddenName(content, [&](std::string_view line) { hidden = hidden || line == name; });
    }
    return attributes | (hidden ? DISK_HIDDEN : 0);
}

bool SDisk::SetAttributes(const char* path, int flags) const {
    struct stat status;
    if (path == nullptr || path[0] == 0 || stat(path, &status) != 0) {
        return false;
    }
    std::string folder;
    std::string name;
    SplitPath(path, folder, name);
    bool hide = (flags & DISK_HIDDEN) != 0;
    bool nameless = name.empty() || name == "/" || IsDotOrDotDot(name.c_str());
    if ((nameless && hide) || (!nameless && name[0] == '.' && !hide)) {
        return false;
    }
    if (!nameless && name[0] != '.' && !UpdateHiddenFile(folder, name, hide)) {
        return false;
    }
    bool readOnly = (flags & DISK_READONLY) != 0;
    bool isReadOnly = (status.st_mode & 0222) == 0;
    if (readOnly != isReadOnly) {
        mode_t mode = status.st_mode & 07777;
        mode = readOnly ? (mode & ~static_cast<mode_t>(0222)) : (mode | S_IWUSR);
        return chmod(path, mode) == 0;
    }
    return true;
}

#include "library/playlist.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/path.h"

namespace {

constexpr const char* PLAYLISTS_FOLDER = "Playlists/";
constexpr const char* EXTENSION = ".lst";
// The file whose advisory lock orders the saves of every process.
constexpr const char* LOCK_NAME = ".playlists.lock";
// Temporary files of a save: the prefix and six characters.
constexpr const char* TEMP_PREFIX = ".lst-";
constexpr int TEMP_RANDOM = 6;
// How long a save waits for another process's save before it gives up.
constexpr auto LOCK_WAIT = std::chrono::seconds(10);
constexpr auto LOCK_POLL = std::chrono::milliseconds(2);

// The exclusive lock on a playlists folder, held while the object lives.
class FolderLock {
public:
    explicit FolderLock(const SString& folder) {
        SString path = folder + LOCK_NAME;
        fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (fd < 0) {
            return;
        }
        auto deadline = std::chrono::steady_clock::now() + LOCK_WAIT;
        while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
            if ((errno != EWOULDBLOCK && errno != EINTR) ||
                std::chrono::steady_clock::now() >= deadline) {
                close(fd);
                fd = -1;
                return;
            }
            std::this_thread::sleep_for(LOCK_POLL);
        }
    }
    ~FolderLock() {
        if (fd >= 0) {
            close(fd); // releases the lock
        }
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    bool IsHeld() const { return fd >= 0; }

private:
    int fd = -1;
};

bool IsTempName(const char* name) {
    size_t prefix = strlen(TEMP_PREFIX);
    return strncmp(name, TEMP_PREFIX, prefix) == 0 && strlen(name) == prefix + TEMP_RANDOM;
}

// With the folder's lock held no save is under way, so every temporary
// file there is one that a killed save left.
void RemoveLeftTempFiles(const SString& folder) {
    DIR* listing = opendir(folder.c_str());
    if (listing == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(listing)) {
        if (IsTempName(entry->d_name)) {
            unlinkat(dirfd(listing), entry->d_name, 0);
        }
    }
    closedir(listing);
}

// Makes a new empty file "<folder>/.lst-XXXXXX" (0666 less the umask);
// returns its descriptor, or -1.
int CreateTempFile(const std::string& folder, std::string& temp) {
    static const char LETTERS[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device device;
    std::mt19937 generator(device());
    std::uniform_int_distribution<int> pick(0, int(sizeof LETTERS) - 2);
    for (int attempt = 0; attempt < 100; ++attempt) {
        temp = folder + "/" + TEMP_PREFIX;
        for (int i = 0; i < TEMP_RANDOM; ++i) {
            temp += LETTERS[pick(generator)];
        }
        int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) {
            return fd;
        }
    }
    return -1;
}

bool WriteAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        ssize_t written = write(fd, data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        data += written;
        size -= size_t(written);
    }
    return true;
}

// Replaces the file at path with bytes: the new file is complete and synced
// beside it before the rename, so a kill or a full disk leaves the old file
// or the new one whole. The new file takes the old one's mode and, where
// permitted, its owner and group. A link at path is followed.
bool ReplacePlaylistFile(const SString& path, const SString& bytes) {
    std::string target = path.c_str();
    char* real = realpath(target.c_str(), nullptr);
    if (real != nullptr) {
        target = real;
        free(real);
    }
    struct stat old;
    bool hasOld = stat(target.c_str(), &old) == 0;
    if (hasOld && !S_ISREG(old.st_mode)) {
        return false;
    }
    size_t slash = target.rfind('/');
    std::string folder = slash == std::string::npos ? "." : target.substr(0, slash);
    if (folder.empty()) {
        folder = "/";
    }
    std::string temp;
    int fd = CreateTempFile(folder, temp);
    if (fd < 0) {
        return false;
    }
    bool ok = WriteAll(fd, bytes.c_str(), size_t(bytes.GetLength()));
    if (ok && hasOld) {
        // The owner first: a change of owner may clear the set-id bits.
        // Another user's file: the group alone where permitted, or neither.
        if (fchown(fd, old.st_uid, old.st_gid) != 0) {
            int ignored = fchown(fd, uid_t(-1), old.st_gid);
            (void)ignored;
        }
        ok = fchmod(fd, old.st_mode & 07777) == 0;
    }
    ok = ok && fsync(fd) == 0;
    ok = close(fd) == 0 && ok;
    ok = ok && rename(temp.c_str(), target.c_str()) == 0;
    if (!ok) {
        unlink(temp.c_str());
        return false;
    }
    int folderFd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd >= 0) {
        fsync(folderFd);
        close(folderFd);
    }
    return true;
}

// The components of an absolute path, empty and "." ones dropped; false
// for a relative path or a ".." component.
bool SplitAbsolute(const std::string& path, std::vector<std::string>& parts) {
    parts.clear();
    if (path.empty() || path[0] != '/') {
        return false;
    }
    size_t start = 1;
    while (start <= path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string::npos) {
            end = path.size();
        }
        std::string part = path.substr(start, end - start);
        if (part == "..") {
            return false;
        }
        if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    return true;
}

// The entry of path when it lies under root: its components past the
// root's, joined by "\"; empty otherwise.
SString EntryUnder(const std::vector<std::string>& root, const std::vector<std::string>& path) {
    if (path.size() <= root.size() || !std::equal(root.begin(), root.end(), path.begin())) {
        return SString("");
    }
    SString entry("");
    for (size_t i = root.size(); i < path.size(); ++i) {
        if (i > root.size()) {
            entry += "\\";
        }
        entry += path[i].c_str();
    }
    return entry;
}

} // namespace

void ParsePlaylist(const char* data, int size, SStringArray& entries) {
    if (data == nullptr || size <= 0) {
        return;
    }
    // A byte order mark says UTF-8; it is no part of the first entry.
    if (size >= 3 && memcmp(data, "\xEF\xBB\xBF", 3) == 0) {
        data += 3;
        size -= 3;
    }
    SString converted;
    if (!IsValidUtf8(data, size)) {
        converted = Windows1252ToUtf8(data, size);
        data = converted.c_str();
        size = converted.GetLength();
    }
    SString line;
    int position = 0;
    while (position < size) {
        line.SetLength(0);
        while (position < size) {
            // The run up to the next CR or LF goes in whole.
            int stop = position;
            while (stop < size && data[stop] != '\r' && data[stop] != '\n') {
                ++stop;
            }
            line.Append(data + position, stop - position);
            position = stop;
            if (position >= size) {
                break;
            }
            // CR LF ends the entry, and so does a bare LF, as Linux tools
            // write it; a lone CR ends nothing and is dropped.
            if (data[position] == '\n') {
                ++position;
                break;
            }
            if (position + 1 < size && data[position + 1] == '\n') {
                position += 2;
                break;
            }
            ++position;
        }
        line.Trim();
        if (!line.IsEmpty()) {
            entries.Add(line);
        }
    }
}

SString FormatPlaylist(const SStringArray& entries) {
    SString bytes("");
    for (const SString* entry : entries) {
        bytes += *entry;
        bytes += "\r\n";
    }
    return bytes;
}

void PPlaylistStore::SetRoot(const char* newRoot) {
    root = newRoot != nullptr ? newRoot : "";
    if (!root.IsEmpty() && root.GetAt(root.GetLength() - 1) != '/') {
        root += "/";
    }
    folder = root.IsEmpty() ? SString("") : root + PLAYLISTS_FOLDER;
    names.DeleteAll();
    files.DeleteAll();
    entries.DeleteAll();
    current = -1;
    selection = -1;
}

SString PPlaylistStore::PathOf(const char* name) const {
    int found = FindName(name);
    return found >= 0 ? folder + *files.GetAt(found) : folder + name + EXTENSION;
}

int PPlaylistStore::FindName(const char* name) const {
    if (name == nullptr) {
        return -1;
    }
    for (int i = 0; i < names.GetCount(); ++i) {
        if (*names.GetAt(i) == name) {
            return i;
        }
    }
    return -1;
}

void PPlaylistStore::ReadNames() {
    names.DeleteAll();
    files.DeleteAll();
    if (folder.IsEmpty()) {
        return;
    }
    SStringArray found;
    SDisk().Enumerate(&found, (folder + "*.lst").c_str(), ENUM_FILES);
    // The filter matches ".LST" too: the name drops the extension as
    // written, and the file keeps its own name for every later change.
    std::vector<std::pair<SString, SString>> playlists; // name, file name
    for (const SString* file : found) {
        SString fileName = SPath(file->c_str()).GetName();
        playlists.emplace_back(fileName.Left(fileName.GetLength() - 4), fileName);
    }
    std::sort(playlists.begin(), playlists.end(), [](const auto& a, const auto& b) {
        return CompareListingNames(a.first.c_str(), b.first.c_str()) < 0;
    });
    for (const auto& [name, fileName] : playlists) {
        names.Add(name);
        files.Add(fileName);
    }
}

bool PPlaylistStore::RefreshPlaylists(bool firstRun) {
    SString remembered = GetCurrentName();
    ReadNames();
    if (names.GetCount() == 0) {
        current = -1;
        entries.DeleteAll();
        selection = -1;
        if (firstRun) {
            CreatePlaylist();
        }
        return names.GetCount() > 0;
    }
    current = 0;
    if (!remembered.IsEmpty() && FindName(remembered.c_str()) >= 0) {
        current = FindName(remembered.c_str());
    }
    LoadPlaylist("");
    return true;
}

SString PPlaylistStore::GetCurrentName() const {
    return current >= 0 && current < names.GetCount() ? *names.GetAt(current) : SString("");
}

bool PPlaylistStore::SelectPlaylist(const char* name) {
    int found = FindName(name);
    if (found < 0) {
        return false;
    }
    current = found;
    return true;
}

bool PPlaylistStore::LoadPlaylist(const char* name) {
    entries.DeleteAll();
    selection = -1;
    SString wanted = name != nullptr && name[0] != 0 ? SString(name) : GetCurrentName();
    if (wanted.IsEmpty() || FindName(wanted.c_str()) < 0) {
        return false;
    }
    // A FIFO or a device named like a playlist would block the read.
    SString path = PathOf(wanted.c_str());
    struct stat info;
    SFileMem file;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) || !file.LoadFile(path.c_str())) {
        return false;
    }
    ParsePlaylist(file.GetData(), file.GetSize(), entries);
    return true;
}

bool PPlaylistStore::SavePlaylist(const char* name) {
    FolderLock lock(folder);
    return lock.IsHeld() && WriteEntries(name);
}

bool PPlaylistStore::WriteEntries(const char* name) {
    SString wanted = name != nullptr && name[0] != 0 ? SString(name) : GetCurrentName();
    if (wanted.IsEmpty() || FindName(wanted.c_str()) < 0) {
        return false;
    }
    RemoveLeftTempFiles(folder);
    return ReplacePlaylistFile(PathOf(wanted.c_str()), FormatPlaylist(entries));
}

SString PPlaylistStore::GetCountText() const {
    int count = entries.GetCount();
    return SString::FromInt(count) + " file" + (count > 1 ? "s" : "");
}

SString PPlaylistStore::GetEntryPath(int row) const {
    if (row < 0 || row >= entries.GetCount()) {
        return SString("");
    }
    SString path = root + *entries.GetAt(row);
    path.Replace('\\', '/');
    return path;
}

SStringArray PPlaylistStore::GetPlayList(bool shuffle) const {
    SStringArray list;
    for (int i = 0; i < entries.GetCount(); ++i) {
        list.Add(GetEntryPath(i));
    }
    if (shuffle) {
        list.Shuffle();
    }
    return list;
}

bool PPlaylistStore::SetSelection(int row) {
    if (row < -1 || row >= entries.GetCount()) {
        return false;
    }
    selection = row;
    return true;
}

SString PPlaylistStore::GetEntryFor(const char* path) const {
    std::vector<std::string> file;
    if (path == nullptr || root.IsEmpty() || !SplitAbsolute(path, file)) {
        return SString("");
    }
    std::string absolute = root.c_str();
    if (absolute[0] != '/') {
        char* here = getcwd(nullptr, 0);
        absolute = std::string(here != nullptr ? here : "") + "/" + absolute;
        free(here);
    }
    std::vector<std::string> rootParts;
    SString entry("");
    if (SplitAbsolute(absolute, rootParts)) {
        entry = EntryUnder(rootParts, file);
    }
    char* real = entry.IsEmpty() ? realpath(root.c_str(), nullptr) : nullptr;
    if (real != nullptr) {
        if (SplitAbsolute(real, rootParts)) {
            entry = EntryUnder(rootParts, file);
        }
        free(real);
    }
    return entry;
}

bool PPlaylistStore::AppendFiles(const SStringArray& paths) {
    bool allUnderRoot = true;
    for (const SString* file : paths) {
        SString entry = GetEntryFor(file->c_str());
        if (entry.IsEmpty()) {
            allUnderRoot = false;
        } else {
            entries.Add(entry);
        }
    }
    return allUnderRoot;
}

bool PPlaylistStore::AppendFilesAndSave(const SStringArray& paths) {
    for (const SString* file : paths) {
        if (GetEntryFor(file->c_str()).IsEmpty()) {
            return false;
        }
    }
    FolderLock lock(folder);
    return lock.IsHeld() && LoadPlaylist("") && AppendFiles(paths) && WriteEntries("");
}

bool PPlaylistStore::RemoveSelected() {
    int row = selection;
    if (row < 0 || row >= entries.GetCount()) {
        return false;
    }
    entries.DeleteAt(row);
    bool saved = SavePlaylist("");
    selection = row < entries.GetCount() ? row : -1;
    return saved;
}

bool PPlaylistStore::MoveUp() {
    if (selection < 1 || selection >= entries.GetCount()) {
        return false;
    }
    entries.Swap(selection, selection - 1);
    --selection;
    return SavePlaylist("");
}

bool PPlaylistStore::MoveDown() {
    if (selection < 0 || selection >= entries.GetCount() - 1) {
        return false;
    }
    entries.Swap(selection, selection + 1);
    ++selection;
    return SavePlaylist("");
}

SString PPlaylistStore::CreatePlaylist() {
    SDisk disk;
    SString path = disk.MakeUniqueName(folder.c_str(), "Playlist", "lst");
    if (path.IsEmpty() || !disk.CreateFile(path.c_str(), false, false, 0)) {
        return SString("");
    }
    SString name = SPath(path.c_str()).GetTitle();
    ReadNames();
    current = FindName(name.c_str());
    LoadPlaylist("");
    return name;
}

bool PPlaylistStore::RenamePlaylist(const char* newName) {
    SString old = GetCurrentName();
    if (old.IsEmpty() || newName == nullptr || newName[0] == 0 || strchr(newName, '/') != nullptr) {
        return false;
    }
    // The new name keeps the extension as the file had it (".lst", ".LST").
    SString oldPath = PathOf(old.c_str());
    SString newPath = folder + newName + oldPath.Right(4);
    if (!SDisk().Rename(oldPath.c_str(), newPath.c_str())) {
        return false;
    }
    ReadNames();
    current = FindName(newName);
    LoadPlaylist("");
    return true;
}

bool PPlaylistStore::DeletePlaylist() {
    SString name = GetCurrentName();
    if (name.IsEmpty()) {
        return false;
    }
    // To the desktop's trash, never straight off the disk.
    bool deleted = SDisk().Delete(PathOf(name.c_str()).c_str(), nullptr, false, false);
    if (!deleted) {
        return false;
    }
    names.DeleteAt(current);
    files.DeleteAt(current);
    entries.DeleteAll();
    selection = -1;
    if (names.GetCount() > 0) {
        current = 0;
        LoadPlaylist("");
    } else {
        current = -1;
        CreatePlaylist();
    }
    return deleted;
}

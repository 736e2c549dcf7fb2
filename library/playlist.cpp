#include "library/playlist.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/path.h"

namespace {

constexpr const char* PLAYLISTS_FOLDER = "Playlists/";
constexpr const char* EXTENSION = ".lst";

} // namespace

void ParsePlaylist(const char* data, int size, SStringArray& entries) {
    if (data == nullptr || size <= 0) {
        return;
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
            if (data[position] == '\r' && position + 1 < size && data[position + 1] == '\n') {
                position += 2;
                break;
            }
            // A lone CR or LF ends nothing and is dropped.
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
    entries.DeleteAll();
    current = -1;
    selection = -1;
}

SString PPlaylistStore::PathOf(const char* name) const {
    return folder + name + EXTENSION;
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
    if (folder.IsEmpty()) {
        return;
    }
    SStringArray files;
    SDisk().Enumerate(&files, (folder + "*.lst").c_str(), ENUM_FILES);
    std::vector<SString> found;
    for (const SString* file : files) {
        SString name = SPath(file->c_str()).GetName();
        // The filter matches ".LST" too; the name drops the extension as written.
        found.push_back(name.Left(name.GetLength() - 4));
    }
    std::sort(found.begin(), found.end(), [](const SString& a, const SString& b) {
        return CompareListingNames(a.c_str(), b.c_str()) < 0;
    });
    for (const SString& name : found) {
        names.Add(name);
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
    SFileMem file;
    if (!file.LoadFile(PathOf(wanted.c_str()).c_str())) {
        return false;
    }
    ParsePlaylist(file.GetData(), file.GetSize(), entries);
    return true;
}

bool PPlaylistStore::SavePlaylist(const char* name) {
    SString wanted = name != nullptr && name[0] != 0 ? SString(name) : GetCurrentName();
    if (wanted.IsEmpty() || FindName(wanted.c_str()) < 0) {
        return false;
    }
    SString bytes = FormatPlaylist(entries);
    return WriteFileAtomic(PathOf(wanted.c_str()).c_str(), bytes.c_str(), bytes.GetLength());
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

void PPlaylistStore::AppendFiles(const SStringArray& paths) {
    SPath rootPath(root.c_str());
    int rootParts = rootPath.GetDepth();
    if (rootParts < 1) {
        return;
    }
    for (const SString* file : paths) {
        SPath path(file->c_str());
        SString entry = path.GetSlice(rootParts - 1, -1, false, '\\');
        if (!entry.IsEmpty()) {
            entries.Add(entry);
        }
    }
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
    if (!SDisk().Rename(PathOf(old.c_str()).c_str(), PathOf(newName).c_str())) {
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
    bool deleted = std::remove(PathOf(name.c_str()).c_str()) == 0;
    names.DeleteAt(current);
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

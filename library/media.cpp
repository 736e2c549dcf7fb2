#include "library/media.h"

#include <cstring>
#include <string>
#include <sys/stat.h>

#include "foundation/array.h"
#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/path.h"

namespace {

struct ClassEntry {
    const char* extension;
    int mediaClass;
};

constexpr ClassEntry CLASSES[] = {
    {"mpg", MEDIA_VIDEO},   {"mpeg", MEDIA_VIDEO}, {"avi", MEDIA_VIDEO},   {"wmv", MEDIA_VIDEO},
    {"mp4", MEDIA_VIDEO},   {"m4v", MEDIA_VIDEO},  {"mkv", MEDIA_VIDEO},   {"webm", MEDIA_VIDEO},
    {"mov", MEDIA_VIDEO},   {"mp3", MEDIA_SONG},   {"wma", MEDIA_SONG},    {"flac", MEDIA_SONG},
    {"ogg", MEDIA_SONG},    {"oga", MEDIA_SONG},   {"opus", MEDIA_SONG},   {"m4a", MEDIA_SONG},
    {"aac", MEDIA_SONG},    {"wav", MEDIA_SONG},   {"ape", MEDIA_SONG},    {"wv", MEDIA_SONG},
    {"wax", MEDIA_RADIO},   {"wvx", MEDIA_RADIO},  {"asx", MEDIA_RADIO},   {"pls", MEDIA_RADIO},
    {"jpg", MEDIA_PICTURE}, {"jpeg", MEDIA_PICTURE}, {"png", MEDIA_PICTURE},
};

// The longest extension of the table.
constexpr int MAX_EXTENSION = 4;

SString WithSlash(const char* folder) {
    SString text(folder != nullptr ? folder : "");
    if (text.GetLength() > 0 && text.GetAt(text.GetLength() - 1) != '/') {
        text += "/";
    }
    return text;
}

// The folder's companion files, in the order they are collected.
void AddCompanions(SStringArray& list, const char* folder) {
    const char* pairs[][2] = {{".png", ".jpg"}, {".txt", nullptr}, {".mht", ".htm"}};
    for (const auto& pair : pairs) {
        SString found = FindCompanion(folder, pair[0]);
        if (found.IsEmpty() && pair[1] != nullptr) {
            found = FindCompanion(folder, pair[1]);
        }
        if (!found.IsEmpty()) {
            list.Add(found);
        }
    }
}

} // namespace

int GetMediaClassOfExtension(const char* extension, int length) {
    if (extension == nullptr) {
        return MEDIA_OTHER;
    }
    if (length < 0) {
        length = int(strlen(extension));
    }
    if (length < 2 || length > MAX_EXTENSION) {
        return MEDIA_OTHER;
    }
    char lower[MAX_EXTENSION + 1];
    for (int i = 0; i < length; ++i) {
        char c = extension[i];
        lower[i] = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
    }
    lower[length] = 0;
    for (const ClassEntry& entry : CLASSES) {
        if (strcmp(entry.extension, lower) == 0) {
            return entry.mediaClass;
        }
    }
    return MEDIA_OTHER;
}

int GetMediaClass(const char* path) {
    if (path == nullptr) {
        return MEDIA_OTHER;
    }
    const char* slash = strrchr(path, '/');
    const char* name = slash != nullptr ? slash + 1 : path;
    const char* dot = strrchr(name, '.');
    return dot != nullptr ? GetMediaClassOfExtension(dot + 1) : MEDIA_OTHER;
}

int CollectMedia(SStringArray& dest, const char* folder, bool recursive, bool songs, bool videos,
                 bool pictures, bool companions, bool noRadio) {
    SString base = WithSlash(folder);
    if (base.IsEmpty()) {
        return 0;
    }
    // One listing serves every class: each file is sorted into its class,
    // which gives the same paths as one search per extension.
    SDisk disk;
    SStringArray files;
    int flags = ENUM_FILES | ENUM_NO_HIDDEN | (recursive ? ENUM_RECURSIVE : 0);
    disk.Enumerate(&files, (base + "*").c_str(), flags);
    SStringArray list;
    for (SString* file : files) {
        int mediaClass = GetMediaClass(file->c_str());
        bool wanted = (mediaClass == MEDIA_SONG && songs) ||
                      (mediaClass == MEDIA_VIDEO && videos) ||
                      (mediaClass == MEDIA_RADIO && !noRadio && (songs || videos)) ||
                      (mediaClass == MEDIA_PICTURE && pictures);
        if (wanted) {
            list.Add(*file);
        }
    }
    if (companions) {
        AddCompanions(list, base.c_str());
        if (recursive) {
            SStringArray folders;
            disk.Enumerate(&folders, (base + "*").c_str(),
                           ENUM_FOLDERS | ENUM_NO_HIDDEN | ENUM_RECURSIVE);
            for (SString* sub : folders) {
                AddCompanions(list, sub->c_str());
            }
        }
    }
    list.Sort();
    int added = list.GetCount();
    for (SString* item : list) {
        dest.Add(*item);
    }
    return added;
}

SString FindFileNoCase(const char* folder, const char* name) {
    SString base = WithSlash(folder);
    if (base.IsEmpty() || name == nullptr || name[0] == 0 || strchr(name, '/') != nullptr) {
        return SString("");
    }
    SDisk disk;
    SString exact = base + name;
    if (disk.IsFile(exact.c_str())) {
        return exact;
    }
    // Wildcards in the name would widen the match: only plain names are
    // looked for case-blind.
    if (strpbrk(name, "*?") != nullptr) {
        return SString("");
    }
    SStringArray names;
    disk.Enumerate(&names, (base + "*").c_str(), ENUM_FILES);
    for (SString* entry : names) {
        SPath path(entry->c_str());
        if (path.GetName().CompareNoCase(name) == 0) {
            return *entry;
        }
    }
    return SString("");
}

SString PFileNameCache::Find(const char* folder, const char* name) {
    SString base = WithSlash(folder);
    if (base.IsEmpty() || name == nullptr || name[0] == 0 || strchr(name, '/') != nullptr) {
        return SString("");
    }
    SString exact = base + name;
    if (SDisk().IsFile(exact.c_str())) {
        return exact;
    }
    struct stat status;
    if (stat(base.c_str(), &status) != 0) {
        return SString("");
    }
    std::lock_guard<std::mutex> lock(mutex);
    std::string key(base.c_str());
    auto found = folders.find(key);
    bool fresh = found != folders.end() && found->second.settled &&
                 found->second.modified.tv_sec == status.st_mtim.tv_sec &&
                 found->second.modified.tv_nsec == status.st_mtim.tv_nsec;
    if (!fresh) {
        if (folders.size() >= MAX_FOLDERS) {
            folders.clear();
        }
        Listing& listing = folders[key];
        listing.modified = status.st_mtim;
        // The file system stamps changes with a coarse clock, so a change
        // made in the same tick as the last one keeps the time unchanged.
        // A listing is only trusted again when the folder had been still
        // for a second before it was read.
        struct timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        listing.settled = now.tv_sec - status.st_mtim.tv_sec > 1;
        listing.names.clear();
        SStringArray files;
        SDisk().Enumerate(&files, (base + "*").c_str(), ENUM_FILES);
        for (const SString* file : files) {
            std::string onDisk(file->c_str() + base.GetLength());
            std::string lower = onDisk;
            for (char& c : lower) {
                c = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
            }
            // The first in listing order wins, as in FindFileNoCase.
            listing.names.emplace(lower, onDisk);
        }
        found = folders.find(key);
    }
    std::string lower(name);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
    }
    auto match = found->second.names.find(lower);
    if (match == found->second.names.end()) {
        return SString("");
    }
    return base + match->second.c_str();
}

SString FindCompanion(const char* folder, const char* extension) {
    SPath path;
    if (folder == nullptr || !path.SetFolder(folder) || extension == nullptr) {
        return SString("");
    }
    SString name = path.GetLastFolder(true);
    SString parent = path.GetParent();
    if (name.IsEmpty() || parent.IsEmpty()) {
        return SString("");
    }
    return FindFileNoCase(parent.c_str(), (name + extension).c_str());
}

namespace {

// The value of the first href attribute of the first <ref ...> element.
SString FindAsxReference(const SString& text) {
    SString lower = text.Lower();
    int at = 0;
    while ((at = lower.Find("<ref", at)) >= 0) {
        int close = lower.Find(">", at);
        char after = lower.GetAt(at + 4);
        if (close < 0) {
            break;
        }
        if (after == ' ' || after == '\t' || after == '\r' || after == '\n') {
            int href = lower.Find("href", at, close - at);
            int equals = href >= 0 ? lower.Find('=', href, close - href) : -1;
            if (equals >= 0) {
                int start = equals + 1;
                while (start < close && (text.GetAt(start) == ' ' || text.GetAt(start) == '\t')) {
                    ++start;
                }
                char quote = text.GetAt(start);
                int end;
                if (quote == '"' || quote == '\'') {
                    ++start;
                    end = text.Find(quote, start, close - start);
                } else {
                    end = start;
                    while (end < close && text.GetAt(end) != ' ' && text.GetAt(end) != '/' &&
                           text.GetAt(end) != '\t') {
                        ++end;
                    }
                }
                if (end > start) {
                    SString address = text.Between(start, end);
                    address.Trim();
                    address.ReplaceAll("&amp;", "&");
                    return address;
                }
            }
        }
        at += 4;
    }
    return SString("");
}

// The first "FileN=" entry of a PLS list.
SString FindPlsEntry(const SString& text) {
    int position = 0;
    while (position < text.GetLength()) {
        int next = 0;
        SString line = text.GetLine(position, &next);
        line.Trim();
        if (line.Left(4).CompareNoCase("file") == 0) {
            int equals = line.Find('=');
            if (equals > 4) {
                SString value = line.Mid(equals + 1);
                value.Trim();
                if (!value.IsEmpty()) {
                    return value;
                }
            }
        }
        if (next <= position) {
            break;
        }
        position = next;
    }
    return SString("");
}

} // namespace

SString GetPlayableAddress(const char* path) {
    if (path == nullptr || path[0] == 0) {
        return SString("");
    }
    if (GetMediaClass(path) != MEDIA_RADIO) {
        return SString(path);
    }
    SFileMem file;
    // A radio file is a few hundred bytes; anything huge is not one, and
    // anything but a regular file (a FIFO would block the read) neither.
    struct stat info;
    if (stat(path, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > (1 << 20) ||
        !file.LoadFile(path)) {
        return SString("");
    }
    SString text;
    text.Assign(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
    SString extension = SPath(path).GetExtension(false, true);
    return extension == "pls" ? FindPlsEntry(text) : FindAsxReference(text);
}

#include "pages/book_media.h"

#include <strings.h>

#include "foundation/disk.h"
#include "foundation/path.h"

namespace {

bool IsOneOf(const SString& extension, const char* const* list) {
    for (; *list != nullptr; ++list) {
        if (extension.CompareNoCase(*list) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

int GetBookMediaClass(const char* fileName) {
    static const char* const videos[] = {"mpg", "mpeg", "avi", "wmv", "mp4", "m4v",
                                         "mkv", "webm", "mov", nullptr};
    static const char* const songs[] = {"mp3", "wma", "flac", "ogg", "oga", "opus",
                                        "m4a", "aac", "wav", "ape", "wv",  nullptr};
    static const char* const radios[] = {"wax", "wvx", "asx", "pls", nullptr};
    static const char* const pictures[] = {"jpg", "jpeg", "png", nullptr};
    if (fileName == nullptr) {
        return BOOK_MEDIA_OTHER;
    }
    const char* dot = strrchr(fileName, '.');
    if (dot == nullptr || strchr(dot, '/') != nullptr) {
        return BOOK_MEDIA_OTHER;
    }
    SString extension(dot + 1);
    if (IsOneOf(extension, videos)) {
        return BOOK_MEDIA_VIDEO;
    }
    if (IsOneOf(extension, songs)) {
        return BOOK_MEDIA_SONG;
    }
    if (IsOneOf(extension, radios)) {
        return BOOK_MEDIA_RADIO;
    }
    return IsOneOf(extension, pictures) ? BOOK_MEDIA_PICTURE : BOOK_MEDIA_OTHER;
}

bool PFolderFiles::Read(const char* path) {
    folder = path != nullptr ? path : "";
    names.DeleteAll();
    SDisk disk;
    if (folder.IsEmpty() || !disk.IsFolder(folder.c_str())) {
        return false;
    }
    SStringArray found;
    disk.Enumerate(&found, (folder + "*").c_str(), ENUM_FILES | ENUM_NO_HIDDEN);
    int skip = folder.GetLength();
    for (int i = 0; i < found.GetCount(); ++i) {
        names.Add(found.GetText(i).Mid(skip));
    }
    return true;
}

SString PFolderFiles::Find(const char* name) const {
    int loose = -1;
    for (int i = 0; i < names.GetCount(); ++i) {
        const SString* entry = names.GetAt(i);
        if (*entry == name) {
            return folder + *entry;
        }
        if (loose < 0 && strcasecmp(entry->c_str(), name) == 0) {
            loose = i;
        }
    }
    return loose >= 0 ? folder + names.GetText(loose) : SString("");
}

void PFolderFiles::GetMedia(SStringArray& files) const {
    SStringArray media;
    for (int i = 0; i < names.GetCount(); ++i) {
        int mediaClass = GetBookMediaClass(names.GetAt(i)->c_str());
        if (mediaClass >= BOOK_MEDIA_VIDEO && mediaClass <= BOOK_MEDIA_RADIO) {
            media.Add(folder + *names.GetAt(i));
        }
    }
    media.Sort();
    for (int i = 0; i < media.GetCount(); ++i) {
        files.Add(*media.GetAt(i));
    }
}

void GetCoverCandidates(const SString& name, const PFolderFiles& parent,
                        const PFolderFiles& rootFiles, const PFolderFiles& inside,
                        const SStringArray& sharedNames, SStringArray& candidates) {
    auto add = [&candidates](const SString& path) {
        if (!path.IsEmpty()) {
            candidates.Add(path);
        }
    };
    add(parent.Find((name + ".png").c_str()));
    add(parent.Find((name + ".jpg").c_str()));
    for (int i = 0; i < sharedNames.GetCount(); ++i) {
        if (sharedNames.GetAt(i)->CompareNoCase(name.c_str()) == 0) {
            add(rootFiles.Find((name + ".png").c_str()));
            add(rootFiles.Find((name + ".jpg").c_str()));
            break;
        }
    }
    static const char* const stems[] = {"cover", "folder", "front", "albumart"};
    static const char* const extensions[] = {".jpg", ".jpeg", ".png"};
    for (const char* stem : stems) {
        for (const char* extension : extensions) {
            add(inside.Find((SString(stem) + extension).c_str()));
        }
    }
}
